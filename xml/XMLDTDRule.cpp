#include "xml/XMLDTDRule.h"

CVekXMLDTDRule * CVekXMLDTDRule::Create(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type) noexcept
{
    return vek::NewNamed<CVekXMLDTDRule>(vek::GivenText(name), type);
}

void CVekXMLDTDRule::ReleaseAll(CVekPointerArray<CVekXMLDTDRule> & rules) noexcept
{
    vek::ReleaseEach(rules);
}

CVekXMLDTDRule::CVekXMLDTDRule(wchar_t const * name, int nameLength, VEK_XML_DTD_ENTRYTYPE type)
    : m_name(name, nameLength), m_type(type)
{
}

int CVekXMLDTDRule::AddRuleEntry(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence)
{
    // A group has no name to be taken.
    if (name && m_entries.Find(name) != -1)
    {
        VekLogOutput(0, L"CVekXMLDTDRule::AddRuleEntry --> Entry with same name already exist");
        return -1;
    }
    return m_entries.AppendNew(CVekXMLDTDRuleEntry::Create(name, type, occurrence),
                               L"CVekXMLDTDRule::AddRuleEntry --> Failed to allocate new entry",
                               L"CVekXMLDTDRule::AddRuleEntry --> Failed to add new entry");
}

void CVekXMLDTDRule::RemoveRuleEntry(int index)
{
    if (m_entries.Has(index))
        m_entries.RemoveAt(index);
    else
        VekLogOutput(0, L"CVekXMLDTDRule::RemoveRuleEntry --> Invalid index %d", index);
}
