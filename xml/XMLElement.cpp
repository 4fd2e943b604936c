#include "VekXML.h"

#include "base/ArrayAttachment.h"
#include "base/LiveObjects.h"
#include "base/Pool.h"
#include "text/Names.h"
#include "text/StringAccess.h"
#include "xml/HostElements.h"
#include "xml/ListIndex.h"
#include "xml/ReleaseTree.h"
#include "xml/XMLElementSupport.h"

#include <limits.h>
#include <string.h>

#include <atomic>
#include <utility>

namespace
{

// Counts the names that changed although a parent's index has them: no index knows who its name's element is a child
// of, so they all begin again.
constinit std::atomic<uint32_t> g_renamings{0};

// A section of no bytes has a block, too.
size_t CDATABlockSize(int size)
{
    return size > 0 ? static_cast<size_t>(size) : 1;
}

} // namespace

// The parts of an element that the release of a tree works on. A doomed element needs its parent no more.
struct CVekXMLElement::Tree
{
    static CVekPointerArray<CVekXMLElement> & Children(CVekXMLElement & element) { return element.m_children; }
    static CVekXMLElement *& Link(CVekXMLElement & element) { return element.m_parent; }
    static bool Drop(CVekXMLElement & element, CVekPointerArray<CVekXMLElement> & list)
    {
        if (vek::IsPlain(element))
            return vek::DropReference(element.m_common);
        vek::HostElements::Ending const ending(element, list);
        element.Release();
        return false;
    }
    static void End(CVekXMLElement & element, vek::PoolBatch & batch)
    {
        vek::ListIndex::Drop(element.m_children);
        vek::ArrayAttachment::Free(element.m_children, batch);
        EndAttributes(element.m_attributes, batch);
        if (element.m_cdata && !element.m_isCDATAEmbedded)
        {
            batch.Free(element.m_cdata, CDATABlockSize(element.m_cdataSize));
            element.m_cdata = nullptr;
        }
        // The destructor finds nothing more to do, but for a name of its own.
        if (vek::StringAccess<wchar_t>::HoldsNoBlock(element.m_name))
            vek::CountEnd(vek::LiveClass::XMLElement);
        else
            element.CVekXMLElement::~CVekXMLElement();
        batch.Free(&element, sizeof element);
    }
    static void EndAttributes(CVekPointerArray<CVekXMLAttribute> & attributes, vek::PoolBatch & batch)
    {
        using Access = vek::StringAccess<wchar_t>;
        vek::ListIndex::Drop(attributes);
        for (int i = 0; i < attributes.GetCount(); ++i)
        {
            CVekXMLAttribute * const attribute = attributes[i];
            if (!vek::DropReference(attribute->m_common))
                continue;
            // Attributes are made here and by the parser only, and never of a derived class: no table is needed to end
            // one, and nothing at all where its texts lie in its block.
            if (!Access::HoldsNoBlock(attribute->m_name) || !Access::HoldsNoBlock(attribute->m_value))
                attribute->CVekXMLAttribute::~CVekXMLAttribute();
            batch.Free(attribute, sizeof *attribute);
        }
        vek::ArrayAttachment::Free(attributes, batch);
    }
};

// A host's class may tell another name at any time.
struct CVekXMLElement::ChildNames
{
    static CVekString<wchar_t> const & Of(CVekXMLElement const & child)
    {
        return vek::IsPlain(child) ? child.m_name : child.GetName();
    }
    static bool Enter(CVekXMLElement & child)
    {
        child.m_isNameIndexed = vek::IsPlain(child);
        return child.m_isNameIndexed;
    }
};

CVekXMLElement::CVekXMLElement() : m_isKnownByAddress(vek::HostElements::Enter(*this))
{
    vek::CountBirth(vek::LiveClass::XMLElement);
}

CVekXMLElement::CVekXMLElement(wchar_t const * name, int nameLength)
    : m_name(name, nameLength), m_isKnownByAddress(vek::HostElements::Enter(*this))
{
    vek::CountBirth(vek::LiveClass::XMLElement);
}

CVekXMLElement::CVekXMLElement(CVekString<wchar_t> && name) : m_name(std::move(name))
{
    vek::CountBirth(vek::LiveClass::XMLElement);
}

// Null when memory is exhausted.
CVekXMLElement * CVekXMLElement::Make(wchar_t const * name, int nameLength)
{
    return vek::MakeInOneBlock<CVekXMLElement>([](void * block, CVekString<wchar_t> && text)
                                               { return new (block) CVekXMLElement(std::move(text)); },
                                               vek::TextPiece{name, nameLength});
}

CVekXMLElement::CVekXMLElement(CVekXMLElement const & other) : CVekXMLElement()
{
    *this = other;
}

// NOLINTNEXTLINE(cert-oop54-cpp,bugprone-unhandled-self-assignment): all of it bears being assigned to itself
CVekXMLElement & CVekXMLElement::operator=(CVekXMLElement const & other)
{
    CVekRefCounted::operator=(other); // kept: the count, too
    if (vek::StringAccess<wchar_t>::MakeOwn(m_name))
        m_name = other.m_name;
    Renamed();
    m_parent = other.m_parent;
    m_children = other.m_children;
    m_attributes = other.m_attributes;
    m_cdata = other.m_cdata;
    m_hasCDATA = other.m_hasCDATA;
    m_cdataSize = other.m_cdataSize;
    m_isCDATAEmbedded = other.m_isCDATAEmbedded;
    return *this;
}

CVekXMLElement::~CVekXMLElement()
{
    vek::CountEnd(vek::LiveClass::XMLElement);
    RemoveSection();
    if (m_isKnownByAddress)
    {
        if (auto * const list = vek::HostElements::Leave(*this))
            vek::MoveEntries(m_children, *list);
    }
    DestrotyChildren();
    DestroyAttributes();
}

void CVekXMLElement::DestroyAttributes()
{
    vek::PoolBatch batch;
    Tree::EndAttributes(m_attributes, batch);
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
    if (vek::StringAccess<wchar_t>::MakeOwn(m_name))
        m_name.Assign(name);
    Renamed();
}

void CVekXMLElement::Renamed()
{
    if (m_isNameIndexed)
        g_renamings.fetch_add(1, std::memory_order_relaxed);
    m_isNameIndexed = false;
}

CVekString<wchar_t> const & CVekXMLElement::GetName() const
{
    return m_name;
}

// --- children --------------------------------------------------------------------------------------------------------

int CVekXMLElement::GetNumChildren() const
{
    return m_children.GetCount();
}

int CVekXMLElement::AddChild(IVekXMLElement * child, int index)
{
    if (child)
        child->AddRef();
    CVekXMLElement * const element = vek::ToLibraryElement(child);
    // Kept: an index equal to the last position appends; callers insert "before last" by adding that child again.
    int const last = m_children.GetCount() - 1;
    int const place = index >= 0 && index < last ? index : last + 1;
    if (!m_children.Insert(place, element))
        return last; // kept: the child's extra reference stays with it
    if (place <= last)
        vek::ListIndex::Change(m_children);
    return place;
}

void CVekXMLElement::RemoveChild(IVekXMLElement * child)
{
    // Kept: null and foreign elements are all the same null entry.
    CVekXMLElement const * const element = vek::ToLibraryElement(child);
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        if (m_children[i] == element)
            return RemoveChildAt(i);
    }
}

void CVekXMLElement::RemoveChild(wchar_t const * name)
{
    RemoveChildAt(FindChildIndex(name));
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
    vek::ListIndex::Leave(m_children, index);
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
    vek::ListIndex::Drop(m_children);
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

int CVekXMLElement::FindChildIndex(wchar_t const * name) const
{
    if (vek::ListIndex * const index = vek::ListIndex::Of(m_children))
        index->KeepTime(g_renamings.load(std::memory_order_relaxed));
    return vek::ListIndex::Find(
        m_children, vek::GivenText(name), [](CVekXMLElement const &) { return true; }, ChildNames());
}

IVekXMLElement const * CVekXMLElement::FindChild(wchar_t const * name) const
{
    return m_children.At(FindChildIndex(name));
}

IVekXMLElement * CVekXMLElement::FindChild(wchar_t const * name, bool create)
{
    int const index = FindChildIndex(name);
    if (index != -1 || !create)
        return m_children.At(index);
    IVekXMLElement * const child = vek::AddNewElement(*this, name);
    if (!child)
        VekLogOutput(0, L"CVekXMLElement::FindChild --> Failed to create new element");
    return child;
}

// --- CDATA -----------------------------------------------------------------------------------------------------------

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
    m_hasCDATA = true;
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
    if (!m_isCDATAEmbedded)
        vek::PoolFree(m_cdata, CDATABlockSize(m_cdataSize));
    m_isCDATAEmbedded = false;
    m_cdata = nullptr;
    m_hasCDATA = false;
    m_cdataSize = 0;
}

bool CVekXMLElement::HasCDATASection() const
{
    return m_hasCDATA;
}

unsigned char const * CVekXMLElement::GetCDATASection() const
{
    return m_cdata;
}
