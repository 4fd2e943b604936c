// The document and its DTD: rules with their entries, attribute lists with theirs.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/XMLKit.h"

#include <gtest/gtest.h>

namespace
{

class XMLDocument : public testing::Test
{
protected:
    LibraryScope m_library;
    Holder<IVekXMLDocument> m_document = NewDocument();
    LogCapture m_log;
};

TEST_F(XMLDocument, BeginsEmpty)
{
    IVekXMLDocument const & document = *m_document;
    EXPECT_EQ(document.GetRootElement(), nullptr);
    EXPECT_EQ(std::wstring(document.GetDocumentType()), L"");
    EXPECT_EQ(std::wstring(document.GetEncoding()), L"UTF-8");
    EXPECT_EQ(document.GetNumDTDRules() + document.GetNumDTDAttributeLists(), 0);
}

TEST_F(XMLDocument, TypeIsKeptEncodingIsNot)
{
    for (wchar_t const * name : {L"type", L"", L"t\x00FC"})
    {
        EXPECT_TRUE(m_document->SetDocumentType(name));
        EXPECT_EQ(std::wstring(m_document->GetDocumentType()), name);
    }
    EXPECT_TRUE(m_document->SetDocumentType(nullptr));
    EXPECT_EQ(m_document->GetDocumentType().GetLength(), 0);
    for (wchar_t const * name : {L"UTF-16", L"", static_cast<wchar_t const *>(nullptr)})
    {
        EXPECT_TRUE(m_document->SetEncoding(name));
        EXPECT_EQ(std::wstring(m_document->GetEncoding()), L"UTF-8") << "deliberate: the encoding stays for life";
    }
}

TEST_F(XMLDocument, RootElementIsCounted)
{
    auto const first = NewElement(L"first");
    auto const second = NewElement(L"second");
    EXPECT_TRUE(m_document->SetRootElement(first));
    EXPECT_TRUE(m_document->SetRootElement(first));
    EXPECT_EQ(first->GetRefCount(), 2u) << "the same root again";
    EXPECT_TRUE(m_document->SetRootElement(second));
    EXPECT_EQ(first->GetRefCount(), 1u);
    EXPECT_EQ(m_document->GetRootElement(), static_cast<IVekXMLElement *>(second));
    EXPECT_TRUE(m_document->SetRootElement(nullptr));
    EXPECT_EQ(second->GetRefCount(), 1u);
    EXPECT_EQ(m_document->GetRootElement(), nullptr);
    m_document->SetRootElement(NewElement(L"held by the document alone"));
    m_document->SetRootElement(m_document->GetRootElement());
    EXPECT_EQ(m_document->GetRootElement()->GetRefCount(), 1u);
}

TEST_F(XMLDocument, FindElementFromPath)
{
    EXPECT_EQ(m_document->FindElementFromPath(L"a", true), nullptr);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDocument::FindElementFromPath --> Root element does not exist");
    m_document->SetRootElement(NewElement(L"root"));
    IVekXMLElement * const c = m_document->FindElementFromPath(L"a/b\\c", true);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(TreeText(*m_document), L"root{a{b{c}}}");
    EXPECT_EQ(c->GetRefCount(), 1u);
    struct
    {
        wchar_t const * path;
        wchar_t const * found; // null: nothing
        char const * row;
    } const rows[] = {
        {L"a/b\\c", L"c", "the same path"},
        {L"A\\B/C", L"c", "in any case"},
        {L"/a//b\\/", L"b", "empty components are skipped"},
        {L"a", L"a", "one component"},
        {L"", L"root", "an empty path is the root"},
        {nullptr, L"root", "so is null"},
        {L"//\\", L"root", "and separators alone"},
        {L"root", nullptr, "the root's own name is not part of the path"},
        {L"a/x/c", nullptr, "a missing component"},
        {L"a/b/c/d", nullptr, "beyond the end"},
        {L" a", nullptr, "spaces count"},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.row);
        IVekXMLElement const * const found = m_document->FindElementFromPath(row.path, false);
        ASSERT_EQ(found != nullptr, row.found != nullptr);
        if (found)
        {
            EXPECT_EQ(std::wstring(found->GetName()), row.found);
        }
    }
    EXPECT_EQ(TreeText(*m_document), L"root{a{b{c}}}");
    m_document->FindElementFromPath(L"a/x/", true);
    EXPECT_EQ(TreeText(*m_document), L"root{a{b{c} x}}");
    EXPECT_EQ(m_log.Take(), L"");
}

TEST_F(XMLDocument, PathsOfAnyLengthAndDepth)
{
    m_document->SetRootElement(NewElement(L"root"));
    std::wstring const component(100'000, L'c');
    IVekXMLElement const * const wide = m_document->FindElementFromPath((component + L"/" + component).c_str(), true);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(std::wstring(wide->GetName()), component);
    std::wstring deep;
    for (int i = 0; i < (VekGuard::Active ? 5'000 : 200'000); ++i)
        deep += L"d/";
    IVekXMLElement const * const last = m_document->FindElementFromPath(deep.c_str(), true);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(m_document->FindElementFromPath(deep.c_str(), false), last);
}

TEST_F(XMLDocument, ForeignRoot)
{
    {
        Holder<ForeignElement> const foreign(new ForeignElement(L"f"));
        m_document->SetRootElement(foreign);
    }
    EXPECT_EQ(m_document->FindElementFromPath(L"a", false), nullptr);
    IVekXMLElement * const made = m_document->FindElementFromPath(L"a/b", true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(m_document->FindElementFromPath(L"A/B", true), made);
    EXPECT_EQ(m_document->GetRootElement()->GetNumChildren(), 1);
}

TEST_F(XMLDocument, Rules)
{
    EXPECT_EQ(m_document->AddDTDRule(L"a", VEK_XML_DTD_EMPTY), 0);
    EXPECT_EQ(m_document->AddDTDRule(L"b", VEK_XML_DTD_ANY), 1);
    EXPECT_EQ(m_document->AddDTDRule(nullptr, VEK_XML_DTD_MIXED), 2);
    EXPECT_EQ(m_log.Take(), L"");
    for (wchar_t const * name : {L"A", L"b", L""})
    {
        EXPECT_EQ(m_document->AddDTDRule(name, VEK_XML_DTD_EMPTY), -1);
        EXPECT_EQ(m_log.Take(), L"CVekXMLDocument::AddDTDRule --> DTD rule with same name already exist");
    }
    EXPECT_EQ(m_document->FindDTDRule(L"B"), m_document->GetDTDRule(1));
    EXPECT_EQ(m_document->FindDTDRule(nullptr), m_document->GetDTDRule(2));
    EXPECT_EQ(m_document->FindDTDRule(L"none"), nullptr);
    EXPECT_EQ(m_document->GetDTDRule(3), nullptr);
    EXPECT_EQ(m_document->GetDTDRule(-1), nullptr);
    EXPECT_EQ(m_log.Take(), L"");
    m_document->RemoveDTDRule(3);
    m_document->RemoveDTDRule(-1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDocument::RemoveDTDRule --> Invalid index 3\n"
                            L"CVekXMLDocument::RemoveDTDRule --> Invalid index -1");
    m_document->RemoveDTDRule(0);
    EXPECT_EQ(DTDText(*m_document), L"b=2{} =3{} ");
    m_document->RemoveAllDTDRules();
    EXPECT_EQ(m_document->GetNumDTDRules(), 0);
}

TEST_F(XMLDocument, RuleEntries)
{
    m_document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    IVekXMLDTDRule & rule = *m_document->GetDTDRule(0);
    EXPECT_EQ(rule.AddRuleEntry(L"a", VEK_XML_DTD_ELEMENT, 0), 0);
    EXPECT_EQ(rule.AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 2), 1);
    EXPECT_EQ(rule.AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 2), 2) << "a group is never taken";
    EXPECT_EQ(m_log.Take(), L"");
    for (wchar_t const * name : {L"A", L""})
    {
        EXPECT_EQ(rule.AddRuleEntry(name, VEK_XML_DTD_MIXED, 3), -1) << "an empty name is a group's name";
        EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRule::AddRuleEntry --> Entry with same name already exist");
    }
    IVekXMLDTDRule::RuleEntry & group = *rule.GetRuleEntry(1);
    EXPECT_EQ(group.AddChild(L"x", VEK_XML_DTD_ELEMENT, 0), 0);
    EXPECT_EQ(group.AddChild(L"x", VEK_XML_DTD_ELEMENT, 1), 1);
    EXPECT_EQ(group.AddChild(L"x", VEK_XML_DTD_MIXED, 0), 2);
    EXPECT_EQ(group.AddChild(nullptr, VEK_XML_DTD_CHOICE, 0), 3);
    EXPECT_EQ(group.AddChild(nullptr, VEK_XML_DTD_CHOICE, 0), 4);
    EXPECT_EQ(group.AddChild(L"", VEK_XML_DTD_CHOICE, 1), 5);
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_EQ(group.AddChild(L"X", VEK_XML_DTD_ELEMENT, 1), -1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRuleEntry::AddChild --> Name already used X");
    EXPECT_EQ(group.AddChild(L"", VEK_XML_DTD_CHOICE, 0), -1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRuleEntry::AddChild --> Name already used ");
    EXPECT_EQ(DTDText(*m_document), L"r=5{a:1:0 :4:2(x:1:0 x:1:1 x:3:0 :4:0 :4:0 :4:1) :4:2} ");

    EXPECT_EQ(rule.GetRuleEntry(3), nullptr);
    EXPECT_EQ(group.GetChild(-1), nullptr);
    EXPECT_EQ(m_log.Take(), L"");
    rule.RemoveRuleEntry(3);
    group.RemoveChild(-1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRule::RemoveRuleEntry --> Invalid index 3\n"
                            L"CVekXMLDTDRuleEntry::RemoveChild --> Invalid index -1");
    group.RemoveChild(3);
    rule.RemoveRuleEntry(0);
    EXPECT_EQ(DTDText(*m_document), L"r=5{:4:2(x:1:0 x:1:1 x:3:0 :4:0 :4:1) :4:2} ");
    group.RemoveAllChildren();
    EXPECT_EQ(DTDText(*m_document), L"r=5{:4:2 :4:2} ");
    rule.RemoveAllRuleEntries();
    EXPECT_EQ(DTDText(*m_document), L"r=5{} ");
}

TEST_F(XMLDocument, AttributeLists)
{
    EXPECT_EQ(m_document->AddDTDAttributeList(L"a"), 0);
    EXPECT_EQ(m_document->AddDTDAttributeList(L"b"), 1);
    EXPECT_EQ(m_document->AddDTDAttributeList(L"A"), -1);
    EXPECT_EQ(m_log.Take(),
              L"CVekXMLDocument::AddDTDAttributeList --> DTD attribute list with same name already exist");
    EXPECT_EQ(m_document->FindDTDAttributeList(L"B"), m_document->GetDTDAttributeList(1));
    EXPECT_EQ(m_document->FindDTDAttributeList(L"none"), nullptr);
    EXPECT_EQ(m_document->GetDTDAttributeList(2), nullptr);
    IVekXMLDTDAttributeList & list = *m_document->GetDTDAttributeList(0);
    EXPECT_EQ(list.AddAttributeEntry(L"x", L"CDATA", false), 0);
    EXPECT_EQ(list.AddAttributeEntry(L"y", nullptr, true), 1);
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_EQ(list.AddAttributeEntry(L"X", L"ID", true), -1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDAttributeList::AddAttributeEntry --> Entry with same name already exist");
    EXPECT_EQ(DTDText(*m_document), L"a[x:CDATA y:!] b[] ");
    EXPECT_EQ(list.GetAttributeEntry(2), nullptr);
    list.RemoveAttributeEntry(2);
    m_document->RemoveDTDAttributeList(2);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDAttributeList::RemoveAttributeEntry --> Invalid index 2\n"
                            L"CVekXMLDocument::RemoveDTDAttributeList --> Invalid index 2");
    list.RemoveAttributeEntry(0);
    m_document->RemoveDTDAttributeList(1);
    EXPECT_EQ(DTDText(*m_document), L"a[y:!] ");
    list.RemoveAllAttributeEntries();
    EXPECT_EQ(DTDText(*m_document), L"a[] ");
    m_document->RemoveAllDTDAttributeLists();
    EXPECT_EQ(DTDText(*m_document), L"");
}

// Long lists are searched in another way than short ones; the answers are the same.
TEST_F(XMLDocument, LongLists)
{
    int const count = VekGuard::Active ? 500 : 100'000;
    m_document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    IVekXMLDTDRule & rule = *m_document->GetDTDRule(0);
    auto const name = [](wchar_t const * start, int i) { return start + std::to_wstring(i); };
    for (int i = 0; i < count; ++i)
    {
        ASSERT_EQ(rule.AddRuleEntry(i % 10 ? name(L"e", i).c_str() : nullptr, VEK_XML_DTD_ELEMENT, i % 4), i);
        ASSERT_EQ(m_document->AddDTDAttributeList(name(L"e", i).c_str()), i);
    }
    EXPECT_EQ(m_log.Take(), L"");
    for (int i = 1; i < count; i += count / 50 + 1)
    {
        int const added = rule.GetNumRuleEntries();
        EXPECT_EQ(rule.AddRuleEntry(name(L"E", i).c_str(), VEK_XML_DTD_ELEMENT, 0), i % 10 ? -1 : added);
        EXPECT_EQ(m_document->FindDTDAttributeList(name(L"E", i).c_str()), m_document->GetDTDAttributeList(i));
        EXPECT_EQ(m_document->FindDTDAttributeList(name(L"x", i).c_str()), nullptr);
    }
    m_document->RemoveDTDAttributeList(100);
    EXPECT_EQ(m_document->FindDTDAttributeList(L"e100"), nullptr);
    EXPECT_EQ(m_document->FindDTDAttributeList(L"e101"), m_document->GetDTDAttributeList(100));
    EXPECT_EQ(m_document->AddDTDAttributeList(L"e100"), count - 1);

    rule.RemoveAllRuleEntries();
    rule.AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 0);
    IVekXMLDTDRule::RuleEntry & group = *rule.GetRuleEntry(0);
    for (int i = 0; i < 200; ++i)
        ASSERT_EQ(group.AddChild(name(L"e", i / 4).c_str(), VEK_XML_DTD_ELEMENT, i % 4), i);
    for (int i = 0; i < 200; ++i)
        ASSERT_EQ(group.AddChild(name(L"E", i / 4).c_str(), VEK_XML_DTD_ELEMENT, i % 4), -1) << i;
    EXPECT_EQ(group.AddChild(L"e7", VEK_XML_DTD_MIXED, 0), 200);
}

TEST_F(XMLDocument, DeepEntriesEnd)
{
    m_document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    m_document->GetDTDRule(0)->AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 0);
    IVekXMLDTDRule::RuleEntry * entry = m_document->GetDTDRule(0)->GetRuleEntry(0);
    for (int i = 0; i < (VekGuard::Active ? 5'000 : 300'000); ++i)
    {
        ASSERT_EQ(entry->AddChild(nullptr, VEK_XML_DTD_CHOICE, 0), 0);
        entry->AddChild(L"leaf", VEK_XML_DTD_ELEMENT, 0);
        entry = entry->GetChild(0);
    }
    entry->AddRef();
    m_document->RemoveAllDTDRules();
    EXPECT_EQ(entry->Release(), 0u);
}

TEST_F(XMLDocument, Counts)
{
    m_document->AddDTDRule(L"r", VEK_XML_DTD_CHOICE);
    m_document->AddDTDAttributeList(L"l");
    IVekXMLDTDRule * const rule = m_document->GetDTDRule(0);
    rule->AddRuleEntry(L"e", VEK_XML_DTD_ELEMENT, 0);
    IVekXMLDTDRule::RuleEntry * const entry = rule->GetRuleEntry(0);
    IVekXMLDTDAttributeList * const list = m_document->GetDTDAttributeList(0);
    list->AddAttributeEntry(L"a", L"CDATA", true);
    IVekXMLDTDAttributeList::AttributeEntry * const attribute = list->GetAttributeEntry(0);
    for (IVekObject * object : {static_cast<IVekObject *>(rule), static_cast<IVekObject *>(entry),
                                static_cast<IVekObject *>(list), static_cast<IVekObject *>(attribute)})
        object->AddRef();
    m_document->RemoveAllDTDRules();
    m_document->RemoveAllDTDAttributeLists();
    rule->RemoveAllRuleEntries();
    list->RemoveAllAttributeEntries();
    ExpectRefCountContract("CVekXMLDTDRule", rule);
    ExpectRefCountContract("CVekXMLDTDRuleEntry", entry);
    ExpectRefCountContract("CVekXMLDTDAttributeList", list);
    ExpectRefCountContract("CVekXMLDTDAttributeEntry", attribute);
    ExpectRefCountContract("CVekXMLDocument", XMLManager().CreateXMLDocument());
    ExpectRefCountContract("CVekXMLElement", XMLManager().CreateXMLElement());
}

TEST_F(XMLDocument, FailedAllocations)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    struct
    {
        int (*operation)(IVekXMLDocument &);
        wchar_t const * noObject;
        wchar_t const * noRoom;
        wchar_t const * after;
    } const rows[] = {
        {[](IVekXMLDocument & d) { return d.AddDTDRule(L"x", VEK_XML_DTD_ANY) - 1; },
         L"CVekXMLDocument::AddDTDRule --> Failed to allocate new rule",
         L"CVekXMLDocument::AddDTDRule --> Failed to add new rule", L"r=5{:4:0} x=2{} l[] "},
        {[](IVekXMLDocument & d) { return d.AddDTDAttributeList(L"x") - 1; },
         L"CVekXMLDocument::AddDTDAttributeList --> Failed to allocate new rule",
         L"CVekXMLDocument::AddDTDAttributeList --> Failed to add new rule", L"r=5{:4:0} l[] x[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDRule(0)->AddRuleEntry(L"x", VEK_XML_DTD_ELEMENT, 3) - 1; },
         L"CVekXMLDTDRule::AddRuleEntry --> Failed to allocate new entry",
         L"CVekXMLDTDRule::AddRuleEntry --> Failed to add new entry", L"r=5{:4:0 x:1:3} l[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDRule(0)->GetRuleEntry(0)->AddChild(L"x", VEK_XML_DTD_ELEMENT, 2); },
         L"CVekXMLDTDRuleEntry::AddChild --> Failed to create new entry",
         L"CVekXMLDTDRuleEntry::AddChild --> Failed to add new entry", L"r=5{:4:0(x:1:2)} l[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDAttributeList(0)->AddAttributeEntry(L"x", L"t", true); },
         L"CVekXMLDTDAttributeList::AddAttributeEntry --> Failed to allocate new entry",
         L"CVekXMLDTDAttributeList::AddAttributeEntry --> Failed to add new entry", L"r=5{:4:0} l[x:t!] "},
    };
    for (auto const & row : rows)
    {
        bool failed = true;
        int noRoom = 0;
        for (std::size_t n = 1; failed; ++n)
        {
            SCOPED_TRACE(testing::PrintToString(std::wstring(row.noObject)) + ", allocation " + std::to_string(n));
            auto const document = NewDocument();
            document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
            document->GetDTDRule(0)->AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 0);
            document->AddDTDAttributeList(L"l");
            m_log.Clear();
            // The capture's own blocks come after the one that fails.
            VekGuard::FailAllocation(n);
            int const index = row.operation(*document);
            failed = VekGuard::FailReset();
            std::wstring const message = m_log.Take();
            noRoom += message == row.noRoom;
            EXPECT_TRUE(message == (failed ? row.noObject : L"") || (failed && message == row.noRoom))
                << testing::PrintToString(message);
            EXPECT_EQ(index < 0, failed);
            EXPECT_EQ(DTDText(*document), failed ? L"r=5{:4:0} l[] " : row.after);
        }
        EXPECT_EQ(noRoom, 1) << testing::PrintToString(std::wstring(row.noRoom));
    }
}

} // namespace
