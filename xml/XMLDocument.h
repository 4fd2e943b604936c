#pragma once

#include "VekXML.h"

#include "xml/NamedList.h"
#include "xml/XMLDTDAttributeList.h"
#include "xml/XMLDTDRule.h"

namespace vek
{

/// What a document keeps of its file beyond the model.
struct XMLKept
{
    CVekString<wchar_t> prolog;
    CVekString<wchar_t> epilog;
    VEK_XML_ENCODING encoding = VEK_XML_ENCODING_AS_SOURCE;
    unsigned int codePage = 0; // of a source that was in none of these encodings
    bool carriageReturns = false;
};

} // namespace vek

class CVekXMLDocument final : public CVekRefCounted<IVekXMLDocument>, public CVekPooled
{
public:
    CVekXMLDocument();
    ~CVekXMLDocument() override;

    bool SetDocumentType(wchar_t const * name) override;
    CVekString<wchar_t> const & GetDocumentType() const override { return m_documentType; }
    bool SetEncoding(wchar_t const * name) override;
    CVekString<wchar_t> const & GetEncoding() const override { return m_encoding; }
    bool SetRootElement(IVekXMLElement * element) override;
    IVekXMLElement * GetRootElement() override { return m_root; }
    IVekXMLElement const * GetRootElement() const override { return m_root; }
    IVekXMLElement * FindElementFromPath(wchar_t const * path, bool create) override;

    int GetNumDTDRules() const override { return m_rules.GetCount(); }
    IVekXMLDTDRule * GetDTDRule(int index) override { return m_rules.At(index); }
    IVekXMLDTDRule const * GetDTDRule(int index) const override { return m_rules.At(index); }
    IVekXMLDTDRule * FindDTDRule(wchar_t const * name) override { return m_rules.At(m_rules.Find(name)); }
    IVekXMLDTDRule const * FindDTDRule(wchar_t const * name) const override { return m_rules.At(m_rules.Find(name)); }
    int AddDTDRule(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type) override;
    void RemoveDTDRule(int index) override;
    void RemoveAllDTDRules() override { m_rules.RemoveAll(); }

    int GetNumDTDAttributeLists() const override { return m_lists.GetCount(); }
    IVekXMLDTDAttributeList * GetDTDAttributeList(int index) override { return m_lists.At(index); }
    IVekXMLDTDAttributeList const * GetDTDAttributeList(int index) const override { return m_lists.At(index); }
    IVekXMLDTDAttributeList * FindDTDAttributeList(wchar_t const * name) override
    {
        return m_lists.At(m_lists.Find(name));
    }
    IVekXMLDTDAttributeList const * FindDTDAttributeList(wchar_t const * name) const override
    {
        return m_lists.At(m_lists.Find(name));
    }
    int AddDTDAttributeList(wchar_t const * name) override;
    void RemoveDTDAttributeList(int index) override;
    void RemoveAllDTDAttributeLists() override { m_lists.RemoveAll(); }

    /// Null for a document that keeps nothing.
    vek::XMLKept const * GetKept() const noexcept { return m_kept; }
    /// Made when there is none; null when memory is exhausted.
    vek::XMLKept * MakeKept() noexcept;

private:
    IVekXMLElement * m_root = nullptr;
    CVekString<wchar_t> m_documentType;
    CVekString<wchar_t> m_encoding;
    vek::NamedList<CVekXMLDTDRule> m_rules;
    vek::NamedList<CVekXMLDTDAttributeList> m_lists;
    vek::XMLKept * m_kept = nullptr;
};
