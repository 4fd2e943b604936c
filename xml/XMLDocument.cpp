#include "xml/XMLDocument.h"

#include "base/Buffer.h"
#include "base/LiveObjects.h"
#include "xml/XMLElementSupport.h"

#include <wchar.h>

#include <new>

namespace
{

constexpr wchar_t ENCODING[] = L"UTF-8";

// The next component of a path, ended in place; null after the last one. Empty components are skipped.
wchar_t const * NextComponent(wchar_t *& rest)
{
    rest += wcsspn(rest, L"/\\");
    if (!*rest)
        return nullptr;
    wchar_t const * const component = rest;
    rest += wcscspn(rest, L"/\\");
    if (*rest)
        *rest++ = 0;
    return component;
}

} // namespace

CVekXMLDocument::CVekXMLDocument() : m_encoding(ENCODING)
{
    vek::CountBirth(vek::LiveClass::XMLDocument);
}

CVekXMLDocument::~CVekXMLDocument()
{
    vek::CountEnd(vek::LiveClass::XMLDocument);
    if (m_root)
        m_root->Release();
    delete m_kept;
}

vek::XMLKept * CVekXMLDocument::MakeKept() noexcept
{
    if (!m_kept)
        m_kept = new (std::nothrow) vek::XMLKept;
    return m_kept;
}

bool CVekXMLDocument::SetDocumentType(wchar_t const * name)
{
    m_documentType.Assign(name);
    return true;
}

bool CVekXMLDocument::SetEncoding(wchar_t const *)
{
    // Kept: a document's encoding is "UTF-8" for life, whatever is asked for, so that every document is written so.
    return true;
}

bool CVekXMLDocument::SetRootElement(IVekXMLElement * element)
{
    if (element)
        element->AddRef();
    IVekXMLElement * const old = m_root;
    m_root = element;
    if (old)
        old->Release();
    return true;
}

IVekXMLElement * CVekXMLDocument::FindElementFromPath(wchar_t const * path, bool create)
{
    if (!m_root)
    {
        VekLogOutput(0, L"CVekXMLDocument::FindElementFromPath --> Root element does not exist");
        return nullptr;
    }
    if (!path)
        return m_root;
    size_t const size = wcslen(path) + 1;
    wchar_t shortPath[256];
    vek::Buffer<wchar_t> longPath;
    wchar_t * rest = size > sizeof shortPath / sizeof shortPath[0] ? longPath.Extend(size) : shortPath;
    if (!rest)
        return nullptr;
    wmemcpy(rest, path, size);
    IVekXMLElement * element = m_root;
    while (wchar_t const * const component = element ? NextComponent(rest) : nullptr)
    {
        IVekXMLElement * const child = element->FindChild(component, false);
        element = child || !create ? child : vek::AddNewElement(*element, component);
    }
    return element;
}

int CVekXMLDocument::AddDTDRule(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type)
{
    if (FindDTDRule(name))
    {
        VekLogOutput(0, L"CVekXMLDocument::AddDTDRule --> DTD rule with same name already exist");
        return -1;
    }
    return m_rules.AppendNew(CVekXMLDTDRule::Create(name, type),
                             L"CVekXMLDocument::AddDTDRule --> Failed to allocate new rule",
                             L"CVekXMLDocument::AddDTDRule --> Failed to add new rule");
}

void CVekXMLDocument::RemoveDTDRule(int index)
{
    if (m_rules.Has(index))
        m_rules.RemoveAt(index);
    else
        VekLogOutput(0, L"CVekXMLDocument::RemoveDTDRule --> Invalid index %d", index);
}

int CVekXMLDocument::AddDTDAttributeList(wchar_t const * name)
{
    if (FindDTDAttributeList(name))
    {
        VekLogOutput(0, L"CVekXMLDocument::AddDTDAttributeList --> DTD attribute list with same name already exist");
        return -1;
    }
    // Kept: the two failures speak of a rule.
    return m_lists.AppendNew(CVekXMLDTDAttributeList::Create(name),
                             L"CVekXMLDocument::AddDTDAttributeList --> Failed to allocate new rule",
                             L"CVekXMLDocument::AddDTDAttributeList --> Failed to add new rule");
}

void CVekXMLDocument::RemoveDTDAttributeList(int index)
{
    if (m_lists.Has(index))
        m_lists.RemoveAt(index);
    else
        VekLogOutput(0, L"CVekXMLDocument::RemoveDTDAttributeList --> Invalid index %d", index);
}
