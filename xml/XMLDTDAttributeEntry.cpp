#include "xml/XMLDTDAttributeEntry.h"

#include "xml/NamedList.h"

CVekXMLDTDAttributeEntry * CVekXMLDTDAttributeEntry::Create(wchar_t const * name, wchar_t const * type,
                                                            bool required) noexcept
{
    vek::GivenText const typeText(type);
    if (typeText.length < 0)
        return nullptr;
    auto * const entry =
        vek::NewNamed<CVekXMLDTDAttributeEntry>(vek::GivenText(name), typeText.text, typeText.length, required);
    if (!entry || entry->m_type.GetLength() == typeText.length)
        return entry;
    delete entry;
    return nullptr;
}

void CVekXMLDTDAttributeEntry::ReleaseAll(CVekPointerArray<CVekXMLDTDAttributeEntry> & entries) noexcept
{
    vek::ReleaseEach(entries);
}

CVekXMLDTDAttributeEntry::CVekXMLDTDAttributeEntry(wchar_t const * name, int nameLength, wchar_t const * type,
                                                   int typeLength, bool required)
    : m_name(name, nameLength), m_type(type, typeLength), m_required(required)
{
}
