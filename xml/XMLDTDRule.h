#pragma once

#include "VekXML.h"

#include "xml/NamedList.h"
#include "xml/XMLDTDRuleEntry.h"

class CVekXMLDTDRule final : public CVekRefCounted<IVekXMLDTDRule>, public CVekPooled
{
public:
    /// The new rule with one reference; null when memory is exhausted.
    static CVekXMLDTDRule * Create(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type) noexcept;
    static void ReleaseAll(CVekPointerArray<CVekXMLDTDRule> & rules) noexcept;

    CVekXMLDTDRule(wchar_t const * name, int nameLength, VEK_XML_DTD_ENTRYTYPE type);

    CVekString<wchar_t> const & GetName() const override { return m_name; }
    VEK_XML_DTD_ENTRYTYPE GetType() const override { return m_type; }
    int GetNumRuleEntries() const override { return m_entries.GetCount(); }
    int AddRuleEntry(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence) override;
    RuleEntry * GetRuleEntry(int index) override { return m_entries.At(index); }
    RuleEntry const * GetRuleEntry(int index) const override { return m_entries.At(index); }
    void RemoveRuleEntry(int index) override;
    void RemoveAllRuleEntries() override { m_entries.RemoveAll(); }

private:
    CVekString<wchar_t> m_name;
    VEK_XML_DTD_ENTRYTYPE m_type;
    vek::NamedList<CVekXMLDTDRuleEntry> m_entries;
};
