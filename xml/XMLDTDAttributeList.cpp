#include "xml/XMLDTDAttributeList.h"

CVekXMLDTDAttributeList * CVekXMLDTDAttributeList::Create(wchar_t const * name) noexcept
{
    return vek::NewNamed<CVekXMLDTDAttributeList>(vek::GivenText(name));
}

void CVekXMLDTDAttributeList::ReleaseAll(CVekPointerArray<CVekXMLDTDAttributeList> & lists) noexcept
{
    vek::ReleaseEach(lists);
}

CVekXMLDTDAttributeList::CVekXMLDTDAttributeList(wchar_t const * name, int nameLength) : m_name(name, nameLength) {}

int CVekXMLDTDAttributeList::AddAttributeEntry(wchar_t const * name, wchar_t const * type, bool required)
{
    if (m_entries.Find(name) != -1)
    {
        VekLogOutput(0, L"CVekXMLDTDAttributeList::AddAttributeEntry --> Entry with same name already exist");
        return -1;
    }
    return m_entries.AppendNew(CVekXMLDTDAttributeEntry::Create(name, type, required),
                               L"CVekXMLDTDAttributeList::AddAttributeEntry --> Failed to allocate new entry",
                               L"CVekXMLDTDAttributeList::AddAttributeEntry --> Failed to add new entry");
}

void CVekXMLDTDAttributeList::RemoveAttributeEntry(int index)
{
    if (m_entries.Has(index))
        m_entries.RemoveAt(index);
    else
        VekLogOutput(0, L"CVekXMLDTDAttributeList::RemoveAttributeEntry --> Invalid index %d", index);
}
