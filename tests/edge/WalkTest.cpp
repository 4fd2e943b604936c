// Loops over elements, attributes, packets and tokens; copies, single attributes, and files that are saved whole.

#include "VekLib.h"
#include "VekStd.h"

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/XMLKit.h"

#include <filesystem>

namespace
{

struct Edge : XMLTest
{
    // An element of that content; its root takes the name.
    static CVekRef<IVekXMLDocument> Parsed(std::string const & text)
    {
        CVekRef<IVekXMLDocument> const document = NewDocument();
        EXPECT_TRUE(ParseBytes(text, document)) << text;
        return document;
    }
    template <class Range>
    static std::wstring Names(Range && range)
    {
        std::wstring names;
        for (IVekXMLElement const & element : range)
            names += std::wstring(element.GetName()) + L" ";
        return names;
    }
};

// What the loops are to give, by recursion.
std::wstring NamesBelow(IVekXMLElement const & element)
{
    std::wstring names;
    for (int i = 0; i < element.GetNumChildren(); ++i)
        if (IVekXMLElement const * const child = element.GetChild(i))
            names += std::wstring(child->GetName()) + L" " + NamesBelow(*child);
    return names;
}

std::string Repeated(std::string const & text, int count)
{
    std::string all;
    while (--count >= 0)
        all += text;
    return all;
}

constexpr int MANY = VekGuard::Active ? 50'000 : 1'000'000;

TEST_F(Edge, LoopsOverElements)
{
    auto const document = Parsed("<r><a/><B><a><c/></a><b/></B><a><B/></a></r>");
    IVekXMLElement & root = *document->GetRootElement();
    IVekXMLElement const & fixed = root;
    ForeignElement foreign;
    root.AddChild(&foreign, 1); // becomes a null entry
    EXPECT_EQ(Names(VekChildren(root)), L"a B a ");
    EXPECT_EQ(Names(VekChildren(fixed, L"A")), L"a a ");
    EXPECT_EQ(Names(VekChildren(root, L"none")), L"");
    EXPECT_EQ(Names(VekDescendants(root)), NamesBelow(root));
    EXPECT_EQ(Names(VekFindAll(fixed, L"b")), L"B b B ");
    EXPECT_EQ(Names(VekFindAll(root, nullptr)), L"");

    std::wstring depths;
    auto walk = VekDescendants(fixed);
    for (int turn = 0; turn < 2; ++turn) // it can be begun again
        for (IVekXMLElement const & element : walk)
        {
            depths += std::to_wstring(walk.GetDepth());
            EXPECT_EQ(&walk.GetParent() == &root, walk.GetDepth() == 1);
            if (element.GetName() == L"B")
                walk.SkipChildren();
        }
    EXPECT_EQ(depths, L"11121112");
    std::wstring visited;
    for (IVekXMLElement const & child : VekChildren(root)) // the list may change behind
    {
        visited += child.GetName();
        if (root.GetNumChildren() == 4)
            root.RemoveChild(3);
    }
    EXPECT_EQ(visited, L"aB");

    auto const attributes = Parsed("<r one='1' two='&lt;'/>");
    std::wstring texts;
    for (auto const & [name, value, index] : VekAttributes(*attributes->GetRootElement()))
        texts += std::to_wstring(index) + std::wstring(name) + L"=" + VekToStd(value) + L" ";
    EXPECT_EQ(texts, L"0one=1 1two=&lt; ");
    EXPECT_EQ(m_log.Text(), L"");
}

TEST_F(Edge, LoopsOverTokensAndPackets)
{
    CVekTokenizer tokenizer;
    CVekLexer lexer;
    ASSERT_TRUE(tokenizer.Tokenize(&lexer, L"one 2 three", -1));
    std::wstring texts;
    for (IVekTokenizer::IToken const & token : VekTokens(tokenizer))
        texts += std::wstring(token.GetText()) + L" ";
    EXPECT_EQ(texts, L"one 2 three ");

    struct Packet : CVekResourceFilePacket
    {
        Packet() : CVekResourceFilePacket(nullptr) {}
        bool Read(IVekIOStream *) override { return false; }
        bool Write(IVekIOStream *) override { return false; }
    };
    Packet packets[4];
    packets[0].AddChild(&packets[1], -1);
    packets[1].AddChild(&packets[2], -1);
    packets[0].AddChild(nullptr, -1);
    packets[0].AddChild(&packets[3], -1);
    std::string order;
    for (CVekResourceFilePacket const & packet : VekDescendants(packets[0]))
        order += static_cast<char>('0' + (static_cast<Packet const *>(&packet) - packets));
    for (CVekResourceFilePacket & packet : VekChildren(packets[0]))
        order += static_cast<char>('0' + (static_cast<Packet *>(&packet) - packets));
    EXPECT_EQ(order, "12313");
}

TEST_F(Edge, ManyLevelsAreWalkedCopiedAndCompared)
{
    auto const document = Parsed(Repeated("<a b='1'>", MANY) + Repeated("</a>", MANY));
    IVekXMLElement & root = *document->GetRootElement();
    int count = 0;
    auto walk = VekFindAll(root, L"a");
    for ([[maybe_unused]] IVekXMLElement const & element : walk)
        ++count;
    EXPECT_EQ(count, MANY - 1);
    EXPECT_FALSE(walk.IsOutOfMemory());
    CVekRef<IVekXMLElement> const copy{VekCloneXMLElement(&root)};
    ASSERT_TRUE(copy);
    EXPECT_TRUE(VekIsSameXML(copy.Get(), &root));
}

TEST_F(Edge, Clones)
{
    auto const document = Parsed("<r one='&lt;1&#10;2'><a><![CDATA[bytes]]><b two='2'/></a><c/></r>");
    IVekXMLElement & root = *document->GetRootElement();
    root.SetAttributeValue(L"twin", L"", true);
    root.RenameAttribute(L"twin", L"ONE"); // two of one name, as a host may have them
    ForeignElement foreign(L"foreign");
    root.AddChild(&foreign, 1);
    CVekRef<IVekXMLElement> const copy{VekCloneXMLElement(&root)};
    ASSERT_TRUE(copy);
    EXPECT_EQ(TreeText(*copy), TreeText(root));
    EXPECT_EQ(copy->GetRefCount(), 1U);
    EXPECT_EQ(copy->GetParent(), nullptr);
    std::wstring const before = TreeText(root);
    copy->GetChild(0)->RemoveCDATASection();
    copy->GetChild(0)->GetChild(0)->SetAttributeValue(L"two", 3, false);
    copy->RemoveChild(L"c");
    EXPECT_EQ(TreeText(root), before) << "nothing is shared";
    EXPECT_EQ(VekCloneXMLElement(nullptr), nullptr);
    CVekRef<IVekXMLElement> const own{VekCloneXMLElement(&foreign)};
    EXPECT_EQ(TreeText(*own), L"foreign");
}

TEST_F(Edge, TakesOutAndReplacesSingleAttributes)
{
    CVekRef<CVekXMLElement> const element = NewElement(L"e");
    for (int i = 0; i < 100; ++i) // enough for an index
        element->AddAttribute((L"n" + std::to_wstring(i)).c_str(), i, -1);
    EXPECT_EQ(element->FindAttributeIndex(L"n99"), 99);
    EXPECT_TRUE(VekRemoveXMLAttribute(element.Get(), L"N50"));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(element->FindAttributeIndex(L"none"), -1); // fills the index
    EXPECT_TRUE(VekReplaceXMLAttribute(element.Get(), L"n98", L"new", L"<"));
    EXPECT_EQ(element->FindAttributeIndex(L"n99"), 98);
    EXPECT_EQ(element->FindAttributeIndex(L"n98"), -1);
    EXPECT_EQ(element->FindAttributeIndex(L"new"), 97);
    while (element->GetNumAttributes() > 3)
        EXPECT_TRUE(VekRemoveXMLAttribute(element.Get(), element->GetAttributeName(2)));
    EXPECT_EQ(TreeText(*element), L"e[n0=0 n1=1 n99=99]");

    EXPECT_TRUE(VekReplaceXMLAttribute(element.Get(), L"n1", L"N1", L"a<b"));
    EXPECT_TRUE(VekReplaceXMLAttribute(element.Get(), L"n0", element->GetAttributeName(0), true));
    ForeignElement foreign;
    EXPECT_FALSE(VekReplaceXMLAttribute(element.Get(), L"n1", L"n99", 5)) << "the new name is taken";
    EXPECT_FALSE(VekReplaceXMLAttribute(element.Get(), L"none", L"other", 5));
    EXPECT_FALSE(VekReplaceXMLAttribute(element.Get(), L"n1", L"n1", VEK_VARIANT(VEK_DT_BUFFER)));
    EXPECT_FALSE(VekRemoveXMLAttribute(element.Get(), L"none") || VekRemoveXMLAttribute(&foreign, L"") ||
                 VekRemoveXMLAttribute(nullptr, L"n1"));
    EXPECT_EQ(TreeText(*element), L"e[n0=TRUE N1=a&lt;b n99=99]");
}

TEST_F(Edge, ComparesAsReadersUnderstand)
{
    struct
    {
        wchar_t const * first; // values as they are stored
        wchar_t const * second;
        bool isSame;
    } const rows[] = {
        {L"a", L"a", true},
        {L"a", L"A", false},
        {L"&lt;&#65;&#x1F600;", L"&#60;A\xD83D\xDE00", true},
        {L"&lt;EOL&gt;", L"&#10;", true},
        {L"&amp;lt;", L"&lt;", false},
        {L"&amp;#10;", L"&#10;", false},
        {L"&none;&#x;&#;&#xG;", L"&none;&#x;&#;&#xH;", false},
        {L"&#99999999999;", L"&#99999999998;", false},
        {L"\t", L" ", false},
        {L"&", L"", false},
    };
    CVekRef<CVekXMLElement> const a = NewElement(L"e"), b = NewElement(L"e");
    a->AddAttribute(L"n", L"", -1), b->AddAttribute(L"n", L"", -1);
    for (auto const & row : rows)
    {
        a->SetAttributeValue(0, row.first), b->SetAttributeValue(0, row.second);
        EXPECT_EQ(VekIsSameXML(a.Get(), b.Get()), row.isSame) << testing::PrintToString(std::wstring(row.first));
    }
    char const * const whole = "<r a='1' b='2'><x/><y><![CDATA[t]]></y></r>";
    auto const document = Parsed(whole);
    for (char const * const other :
         {"<r a='1' b='2'><x/><y><![CDATA[T]]></y></r>", "<r a='1' b='2'><x/><y/></r>", "<r a='1' b='2'><x/></r>",
          "<r a='1' b='2'><y><![CDATA[t]]></y><x/></r>", "<r b='2' a='1'><x/><y><![CDATA[t]]></y></r>",
          "<R a='1' b='2'><x/><y><![CDATA[t]]></y></R>", "<r a='1'><x/><y><![CDATA[t]]></y></r>",
          "<r a='1' b='2'><x/><y><![CDATA[t]]></y><z/></r>"})
        EXPECT_FALSE(VekIsSameXML(document->GetRootElement(), Parsed(other)->GetRootElement())) << other;
    auto const twin = Parsed(whole);
    ForeignElement foreign;
    twin->GetRootElement()->AddChild(&foreign, 0); // null entries are not written either
    EXPECT_TRUE(VekIsSameXML(document->GetRootElement(), twin->GetRootElement()));
    EXPECT_FALSE(VekIsSameXML(document->GetRootElement(), nullptr));
}

TEST_F(Edge, SavesWholeFilesOrNone)
{
    namespace fs = std::filesystem;
    std::wstring const folder = TemporaryPath(L"save");
    fs::remove_all(folder);
    fs::create_directory(folder);
    std::wstring const path = folder + L"\\scene.xml";
    auto const filesThere = [&] { return std::distance(fs::directory_iterator(folder), fs::directory_iterator()); };
    auto const document = Parsed("<r one='&lt;1&#10;2'><a><![CDATA[bytes]]></a></r>");
    ASSERT_TRUE(VekSaveXMLDocument(path.c_str(), document.Get()));
    CVekXMLParser parser;
    auto const back = NewDocument();
    ASSERT_TRUE(parser.ParseXMLFile(path.c_str(), back.Get()));
    EXPECT_TRUE(VekIsSameXML(back->GetRootElement(), document->GetRootElement()));

    CVekRef<IVekXMLWriter> const writer{XMLManager().CreateXMLWriter()};
    writer->SetIndentation(0);
    ASSERT_TRUE(VekSaveXMLDocument(path.c_str(), document.Get(), writer.Get(), &parser));
    std::string const saved = FileBytes(path);
    EXPECT_EQ(saved.find("\n "), std::string::npos) << saved;

    IVekXMLElement & root = *document->GetRootElement();
    root.AddAttribute(L"bad", L"", -1);
    for (wchar_t const * const value : {L"a\tb", L"\xD83D\xDE00", L"<", L"&none;", L"\x1"})
    {
        root.SetAttributeValue(2 - 1, VEK_VARIANT(value));
        EXPECT_FALSE(VekSaveXMLDocument(path.c_str(), document.Get())) << testing::PrintToString(std::wstring(value));
    }
    EXPECT_NE(m_log.Take().find(L"VekSaveXMLDocument --> What was written reads back as another document, for"),
              std::wstring::npos);
    VekRemoveXMLAttribute(&root, L"bad");
    constexpr auto WRITE = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    fs::permissions(path, WRITE, fs::perm_options::remove);
    EXPECT_FALSE(VekSaveXMLDocument(path.c_str(), document.Get())) << "read-only";
    fs::permissions(path, WRITE, fs::perm_options::add);
    EXPECT_FALSE(VekSaveXMLDocument(folder.c_str(), document.Get())) << "a folder";
    EXPECT_FALSE(VekSaveXMLDocument((folder + L"\\none\\x.xml").c_str(), document.Get()));
    EXPECT_FALSE(VekSaveXMLDocument(L"", document.Get()) || VekSaveXMLDocument(nullptr, document.Get()) ||
                 VekSaveXMLDocument(path.c_str(), nullptr));
    EXPECT_EQ(FileBytes(path), saved);
    EXPECT_EQ(filesThere(), 1);
}

TEST_F(Edge, MakesAndLoadsDocuments)
{
    auto const document = VekNewXMLDocument(L"r");
    IVekXMLElement * const child = VekAddXMLChild(*document->GetRootElement(), L"a");
    ASSERT_TRUE(child && VekAddXMLChild(*child, L"b") && VekAddXMLChild(*document->GetRootElement(), L"a"));
    EXPECT_EQ(Names(VekDescendants(*document->GetRootElement())), L"a b a ");
    EXPECT_EQ(child->GetRefCount(), 1U);
    child->AddAttribute(L"n", L"1 < 2", -1);
    EXPECT_EQ(VekAttributeText(*child, L"N"), L"1 < 2");
    EXPECT_EQ(VekAttributeText(*child, L"m"), std::nullopt);
    std::pair<std::string, VEK_XML_ERROR> const rows[] = {{"<r><a/></r>", VEK_XML_ERROR_NONE},
                                                          {"<r><a/>", VEK_XML_ERROR_ENDS_EARLY},
                                                          {"", VEK_XML_ERROR_EMPTY},
                                                          {"<r></s>", VEK_XML_ERROR_TAG_MISMATCH}};
    for (auto const & [text, code] : rows)
    {
        VekXMLError error;
        auto const loaded = VekLoadXMLDocument(WriteFileBytes(L"load.xml", text).c_str(), &error);
        EXPECT_EQ(error.code, code) << text;
        EXPECT_EQ(loaded != nullptr, code == VEK_XML_ERROR_NONE) << text;
    }
    EXPECT_FALSE(VekLoadXMLDocument(TemporaryPath(L"none/load.xml").c_str()));
}

} // namespace
