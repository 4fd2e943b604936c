// The document and its DTD: rules with their entries, attribute lists with theirs.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"
#include "support/XMLKit.h"

namespace
{

struct XMLDocument : XMLTest
{
    CVekRef<IVekXMLDocument> m_document = NewDocument();
};

TEST_F(XMLDocument, TypeIsKeptEncodingIsNot)
{
    for (wchar_t const * name : {L"type", L"", L"t\x00FC", static_cast<wchar_t const *>(nullptr)})
    {
        EXPECT_TRUE(m_document->SetDocumentType(name));
        EXPECT_STREQ(m_document->GetDocumentType(), name ? name : L"");
        EXPECT_TRUE(m_document->SetEncoding(name));
        EXPECT_STREQ(m_document->GetEncoding(), L"UTF-8") << "kept: the encoding stays for life";
    }
}

TEST_F(XMLDocument, RootElementIsCounted)
{
    auto const first = NewElement();
    EXPECT_TRUE(m_document->SetRootElement(first.Get()));
    EXPECT_TRUE(m_document->SetRootElement(first.Get()));
    EXPECT_EQ(first->GetRefCount(), 2u) << "the same root again";
    EXPECT_TRUE(m_document->SetRootElement(nullptr));
    EXPECT_EQ(first->GetRefCount(), 1u);
    EXPECT_EQ(m_document->GetRootElement(), nullptr);
    m_document->SetRootElement(NewElement(L"held by the document alone").Get());
    m_document->SetRootElement(m_document->GetRootElement());
    EXPECT_EQ(m_document->GetRootElement()->GetRefCount(), 1u);
}

TEST_F(XMLDocument, FindElementFromPath)
{
    EXPECT_EQ(m_document->FindElementFromPath(L"a", true), nullptr);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDocument::FindElementFromPath --> Root element does not exist");
    m_document->SetRootElement(NewElement(L"root").Get());
    EXPECT_EQ(m_document->FindElementFromPath(L"a/b\\c", true)->GetRefCount(), 1u);
    EXPECT_EQ(TreeText(*m_document), L"root{a{b{c}}}");
    std::tuple<wchar_t const *, wchar_t const *, char const *> const rows[] = {
        // clang-format off
        {L"a/b\\c", L"c", "the same path"}, {L"A\\B/C", L"c", "in any case"}, {L"a", L"a", "one component"},
        {L"/a//b\\/", L"b", "empty components are skipped"}, {L"//\\", L"root", "separators alone are the root"},
        {L"", L"root", "so is an empty path"}, {nullptr, L"root", "and null"},
        {L"root", L"", "the root's own name is not part of the path"}, {L"a/x/c", L"", "a missing component"},
        {L"a/b/c/d", L"", "beyond the end"}, {L" a", L"", "spaces count"},
        // clang-format on
    };
    for (auto const & [path, name, row] : rows)
    {
        IVekXMLElement const * const found = m_document->FindElementFromPath(path, false);
        EXPECT_EQ(std::wstring(found ? found->GetName() : L""), name) << row;
    }
    m_document->FindElementFromPath(L"a/x/", true);
    EXPECT_EQ(TreeText(*m_document), L"root{a{b{c} x}}");
    EXPECT_EQ(m_log.Take(), L"");
}

TEST_F(XMLDocument, PathsOfAnyLengthAndDepth)
{
    m_document->SetRootElement(NewElement(L"root").Get());
    std::wstring path(100'000, L'c');
    for (int i = 0; i < (VekGuard::Active ? 5'000 : 200'000); ++i)
        path += L"/d";
    IVekXMLElement const * const last = m_document->FindElementFromPath(path.c_str(), true);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(m_document->FindElementFromPath(path.c_str(), false), last);
    EXPECT_EQ(m_document->GetRootElement()->GetChild(0)->GetName().GetLength(), 100'000);
}

TEST_F(XMLDocument, ForeignRoot)
{
    m_document->SetRootElement(CVekRef<ForeignElement>(new ForeignElement(L"f")).Get());
    EXPECT_EQ(m_document->FindElementFromPath(L"a", false), nullptr);
    IVekXMLElement * const made = m_document->FindElementFromPath(L"a/b", true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(m_document->FindElementFromPath(L"A/B", true), made);
    EXPECT_EQ(m_document->GetRootElement()->GetNumChildren(), 1);
}

// The five kinds of lists of a DTD, each with one entry of the document below.
constexpr wchar_t WHOLE_DTD[] = L"r=5{e:1:0(c:1:1)} l[a:T] ";

CVekRef<IVekXMLDocument> DocumentWithDTD()
{
    auto document = NewDocument();
    document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    document->GetDTDRule(0)->AddRuleEntry(L"e", VEK_XML_DTD_ELEMENT, 0);
    document->GetDTDRule(0)->GetRuleEntry(0)->AddChild(L"c", VEK_XML_DTD_ELEMENT, 1);
    document->AddDTDAttributeList(L"l");
    document->GetDTDAttributeList(0)->AddAttributeEntry(L"a", L"T", false);
    return document;
}

using Document = IVekXMLDocument;
using Text = wchar_t const *;
struct NamedListRow
{
    std::wstring adding, removing; // what the messages begin with
    int (*add)(Document &, Text name);
    void (*remove)(Document &, int index);
    Text taken, noObject, noRoom;
    Text name, withX; // of the entry in other case, and the DTD with an "x" behind it
    int repeatedNull; // what adding a second entry without a name returns
};
// clang-format off
NamedListRow const NAMED_LISTS[] = {
    {L"CVekXMLDocument::AddDTDRule", L"CVekXMLDocument::RemoveDTDRule",
     [](Document & d, Text name) { return d.AddDTDRule(name, VEK_XML_DTD_ANY); },
     [](Document & d, int index) { d.RemoveDTDRule(index); },
     L"DTD rule with same name already exist", L"Failed to allocate new rule", L"Failed to add new rule",
     L"R", L"r=5{e:1:0(c:1:1)} x=2{} l[a:T] ", -1},
    {L"CVekXMLDocument::AddDTDAttributeList", L"CVekXMLDocument::RemoveDTDAttributeList",
     [](Document & d, Text name) { return d.AddDTDAttributeList(name); },
     [](Document & d, int index) { d.RemoveDTDAttributeList(index); },
     L"DTD attribute list with same name already exist", L"Failed to allocate new rule", L"Failed to add new rule",
     L"L", L"r=5{e:1:0(c:1:1)} l[a:T] x[] ", -1},
    {L"CVekXMLDTDRule::AddRuleEntry", L"CVekXMLDTDRule::RemoveRuleEntry",
     [](Document & d, Text name) { return d.GetDTDRule(0)->AddRuleEntry(name, VEK_XML_DTD_MIXED, 3); },
     [](Document & d, int index) { d.GetDTDRule(0)->RemoveRuleEntry(index); },
     L"Entry with same name already exist", L"Failed to allocate new entry", L"Failed to add new entry",
     L"E", L"r=5{e:1:0(c:1:1) x:3:3} l[a:T] ", 3}, // a group is never taken
    {L"CVekXMLDTDRuleEntry::AddChild", L"CVekXMLDTDRuleEntry::RemoveChild",
     [](Document & d, Text name) { return d.GetDTDRule(0)->GetRuleEntry(0)->AddChild(name, VEK_XML_DTD_ELEMENT, 1); },
     [](Document & d, int index) { d.GetDTDRule(0)->GetRuleEntry(0)->RemoveChild(index); },
     L"Name already used C", L"Failed to create new entry", L"Failed to add new entry",
     L"C", L"r=5{e:1:0(c:1:1 x:1:1)} l[a:T] ", 3},
    {L"CVekXMLDTDAttributeList::AddAttributeEntry", L"CVekXMLDTDAttributeList::RemoveAttributeEntry",
     [](Document & d, Text name) { return d.GetDTDAttributeList(0)->AddAttributeEntry(name, L"t", true); },
     [](Document & d, int index) { d.GetDTDAttributeList(0)->RemoveAttributeEntry(index); },
     L"Entry with same name already exist", L"Failed to allocate new entry", L"Failed to add new entry",
     L"A", L"r=5{e:1:0(c:1:1)} l[a:T x:t!] ", -1},
};
// clang-format on

TEST_F(XMLDocument, NamesAndIndexesOfItsDTD)
{
    for (NamedListRow const & row : NAMED_LISTS)
    {
        SCOPED_TRACE(testing::PrintToString(row.adding));
        auto const document = DocumentWithDTD();
        EXPECT_EQ(row.add(*document, row.name), -1);
        EXPECT_EQ(m_log.Take(), row.adding + L" --> " + row.taken);
        EXPECT_EQ(row.add(*document, L"x"), 1);
        EXPECT_EQ(DTDText(*document), row.withX);
        EXPECT_EQ(row.add(*document, nullptr), 2);
        EXPECT_EQ(m_log.Take(), L"");
        EXPECT_EQ(row.add(*document, nullptr), row.repeatedNull);
        EXPECT_EQ(row.add(*document, L""), -1) << "an empty name is the name of what has none";
        m_log.Clear();
        row.remove(*document, 4);
        row.remove(*document, -1);
        EXPECT_EQ(m_log.Take(), row.removing + L" --> Invalid index 4\n" + row.removing + L" --> Invalid index -1");
        for (int index = row.repeatedNull == -1 ? 2 : 3; index > 0; --index)
            row.remove(*document, index);
        EXPECT_EQ(DTDText(*document), WHOLE_DTD);
    }
    auto const document = DocumentWithDTD();
    EXPECT_EQ(document->FindDTDRule(L"R"), document->GetDTDRule(0));
    EXPECT_EQ(document->FindDTDAttributeList(L"L"), document->GetDTDAttributeList(0));
    EXPECT_FALSE(document->FindDTDRule(L"x") || document->FindDTDRule(nullptr));
    EXPECT_FALSE(document->GetDTDRule(-1) || document->GetDTDAttributeList(1) ||
                 document->GetDTDRule(0)->GetRuleEntry(1) || document->GetDTDRule(0)->GetRuleEntry(0)->GetChild(-1) ||
                 document->GetDTDAttributeList(0)->GetAttributeEntry(1));
    EXPECT_EQ(m_log.Take(), L"");
}

// Long lists are searched in another way than short ones; the answers are the same.
TEST_F(XMLDocument, LongLists)
{
    int const count = VekGuard::Active ? 500 : 100'000;
    auto const name = [](wchar_t const * start, int i) { return start + std::to_wstring(i); };
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(m_document->AddDTDAttributeList(name(L"e", i).c_str()), i);
    for (int i = 1; i < count; i += count / 50 + 1)
    {
        EXPECT_EQ(m_document->FindDTDAttributeList(name(L"E", i).c_str()), m_document->GetDTDAttributeList(i));
        EXPECT_EQ(m_document->FindDTDAttributeList(name(L"x", i).c_str()), nullptr);
    }
    m_document->RemoveDTDAttributeList(100);
    EXPECT_EQ(m_document->FindDTDAttributeList(L"e100"), nullptr);
    EXPECT_EQ(m_document->FindDTDAttributeList(L"e101"), m_document->GetDTDAttributeList(100));
    EXPECT_EQ(m_document->AddDTDAttributeList(L"e100"), count - 1);
    m_document->RemoveAllDTDAttributeLists();
    EXPECT_EQ(m_document->FindDTDAttributeList(L"e100"), nullptr);

    auto const document = DocumentWithDTD();
    IVekXMLDTDRule::RuleEntry & group = *document->GetDTDRule(0)->GetRuleEntry(0);
    for (int i = 1; i < 401; ++i)
        ASSERT_EQ(group.AddChild(name(i < 201 ? L"e" : L"E", i % 200 / 4).c_str(), VEK_XML_DTD_ELEMENT, i % 4),
                  i < 201 ? i : -1);
    EXPECT_EQ(group.AddChild(L"e7", VEK_XML_DTD_MIXED, 0), 201) << "what differs in type or occurrence is not the same";
    EXPECT_EQ(m_log.Take().substr(0, 54), L"CVekXMLDTDRuleEntry::AddChild --> Name already used E0");
}

// One operation of each interface by its place in the table, as a host of another compiler calls it.
TEST_F(XMLDocument, Slots)
{
    IVekXMLDocument * const document = DocumentWithDTD().Detach();
    IVekXMLDTDRule * const rule = document->GetDTDRule(0);
    IVekXMLDTDAttributeList * const list = document->GetDTDAttributeList(0);
    EXPECT_EQ((CallSlot<int>(rule->GetRuleEntry(0), 9, L"x", VEK_XML_DTD_ELEMENT, 2)), 1);
    EXPECT_EQ((CallSlot<int>(rule, 6, L"y", VEK_XML_DTD_MIXED, 3)), 1);
    EXPECT_EQ((CallSlot<int>(document, 16, L"s", VEK_XML_DTD_CHOICE)), 1);
    EXPECT_EQ((CallSlot<int>(list, 5, L"b", L"ID", true)), 1);
    EXPECT_TRUE(CallSlot<bool>(list->GetAttributeEntry(1), 5));
    EXPECT_EQ(DTDText(*document), L"r=5{e:1:0(c:1:1 x:1:2) y:3:3} s=4{} l[a:T b:ID!] ");
    CVekXMLElement * const element = NewElement(L"e").Detach();
    element->AddAttribute(L"v", 7, -1);
    int value = 0;
    EXPECT_TRUE((CallSlot<bool>(element, 44, L"V", &value, 1)) && value == 7);
    // The deleting destructors: the leak check of the guarded build sees that they free.
    DestroyBySlot(document, 27);
    DestroyBySlot(element, 54);
    DestroyBySlot(new CVekXMLAttribute(L"n", 1, L"v", 1), 3);
}

// And the other objects of the model.
TEST_F(XMLDocument, Counts)
{
    auto const document = DocumentWithDTD();
    IVekXMLDTDRule * const rule = document->GetDTDRule(0);
    IVekXMLDTDAttributeList * const list = document->GetDTDAttributeList(0);
    IVekObject * const objects[] = {rule, rule->GetRuleEntry(0), list, list->GetAttributeEntry(0)};
    for (IVekObject * object : objects)
        object->AddRef();
    document->RemoveAllDTDRules();
    document->RemoveAllDTDAttributeLists();
    rule->RemoveAllRuleEntries();
    list->RemoveAllAttributeEntries();
    for (IVekObject * object : objects)
        ExpectRefCountContract("of a DTD", object);
    ExpectRefCountContract("CVekXMLDocument", XMLManager().CreateXMLDocument());
    ExpectRefCountContract("CVekXMLElement", XMLManager().CreateXMLElement());
    ExpectRefCountContract("CVekXMLAttribute", new CVekXMLAttribute(L"n", 1, L"v", 1));
}

TEST_F(XMLDocument, FailedAllocations)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    for (NamedListRow const & row : NAMED_LISTS)
    {
        bool failed = true;
        int noRooms = 0;
        for (std::size_t n = 1; failed; ++n)
        {
            SCOPED_TRACE(testing::PrintToString(row.adding) + ", allocation " + std::to_string(n));
            auto const document = DocumentWithDTD();
            // The capture's own blocks come after the one that fails.
            VekGuard::FailAllocation(n);
            int const index = row.add(*document, L"x");
            failed = VekGuard::FailReset();
            std::wstring const message = m_log.Take();
            bool const lackedRoom = failed && message == row.adding + L" --> " + row.noRoom;
            noRooms += lackedRoom;
            EXPECT_TRUE(lackedRoom || message == (failed ? row.adding + L" --> " + row.noObject : L""))
                << testing::PrintToString(message);
            EXPECT_EQ(index < 0, failed);
            EXPECT_EQ(DTDText(*document), failed ? WHOLE_DTD : row.withX);
        }
        EXPECT_EQ(noRooms, 1) << testing::PrintToString(row.adding);
    }
}

} // namespace
