#pragma once

#include "VekXML.h"

#include "xml/NamedList.h"

class CVekXMLDTDRuleEntry final : public CVekRefCounted<IVekXMLDTDRule::RuleEntry>, public CVekPooled
{
public:
    /// The new entry with one reference, a group when the name is null; null when memory is exhausted.
    static CVekXMLDTDRuleEntry * Create(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence) noexcept;
    /// Releases a list of entries with all below them; no depth of a tree makes it recurse.
    static void ReleaseAll(CVekPointerArray<CVekXMLDTDRuleEntry> & entries) noexcept;

    CVekXMLDTDRuleEntry(wchar_t const * name, int nameLength, VEK_XML_DTD_ENTRYTYPE type, int occurrence);

    CVekString<wchar_t> const & GetName() const override { return m_name; }
    VEK_XML_DTD_ENTRYTYPE GetType() const override { return m_type; }
    int GetOccurrence() const override { return m_occurrence; }
    int GetNumChildren() const override { return m_children.GetCount(); }
    RuleEntry * GetChild(int index) override { return m_children.At(index); }
    RuleEntry const * GetChild(int index) const override { return m_children.At(index); }
    int AddChild(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence) override;
    void RemoveChild(int index) override;
    void RemoveAllChildren() override { m_children.RemoveAll(); }

private:
    struct Tree;

    CVekString<wchar_t> m_name;
    VEK_XML_DTD_ENTRYTYPE m_type;
    int m_occurrence;
    vek::NamedList<CVekXMLDTDRuleEntry> m_children;
    CVekXMLDTDRuleEntry * m_nextWaiting = nullptr; // used while a tree is released
};
