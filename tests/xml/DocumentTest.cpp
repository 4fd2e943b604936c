// The document and its DTD: rules with their entries, attribute lists with theirs.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/RefCountContract.h"
#include "support/XMLKit.h"

namespace
{

struct XMLDocument : XMLTest
{
    CVekRef<IVekXMLDocument> m_document = NewDocument();
};

TEST_F(XMLDocument, TypeIsKeptEncodingIsNot)
{
    EXPECT_STREQ(m_document->GetDocumentType(), L"");
    EXPECT_STREQ(m_document->GetEncoding(), L"UTF-8");
    EXPECT_EQ(m_document->GetNumDTDRules() + m_document->GetNumDTDAttributeLists(), 0);
    for (wchar_t const * name : {L"type", L"", L"t\x00FC", static_cast<wchar_t const *>(nullptr)})
    {
        EXPECT_TRUE(m_document->SetDocumentType(name));
        EXPECT_STREQ(m_document->GetDocumentType(), name ? name : L"");
        EXPECT_TRUE(m_document->SetEncoding(name));
        EXPECT_STREQ(m_document->GetEncoding(), L"UTF-8") << "deliberate: the encoding stays for life";
    }
}

TEST_F(XMLDocument, RootElementIsCounted)
{
    auto const first = NewElement(), second = NewElement();
    EXPECT_EQ(m_document->GetRootElement(), nullptr);
    EXPECT_TRUE(m_document->SetRootElement(first.Get()));
    EXPECT_TRUE(m_document->SetRootElement(first.Get()));
    EXPECT_EQ(first->GetRefCount(), 2u) << "the same root again";
    EXPECT_TRUE(m_document->SetRootElement(second.Get()));
    EXPECT_EQ(first->GetRefCount(), 1u);
    EXPECT_EQ(m_document->GetRootElement(), static_cast<IVekXMLElement *>(second.Get()));
    EXPECT_TRUE(m_document->SetRootElement(nullptr));
    EXPECT_EQ(second->GetRefCount(), 1u);
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

// What each operation of the DTD does: ObjectModelSlotTest.
TEST_F(XMLDocument, NamesAndIndexesOfRulesAndLists)
{
    EXPECT_EQ(m_document->AddDTDRule(L"a", VEK_XML_DTD_EMPTY), 0);
    EXPECT_EQ(m_document->AddDTDRule(L"b", VEK_XML_DTD_ANY), 1);
    EXPECT_EQ(m_document->AddDTDRule(nullptr, VEK_XML_DTD_MIXED), 2);
    EXPECT_EQ(m_document->FindDTDRule(L"B"), m_document->GetDTDRule(1));
    EXPECT_EQ(m_document->FindDTDRule(nullptr), m_document->GetDTDRule(2));
    EXPECT_EQ(m_document->FindDTDRule(L"none"), nullptr);
    EXPECT_EQ(m_document->GetDTDRule(3), nullptr);
    EXPECT_EQ(m_document->GetDTDRule(-1), nullptr);
    EXPECT_EQ(m_document->AddDTDAttributeList(L"a"), 0);
    EXPECT_EQ(m_document->FindDTDAttributeList(L"none"), nullptr);
    EXPECT_EQ(m_document->GetDTDAttributeList(1), nullptr);
    IVekXMLDTDAttributeList & list = *m_document->GetDTDAttributeList(0);
    EXPECT_EQ(list.AddAttributeEntry(L"x", L"CDATA", false), 0);
    EXPECT_EQ(list.AddAttributeEntry(L"y", nullptr, true), 1);
    EXPECT_EQ(list.GetAttributeEntry(2), nullptr);
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_EQ(m_document->AddDTDRule(L"A", VEK_XML_DTD_EMPTY), -1);
    EXPECT_EQ(m_document->AddDTDRule(L"", VEK_XML_DTD_EMPTY), -1);
    EXPECT_EQ(m_document->AddDTDAttributeList(L"A"), -1);
    EXPECT_EQ(list.AddAttributeEntry(L"X", L"ID", true), -1);
    m_document->RemoveDTDRule(3);
    m_document->RemoveDTDRule(-1);
    m_document->RemoveDTDAttributeList(1);
    list.RemoveAttributeEntry(2);
    EXPECT_EQ(m_log.Take(),
              L"CVekXMLDocument::AddDTDRule --> DTD rule with same name already exist\n"
              L"CVekXMLDocument::AddDTDRule --> DTD rule with same name already exist\n"
              L"CVekXMLDocument::AddDTDAttributeList --> DTD attribute list with same name already exist\n"
              L"CVekXMLDTDAttributeList::AddAttributeEntry --> Entry with same name already exist\n"
              L"CVekXMLDocument::RemoveDTDRule --> Invalid index 3\n"
              L"CVekXMLDocument::RemoveDTDRule --> Invalid index -1\n"
              L"CVekXMLDocument::RemoveDTDAttributeList --> Invalid index 1\n"
              L"CVekXMLDTDAttributeList::RemoveAttributeEntry --> Invalid index 2");
    EXPECT_EQ(DTDText(*m_document), L"a=0{} b=2{} =3{} a[x:CDATA y:!] ");
}

TEST_F(XMLDocument, RuleEntries)
{
    m_document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    IVekXMLDTDRule & rule = *m_document->GetDTDRule(0);
    EXPECT_EQ(rule.AddRuleEntry(L"a", VEK_XML_DTD_ELEMENT, 0), 0);
    EXPECT_EQ(rule.AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 2), 1);
    EXPECT_EQ(rule.AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 2), 2) << "a group is never taken";
    IVekXMLDTDRule::RuleEntry & group = *rule.GetRuleEntry(1);
    std::tuple<wchar_t const *, VEK_XML_DTD_ENTRYTYPE, int> const rows[] = {
        // clang-format off
        {L"x", VEK_XML_DTD_ELEMENT, 0}, {L"x", VEK_XML_DTD_ELEMENT, 1}, {L"x", VEK_XML_DTD_MIXED, 0},
        {nullptr, VEK_XML_DTD_CHOICE, 0}, {nullptr, VEK_XML_DTD_CHOICE, 0}, {L"", VEK_XML_DTD_CHOICE, 1},
        // clang-format on
    };
    for (auto const & [name, type, occurrence] : rows)
        group.AddChild(name, type, occurrence);
    EXPECT_EQ(rule.GetRuleEntry(3), nullptr);
    EXPECT_EQ(group.GetChild(-1), nullptr);
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_EQ(rule.AddRuleEntry(L"A", VEK_XML_DTD_MIXED, 3), -1);
    EXPECT_EQ(rule.AddRuleEntry(L"", VEK_XML_DTD_MIXED, 3), -1) << "an empty name is a group's name";
    EXPECT_EQ(group.AddChild(L"X", VEK_XML_DTD_ELEMENT, 1), -1);
    EXPECT_EQ(group.AddChild(L"", VEK_XML_DTD_CHOICE, 0), -1);
    rule.RemoveRuleEntry(3);
    group.RemoveChild(-1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRule::AddRuleEntry --> Entry with same name already exist\n"
                            L"CVekXMLDTDRule::AddRuleEntry --> Entry with same name already exist\n"
                            L"CVekXMLDTDRuleEntry::AddChild --> Name already used X\n"
                            L"CVekXMLDTDRuleEntry::AddChild --> Name already used \n"
                            L"CVekXMLDTDRule::RemoveRuleEntry --> Invalid index 3\n"
                            L"CVekXMLDTDRuleEntry::RemoveChild --> Invalid index -1");
    EXPECT_EQ(DTDText(*m_document), L"r=5{a:1:0 :4:2(x:1:0 x:1:1 x:3:0 :4:0 :4:0 :4:1) :4:2} ");
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
    for (int i = 0; i < 400; ++i)
        ASSERT_EQ(group.AddChild(name(i < 200 ? L"e" : L"E", i % 200 / 4).c_str(), VEK_XML_DTD_ELEMENT, i % 4),
                  i < 200 ? i : -1);
    EXPECT_EQ(group.AddChild(L"e7", VEK_XML_DTD_MIXED, 0), 200);
}

// And the other objects of the model.
TEST_F(XMLDocument, Counts)
{
    m_document->AddDTDRule(L"r", VEK_XML_DTD_CHOICE);
    m_document->AddDTDAttributeList(L"l");
    IVekXMLDTDRule * const rule = m_document->GetDTDRule(0);
    rule->AddRuleEntry(L"e", VEK_XML_DTD_ELEMENT, 0);
    IVekXMLDTDAttributeList * const list = m_document->GetDTDAttributeList(0);
    list->AddAttributeEntry(L"a", L"CDATA", true);
    IVekObject * const objects[] = {rule, rule->GetRuleEntry(0), list, list->GetAttributeEntry(0)};
    for (IVekObject * object : objects)
        object->AddRef();
    m_document->RemoveAllDTDRules();
    m_document->RemoveAllDTDAttributeLists();
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
    // The operation, its name, what fails without an object and without room for it, and the result.
    std::tuple<int (*)(IVekXMLDocument &), std::wstring, wchar_t const *, wchar_t const *,
               wchar_t const *> const rows[] = {
        {[](IVekXMLDocument & d) { return d.AddDTDRule(L"x", VEK_XML_DTD_ANY) - 1; }, L"CVekXMLDocument::AddDTDRule",
         L"allocate new rule", L"add new rule", L"r=5{:4:0} x=2{} l[] "},
        {[](IVekXMLDocument & d) { return d.AddDTDAttributeList(L"x") - 1; }, L"CVekXMLDocument::AddDTDAttributeList",
         L"allocate new rule", L"add new rule", L"r=5{:4:0} l[] x[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDRule(0)->AddRuleEntry(L"x", VEK_XML_DTD_ELEMENT, 3) - 1; },
         L"CVekXMLDTDRule::AddRuleEntry", L"allocate new entry", L"add new entry", L"r=5{:4:0 x:1:3} l[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDRule(0)->GetRuleEntry(0)->AddChild(L"x", VEK_XML_DTD_ELEMENT, 2); },
         L"CVekXMLDTDRuleEntry::AddChild", L"create new entry", L"add new entry", L"r=5{:4:0(x:1:2)} l[] "},
        {[](IVekXMLDocument & d) { return d.GetDTDAttributeList(0)->AddAttributeEntry(L"x", L"t", true); },
         L"CVekXMLDTDAttributeList::AddAttributeEntry", L"allocate new entry", L"add new entry", L"r=5{:4:0} l[x:t!] "},
    };
    for (auto const & [operation, name, noObject, noRoom, after] : rows)
    {
        bool failed = true;
        int noRooms = 0;
        for (std::size_t n = 1; failed; ++n)
        {
            SCOPED_TRACE(testing::PrintToString(name) + ", allocation " + std::to_string(n));
            auto const document = NewDocument();
            document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
            document->GetDTDRule(0)->AddRuleEntry(nullptr, VEK_XML_DTD_CHOICE, 0);
            document->AddDTDAttributeList(L"l");
            // The capture's own blocks come after the one that fails.
            VekGuard::FailAllocation(n);
            int const index = operation(*document);
            failed = VekGuard::FailReset();
            std::wstring const message = m_log.Take();
            bool const lackedRoom = failed && message == name + L" --> Failed to " + noRoom;
            noRooms += lackedRoom;
            EXPECT_TRUE(lackedRoom || message == (failed ? name + L" --> Failed to " + noObject : L""))
                << testing::PrintToString(message);
            EXPECT_EQ(index < 0, failed);
            EXPECT_EQ(DTDText(*document), failed ? L"r=5{:4:0} l[] " : after);
        }
        EXPECT_EQ(noRooms, 1) << testing::PrintToString(name);
    }
}

} // namespace
