// Operations called by their places in the tables of the object model, as a host of another compiler calls them.

#include "support/Slots.h"
#include "support/XMLKit.h"

namespace
{

TEST_F(XMLTest, OneOperationOfEachInterface)
{
    CVekXMLElement * const element = NewElement(L"e").Detach();
    element->AddAttribute(L"v", 7, -1);
    int value = 0;
    EXPECT_TRUE((CallSlot<bool>(element, 44, L"V", &value, 1)));
    EXPECT_EQ(value, 7);
    IVekXMLDocument * const document = NewDocument().Detach();
    EXPECT_EQ((CallSlot<int>(document, 16, L"r", VEK_XML_DTD_CHOICE)), 0);
    EXPECT_EQ((CallSlot<int>(document, 24, L"l")), 0);
    IVekXMLDTDRule * const rule = document->GetDTDRule(0);
    EXPECT_EQ((CallSlot<int>(rule, 6, L"a", VEK_XML_DTD_ELEMENT, 1)), 0);
    EXPECT_EQ((CallSlot<int>(rule->GetRuleEntry(0), 9, L"x", VEK_XML_DTD_ELEMENT, 2)), 0);
    IVekXMLDTDAttributeList * const list = document->GetDTDAttributeList(0);
    EXPECT_EQ((CallSlot<int>(list, 5, L"b", L"ID", true)), 0);
    EXPECT_TRUE(CallSlot<bool>(list->GetAttributeEntry(0), 5));
    EXPECT_EQ(DTDText(*document), L"r=4{a:1:1(x:1:2)} l[b:ID!] ");
    // The deleting destructors: the leak check of the guarded build sees that they free.
    CallSlot(document, 28);
    CallSlot(element, 55);
    CallSlot(new CVekXMLAttribute(L"n", 1, L"v", 1), 4);
}

} // namespace
