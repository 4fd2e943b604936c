#include "VekXML.h"

#include "base/Pool.h"
#include "text/Names.h"
#include "text/StringAccess.h"
#include "xml/ReleaseTree.h"
#include "xml/XMLElementSupport.h"

#include <string.h>

#include <utility>

namespace
{

// A section of no bytes has a block, too.
size_t CDATABlockSize(int size)
{
    return size > 0 ? static_cast<size_t>(size) : 1;
}

} // namespace

// The parts of an element that the release of a tree works on. A doomed element needs its parent no more.
struct CVekXMLElement::Tree
{
    static VekObjectCommonData & Common(CVekXMLElement & element) { return element.m_common; }
    static CVekPointerArray<CVekXMLElement> & Children(CVekXMLElement & element) { return element.m_children; }
    static CVekXMLElement *& Link(CVekXMLElement & element) { return element.m_parent; }
};

CVekXMLElement::CVekXMLElement() = default;

CVekXMLElement::CVekXMLElement(wchar_t const * name, int nameLength) : m_name(name, nameLength) {}

CVekXMLElement::CVekXMLElement(CVekString<wchar_t> && name) : m_name(std::move(name)) {}

// Null when memory is exhausted.
CVekXMLElement * CVekXMLElement::Make(wchar_t const * name, int nameLength)
{
    return vek::MakeInOneBlock<CVekXMLElement>([](void * block, CVekString<wchar_t> && text)
                                               { return new (block) CVekXMLElement(std::move(text)); },
                                               vek::TextPiece{name, nameLength});
}

CVekXMLElement::CVekXMLElement(CVekXMLElement const & other) = default;

CVekXMLElement & CVekXMLElement::operator=(CVekXMLElement const & other) = default;

CVekXMLElement::~CVekXMLElement()
{
    RemoveSection();
    DestrotyChildren();
    DestroyAttributes();
}

void CVekXMLElement::SetParent(CVekXMLElement * parent)
{
    if (m_parent)
        VekLogOutput(0, L"CVekXMLElement::SetParent --> This Element still belongs to other Element");
    else
        m_parent = parent;
}

IVekXMLElement * CVekXMLElement::GetParent()
{
    return m_parent;
}

IVekXMLElement const * CVekXMLElement::GetParent() const
{
    return m_parent;
}

void CVekXMLElement::SetName(wchar_t const * name)
{
    m_name.Assign(name);
}

CVekString<wchar_t> const & CVekXMLElement::GetName() const
{
    return m_name;
}

// --- children
// ---------------------------------------------------------------------------------------------------------

int CVekXMLElement::GetNumChildren() const
{
    return m_children.GetCount();
}

int CVekXMLElement::AddChild(IVekXMLElement * child, int index)
{
    if (child)
        child->AddRef();
    CVekXMLElement * const element = vek::ToLibraryElement(child, *this);
    // Kept: an index equal to the last position appends; callers insert "before last" by adding that child again.
    int const last = m_children.GetCount() - 1;
    bool const isStored = index >= 0 && index < last ? m_children.Insert(index, element) : m_children.Append(element);
    if (!isStored)
        return last; // kept: the child's extra reference stays with it
    return index >= 0 && index < last ? index : last + 1;
}

void CVekXMLElement::RemoveChild(IVekXMLElement * child)
{
    // Kept: null and foreign elements are all the same null entry.
    CVekXMLElement const * const element = vek::ToLibraryElement(child, *this);
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        if (m_children[i] == element)
            return RemoveChildAt(i);
    }
}

void CVekXMLElement::RemoveChild(wchar_t const * name)
{
    RemoveChildAt(vek::FindName(m_children, vek::GivenText(name)));
}

void CVekXMLElement::RemoveChild(int index)
{
    if (m_children.Has(index))
        RemoveChildAt(index);
    else
        vek::LogIndexAsText(L"CVekXMLElement::RemoveChild --> Invalid index %s", index);
}

void CVekXMLElement::RemoveChildAt(int index)
{
    CVekXMLElement * const child = m_children.At(index);
    m_children.RemoveAt(index);
    if (child)
        child->Release();
}

void CVekXMLElement::RemoveAllChildren()
{
    DestrotyChildren();
}

void CVekXMLElement::DestrotyChildren()
{
    vek::ReleaseTree<CVekXMLElement, Tree>(m_children);
}

IVekXMLElement * CVekXMLElement::GetChild(int index)
{
    if (!m_children.Has(index))
        VekLogOutput(0, L"CVekXMLElement::GetChild --> Invalid index %d", index);
    return m_children.At(index);
}

IVekXMLElement const * CVekXMLElement::GetChild(int index) const
{
    if (!m_children.Has(index))
        VekLogOutput(0, L"CVekXMLElement::GetChild --> Invalid index %d", index);
    return m_children.At(index);
}

IVekXMLElement const * CVekXMLElement::FindChild(wchar_t const * name) const
{
    return m_children.At(vek::FindName(m_children, vek::GivenText(name)));
}

IVekXMLElement * CVekXMLElement::FindChild(wchar_t const * name, bool create)
{
    int const index = vek::FindName(m_children, vek::GivenText(name));
    if (index != -1 || !create)
        return m_children.At(index);
    IVekXMLElement * const child = vek::AddNewElement(*this, name);
    if (!child)
        VekLogOutput(0, L"CVekXMLElement::FindChild --> Failed to create new element");
    return child;
}

// --- CDATA
// ------------------------------------------------------------------------------------------------------------

bool CVekXMLElement::AddCDATASection(unsigned char const * bytes, int size)
{
    if (m_hasCDATA)
    {
        VekLogOutput(0, L"CVekXMLElement::AddCDATASection --> This Element already has CDATA section");
        return false;
    }
    void * const block = size < 0 || (size > 0 && !bytes) ? nullptr : vek::PoolAllocate(CDATABlockSize(size));
    if (!block)
    {
        VekLogOutput(0, L"CVekXMLElement::AddCDATASection --> Failed to allocate memory for CDATA");
        return false;
    }
    if (size > 0)
        memcpy(block, bytes, static_cast<size_t>(size));
    m_cdata = static_cast<unsigned char *>(block);
    m_cdataSize = size;
    m_hasCDATA = 1;
    return true;
}

int CVekXMLElement::GetCDATASectionSize() const
{
    return m_cdataSize;
}

void CVekXMLElement::RemoveCDATASection()
{
    RemoveSection();
}

void CVekXMLElement::RemoveSection()
{
    if (!m_cdata)
        return;
    vek::PoolFree(m_cdata, CDATABlockSize(m_cdataSize));
    m_cdata = nullptr;
    m_hasCDATA = 0;
    m_cdataSize = 0;
}

bool CVekXMLElement::HasCDATASection() const
{
    return m_hasCDATA != 0;
}

unsigned char const * CVekXMLElement::GetCDATASection() const
{
    return m_cdata;
}
