#pragma once

#include "VekXML.h"

#include "xml/NamedList.h"
#include "xml/XMLDTDAttributeEntry.h"

class CVekXMLDTDAttributeList final : public CVekRefCounted<IVekXMLDTDAttributeList>, public CVekPooled
{
public:
    /// The new list with one reference; null when memory is exhausted.
    static CVekXMLDTDAttributeList * Create(wchar_t const * name) noexcept;
    static void ReleaseAll(CVekPointerArray<CVekXMLDTDAttributeList> & lists) noexcept;

    CVekXMLDTDAttributeList(wchar_t const * name, int nameLength);

    CVekString<wchar_t> const & GetName() const override { return m_name; }
    int GetNumAttributeEntries() const override { return m_entries.GetCount(); }
    int AddAttributeEntry(wchar_t const * name, wchar_t const * type, bool required) override;
    void RemoveAttributeEntry(int index) override;
    void RemoveAllAttributeEntries() override { m_entries.RemoveAll(); }
    AttributeEntry * GetAttributeEntry(int index) override { return m_entries.At(index); }
    AttributeEntry const * GetAttributeEntry(int index) const override { return m_entries.At(index); }

private:
    CVekString<wchar_t> m_name;
    vek::NamedList<CVekXMLDTDAttributeEntry> m_entries;
};
