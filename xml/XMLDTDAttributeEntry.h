#pragma once

#include "VekXML.h"

class CVekXMLDTDAttributeEntry final : public CVekRefCounted<IVekXMLDTDAttributeList::AttributeEntry>, public CVekPooled
{
public:
    /// The new entry with one reference; null when memory is exhausted.
    static CVekXMLDTDAttributeEntry * Create(wchar_t const * name, wchar_t const * type, bool required) noexcept;
    static void ReleaseAll(CVekPointerArray<CVekXMLDTDAttributeEntry> & entries) noexcept;

    CVekXMLDTDAttributeEntry(wchar_t const * name, int nameLength, wchar_t const * type, int typeLength, bool required);

    CVekString<wchar_t> const & GetName() const override { return m_name; }
    CVekString<wchar_t> const & GetType() const override { return m_type; }
    bool IsRequired() const override { return m_required; }

private:
    CVekString<wchar_t> m_name;
    CVekString<wchar_t> m_type;
    bool m_required;
};
