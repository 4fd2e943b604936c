// The tables of the object model's interfaces: every operation is called by its place.

#include "support/Slots.h"
#include "support/XMLKit.h"

namespace
{

std::wstring Text(void const * string)
{
    return static_cast<wchar_t const *>(*static_cast<CVekString<wchar_t> const *>(string));
}

void ExpectCounting(IVekObject * object)
{
    EXPECT_EQ(CallSlot<unsigned int>(object, 0), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(object, 2), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(object, 1), 1u);
}

struct XMLElementSlots : XMLTest
{
    // The two operations of one value type, told apart from the others by what they make of the same text. The default
    // is passed by its address or by value.
    template <class T, class Default>
    void ExpectReads(int nameSlot, Default passed, T const & defaultValue, T const & expected)
    {
        SCOPED_TRACE(nameSlot);
        T value{};
        EXPECT_TRUE((CallSlot<bool>(m_top, nameSlot, static_cast<wchar_t const *>(L"V"), &value, passed)));
        EXPECT_EQ(value, expected);
        EXPECT_FALSE((CallSlot<bool>(m_top, nameSlot, static_cast<wchar_t const *>(L"none"), &value, passed)));
        EXPECT_EQ(value, defaultValue);
        EXPECT_EQ(m_log.Take(), L"");
        EXPECT_TRUE((CallSlot<bool>(m_top, nameSlot + 1, 0, &value, passed)));
        EXPECT_EQ(value, expected);
        EXPECT_FALSE((CallSlot<bool>(m_top, nameSlot + 1, 1, &value, passed)));
        EXPECT_EQ(value, defaultValue);
        EXPECT_EQ(m_log.Take(), L"CVekXMLElement::GetAttributeValue --> Invalid index 1");
    }
    template <class T>
    void ExpectReads(int nameSlot, T const & expected)
    {
        T const defaultValue(9, 8, 7, 6);
        ExpectReads(nameSlot, &defaultValue, defaultValue, expected);
    }

    Holder<CVekXMLElement> m_top = NewElement(L"top");
};

TEST_F(XMLElementSlots, NameAndChildren)
{
    ExpectCounting(m_top);
    auto const a = NewElement(L"a"), b = NewElement(L"b"), parent = NewElement();
    m_top->SetParent(parent);
    for (int slot : {3, 4})
        EXPECT_EQ(CallSlot<void *>(m_top, slot), static_cast<void *>(parent)) << slot;
    CallSlot(m_top, 5, L"new");
    EXPECT_EQ(Text(CallSlot<void *>(m_top, 6)), L"new");
    EXPECT_EQ(CallSlot<int>(m_top, 8, static_cast<IVekXMLElement *>(a), -1), 0);
    EXPECT_EQ(CallSlot<int>(m_top, 8, static_cast<IVekXMLElement *>(b), -1), 1);
    EXPECT_EQ(CallSlot<int>(m_top, 7), 2);
    for (int slot : {13, 14})
        EXPECT_EQ(CallSlot<void *>(m_top, slot, 1), static_cast<void *>(b)) << slot;
    EXPECT_EQ((CallSlot<void *>(m_top, 15, L"B")), static_cast<void *>(b));
    EXPECT_EQ((CallSlot<void *>(m_top, 16, L"c", false)), nullptr);
    EXPECT_NE((CallSlot<void *>(m_top, 16, L"c", true)), nullptr);
    EXPECT_EQ(TreeText(*m_top), L"new{a b c}");
    CallSlot(m_top, 9, static_cast<IVekXMLElement *>(a));
    CallSlot(m_top, 10, L"C");
    EXPECT_EQ(TreeText(*m_top), L"new{b}");
    CallSlot(m_top, 11, 0);
    EXPECT_EQ(TreeText(*m_top), L"new");
    m_top->AddChild(a, -1);
    CallSlot(m_top, 12);
    EXPECT_EQ(TreeText(*m_top), L"new");
    EXPECT_EQ(m_log.Take(), L"");
}

TEST_F(XMLElementSlots, Attributes)
{
    VEK_VARIANT const one(L"<1");
    EXPECT_EQ((CallSlot<int>(m_top, 18, L"a", &one, -1)), 0);
    EXPECT_TRUE((CallSlot<bool>(m_top, 19, L"b", &one, true)));
    EXPECT_EQ(CallSlot<int>(m_top, 17), 2);
    EXPECT_TRUE((CallSlot<bool>(m_top, 20, 1, &one)));
    EXPECT_EQ(TreeText(*m_top), L"top[a=&lt;1 b=<1]");
    EXPECT_TRUE((CallSlot<bool>(m_top, 22, L"a", L"c")));
    EXPECT_TRUE((CallSlot<bool>(m_top, 21, 2, L"x")));
    EXPECT_TRUE((CallSlot<bool>(m_top, 24, 2)));
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_FALSE((CallSlot<bool>(m_top, 21, 0, L"x")));
    EXPECT_FALSE((CallSlot<bool>(m_top, 23, L"B")));
    EXPECT_FALSE((CallSlot<bool>(m_top, 24, 0)));
    EXPECT_EQ(m_log.Take(), L"CVekXMLElement::RenameAttribute --> Invalid index 0\n"
                            L"CVekXMLElement::RemoveAttribute --> Invalid index 1\n"
                            L"CVekXMLElement::RemoveAttribute --> Invalid index 0");
    EXPECT_EQ(CallSlot<int>(m_top, 26, L"B"), 1);
    EXPECT_EQ(Text(CallSlot<void *>(m_top, 27, 0)), L"c");
    CVekString<wchar_t> text;
    EXPECT_TRUE((CallSlot<bool>(m_top, 46, 0, &text, L"d")));
    EXPECT_EQ(Text(&text), L"&lt;1");
    EXPECT_TRUE((CallSlot<bool>(m_top, 47, L"c", &text, L"d")));
    EXPECT_EQ(Text(&text), L"<1");
    EXPECT_EQ(Text(CallSlot<void *>(m_top, 48, 1)), L"<1");
    CallSlot(m_top, 25);
    EXPECT_EQ(m_top->GetNumAttributes(), 0);
}

TEST_F(XMLElementSlots, TypedReads)
{
    m_top->AddAttribute(L"v", L"300.1, 2.5, 3, 4", -1);
    double const rounded = static_cast<double>(300.1f); // kept: doubles are read with a float's precision
    ExpectReads(28, CVekVector4D<double>(rounded, 2.5, 3, 4));
    ExpectReads(30, CVekVector4D<float>(300.1f, 2.5f, 3, 4));
    ExpectReads(32, CVekVector4D<int>(300, 0, 0, 0));
    ExpectReads(34, CVekRGBA<float>(300.1f, 2.5f, 3, 4));
    ExpectReads(36, CVekRGBA<unsigned char>(44, 0, 0, 0));
    ExpectReads(40, 1.5, 1.5, rounded);
    ExpectReads(42, 1.5f, 1.5f, 300.1f);
    ExpectReads(44, 15, 15, 300);
    m_top->SetAttributeValue(L"v", L"true", false);
    ExpectReads(38, false, false, true);
}

TEST_F(XMLElementSlots, CDATA)
{
    unsigned char const bytes[] = {1, 0, 2};
    EXPECT_TRUE((CallSlot<bool>(m_top, 49, &bytes[0], 3)));
    EXPECT_EQ(CallSlot<int>(m_top, 50), 3);
    EXPECT_TRUE(CallSlot<bool>(m_top, 52));
    EXPECT_EQ(CallSlot<void const *>(m_top, 53), m_top->GetCDATASection());
    CallSlot(m_top, 51);
    EXPECT_FALSE(CallSlot<bool>(m_top, 52));
}

TEST(XMLSlots, Destructors)
{
    auto * const element = new CVekXMLElement;
    auto const child = NewElement();
    element->AddChild(child, -1);
    CallSlot(element, 55);
    EXPECT_EQ(child->GetRefCount(), 1u);
    auto * const attribute = new CVekXMLAttribute(L"n", 1, L"v", 1);
    ExpectCounting(attribute);
    CallSlot(attribute, 4); // the leak check of the guarded build sees that it frees
}

using XMLDocumentSlots = XMLTest;

TEST_F(XMLDocumentSlots, Document)
{
    auto * const document = XMLManager().CreateXMLDocument();
    ExpectCounting(document);
    EXPECT_TRUE((CallSlot<bool>(document, 3, L"type")));
    EXPECT_EQ(Text(CallSlot<void *>(document, 4)), L"type");
    EXPECT_TRUE((CallSlot<bool>(document, 5, L"UTF-16")));
    EXPECT_EQ(Text(CallSlot<void *>(document, 6)), L"UTF-8");
    auto const root = NewElement(L"root");
    EXPECT_TRUE((CallSlot<bool>(document, 7, static_cast<IVekXMLElement *>(root))));
    for (int slot : {8, 9})
        EXPECT_EQ(CallSlot<void *>(document, slot), static_cast<void *>(root)) << slot;
    EXPECT_NE((CallSlot<void *>(document, 10, L"a", true)), nullptr);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ((CallSlot<int>(document, 16, i ? L"r1" : L"r0", VEK_XML_DTD_ANY)), i);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ((CallSlot<int>(document, 24, (L"l" + std::to_wstring(i)).c_str())), i);
    EXPECT_EQ(CallSlot<int>(document, 11), 2);
    EXPECT_EQ(CallSlot<int>(document, 19), 3);
    for (int slot : {12, 13, 20, 21})
        EXPECT_EQ(Text(CallSlot<void *>(CallSlot<void *>(document, slot, 1), 3)), slot < 20 ? L"r1" : L"l1") << slot;
    for (int slot : {14, 15})
        EXPECT_EQ((CallSlot<void *>(document, slot, L"R1")), static_cast<void *>(document->GetDTDRule(1))) << slot;
    for (int slot : {22, 23})
        EXPECT_EQ((CallSlot<void *>(document, slot, L"L1")), static_cast<void *>(document->GetDTDAttributeList(1)))
            << slot;
    CallSlot(document, 17, 0);
    CallSlot(document, 25, 0);
    EXPECT_EQ(DTDText(*document), L"r1=2{} l1[] l2[] ");
    CallSlot(document, 18);
    EXPECT_EQ(DTDText(*document), L"l1[] l2[] ");
    CallSlot(document, 26);
    EXPECT_EQ(DTDText(*document), L"");
    EXPECT_EQ(m_log.Take(), L"");
    CallSlot(document, 28);
    EXPECT_EQ(root->GetRefCount(), 1u);
}

TEST_F(XMLDocumentSlots, DTD)
{
    auto const document = NewDocument();
    document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    document->AddDTDAttributeList(L"l");
    IVekXMLDTDRule * const rule = document->GetDTDRule(0);
    ExpectCounting(rule);
    EXPECT_EQ(Text(CallSlot<void *>(rule, 3)), L"r");
    EXPECT_EQ(CallSlot<int>(rule, 4), VEK_XML_DTD_SEQUENCE);
    EXPECT_EQ((CallSlot<int>(rule, 6, L"a", VEK_XML_DTD_ELEMENT, 1)), 0);
    EXPECT_EQ((CallSlot<int>(rule, 6, L"b", VEK_XML_DTD_CHOICE, 2)), 1);
    EXPECT_EQ(CallSlot<int>(rule, 5), 2);
    auto * const entry = rule->GetRuleEntry(1);
    for (int slot : {7, 8})
        EXPECT_EQ(CallSlot<void *>(rule, slot, 1), static_cast<void *>(entry)) << slot;

    ExpectCounting(entry);
    EXPECT_EQ(Text(CallSlot<void *>(entry, 3)), L"b");
    EXPECT_EQ(CallSlot<int>(entry, 4), VEK_XML_DTD_CHOICE);
    EXPECT_EQ(CallSlot<int>(entry, 5), 2);
    EXPECT_EQ((CallSlot<int>(entry, 9, L"x", VEK_XML_DTD_ELEMENT, 1)), 0);
    EXPECT_EQ((CallSlot<int>(entry, 9, L"y", VEK_XML_DTD_ELEMENT, 1)), 1);
    EXPECT_EQ(CallSlot<int>(entry, 6), 2);
    for (int slot : {7, 8})
        EXPECT_EQ(CallSlot<void *>(entry, slot, 1), static_cast<void *>(entry->GetChild(1))) << slot;
    CallSlot(entry, 10, 0);
    EXPECT_EQ(DTDText(*document), L"r=5{a:1:1 b:4:2(y:1:1)} l[] ");
    CallSlot(entry, 11);
    CallSlot(rule, 9, 0);
    EXPECT_EQ(DTDText(*document), L"r=5{b:4:2} l[] ");
    CallSlot(rule, 10);
    EXPECT_EQ(DTDText(*document), L"r=5{} l[] ");

    IVekXMLDTDAttributeList * const list = document->GetDTDAttributeList(0);
    ExpectCounting(list);
    EXPECT_EQ(Text(CallSlot<void *>(list, 3)), L"l");
    EXPECT_EQ((CallSlot<int>(list, 5, L"a", L"CDATA", false)), 0);
    EXPECT_EQ((CallSlot<int>(list, 5, L"b", L"ID", true)), 1);
    EXPECT_EQ(CallSlot<int>(list, 4), 2);
    auto * const attribute = list->GetAttributeEntry(1);
    for (int slot : {8, 9})
        EXPECT_EQ(CallSlot<void *>(list, slot, 1), static_cast<void *>(attribute)) << slot;
    ExpectCounting(attribute);
    EXPECT_EQ(Text(CallSlot<void *>(attribute, 3)), L"b");
    EXPECT_EQ(Text(CallSlot<void *>(attribute, 4)), L"ID");
    EXPECT_TRUE(CallSlot<bool>(attribute, 5));
    CallSlot(list, 6, 0);
    EXPECT_EQ(DTDText(*document), L"r=5{} l[b:ID!] ");
    CallSlot(list, 7);
    EXPECT_EQ(DTDText(*document), L"r=5{} l[] ");
}

} // namespace
