#include "VekPackets.h"

#include "VekRef.h"
#include "base/LiveObjects.h"

namespace
{

using Children = CVekPointerArray<CVekResourceFilePacket>;

// Gives the target storage of its own with the same pointers; false, with the target unchanged, without memory.
bool CopyPointers(Children const & source, Children & target)
{
    Children copy;
    copy.SetGrowthStep(source.GetGrowthStep());
    if (!copy.Reserve(source.GetCount()))
        return false;
    for (int i = 0; i < source.GetCount(); ++i)
        copy.Append(source[i]);
    target.Swap(copy);
    copy.Free();
    return true;
}

// The entry that was cleared at an index, which may have moved since; -1 when it is gone.
int FindCleared(Children const & children, int index)
{
    if (children.Has(index) && !children[index])
        return index;
    int i = children.GetCount() - 1;
    while (i >= 0 && children[i])
        --i;
    return i;
}

} // namespace

CVekResourceFilePacket::CVekResourceFilePacket(IVekResourceFileManager * manager) : m_manager(manager)
{
    vek::CountBirth(vek::LiveClass::ResourceFilePacket);
}

// Kept: the count is copied, and the children get no reference; hosts that copy packets set that right themselves.
CVekResourceFilePacket::CVekResourceFilePacket(CVekResourceFilePacket const & other)
    : CVekRefCounted<IVekObject>(other), m_parent(other.m_parent), m_manager(other.m_manager)
{
    vek::CountBirth(vek::LiveClass::ResourceFilePacket);
    CopyPointers(other.m_children, m_children);
}

CVekResourceFilePacket & CVekResourceFilePacket::operator=(CVekResourceFilePacket const & other)
{
    if (this == &other || !CopyPointers(other.m_children, m_children))
        return *this;
    CVekRefCounted<IVekObject>::operator=(other);
    m_parent = other.m_parent;
    m_manager = other.m_manager;
    return *this;
}

// Kept: the children are not released; the packets of hosts do that in their own way.
CVekResourceFilePacket::~CVekResourceFilePacket()
{
    vek::CountEnd(vek::LiveClass::ResourceFilePacket);
    m_children.Free();
}

int CVekResourceFilePacket::AddChild(CVekResourceFilePacket * child, int index)
{
    int const appended = m_children.GetCount();
    bool const isInside = index >= 0 && index < appended;
    if (!(isInside ? m_children.Insert(index, child) : m_children.Append(child)))
    {
        // Kept: only an insertion is reported in this spelling.
        if (index != -1)
            VekLogOutput(0, L"CVekResourceFilePacket::AddPacket --> Add pckat failed");
        else
            VekLogOutput(0, L"CVekResourceFilePacket::AddPacket --> Add packet failed");
        return -1;
    }
    if (child)
    {
        child->AddRef();
        child->SetParent(this);
    }
    // Kept: the index that was asked for, even of a child that was appended below it.
    return index != -1 ? index : appended;
}

bool CVekResourceFilePacket::RemoveChild(int index)
{
    if (!m_children.Has(index))
    {
        // Kept: the operation reports under another name.
        VekLogOutput(0, L"CVekResourceFilePacket::RemovePacket --> Invalid index %d", index);
        return false;
    }
    CVekResourceFilePacket * const child = m_children[index];
    if (!child)
    {
        m_children.RemoveAt(index);
        return true;
    }
    // Kept: the child's place goes last; its destructor still finds as many children as before. It finds its own place
    // empty, may change the list, and may give up what keeps this packet alive. A packet in its own destructor has
    // nothing left to keep.
    auto const self = CVekRef<CVekResourceFilePacket>::Share(GetRefCount() != 0 ? this : nullptr);
    m_children.Set(index, nullptr);
    child->Release();
    m_children.RemoveAt(FindCleared(m_children, index));
    return true;
}

bool CVekResourceFilePacket::RemoveChild(CVekResourceFilePacket * child)
{
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        if (m_children[i] != child)
            continue;
        m_children.RemoveAt(i);
        if (child)
            child->Release();
        return true;
    }
    return false;
}

// Kept: the base neither removes nor releases; what becomes of the children is for a host's packet to say.
void CVekResourceFilePacket::RemoveAllChildren() {}

void CVekResourceFilePacket::SetParent(CVekResourceFilePacket * parent)
{
    // Kept: a parent that is set is never cleared, not even by null.
    if (m_parent)
        VekLogOutput(0, L"CVekResourceFilePacket::SetParent --> This packet still belongs to other packet");
    else
        m_parent = parent;
}

CVekResourceFilePacket * CVekResourceFilePacket::GetParent()
{
    return m_parent;
}

CVekResourceFilePacket const * CVekResourceFilePacket::GetParent() const
{
    return m_parent;
}

CVekResourceFilePacket * CVekResourceFilePacket::GetChild(int index)
{
    if (!m_children.Has(index))
        VekLogOutput(0, L"CVekResourceFilePacket::GetChild --> Invalid index %d", index);
    return m_children.At(index);
}

CVekResourceFilePacket const * CVekResourceFilePacket::GetChild(int index) const
{
    if (!m_children.Has(index))
        VekLogOutput(0, L"CVekResourceFilePacket::GetChild --> Invalid index %d", index);
    return m_children.At(index);
}

int CVekResourceFilePacket::GetNumChildren() const
{
    return m_children.GetCount();
}

IVekResourceFileManager * CVekResourceFilePacket::GetManager()
{
    return m_manager;
}

IVekResourceFileManager const * CVekResourceFilePacket::GetManager() const
{
    return m_manager;
}
