#pragma once

#include <VekLib.h>

#include <string>

namespace packetfile
{

/// What every packet of a packet file has beside its place in the tree.
class Named
{
public:
    Named(unsigned int type, wchar_t const * name) : m_type(type), m_name(name) {}

    unsigned int Type() const { return m_type; }
    wchar_t const * Name() const { return m_name.c_str(); }
    std::size_t NameLength() const { return m_name.size(); }

    /// Null for a packet of a foreign kind.
    static Named const * Of(CVekResourceFilePacket const * packet) { return dynamic_cast<Named const *>(packet); }

protected:
    /// Takes all children out of a packet and releases them. Of those that end with it the children are taken out
    /// first, so that a tree of any depth goes without recursion. It needs no memory, and no manager.
    static void DropChildren(CVekResourceFilePacket & packet);

private:
    struct Doomed;

    unsigned int m_type;
    std::wstring m_name;
    CVekRef<CVekResourceFilePacket> m_nextDoomed;
};

/// Gives a packet class of the library a name, an end that takes its children along, and changes that reach the
/// manager. Packets of a host's own derive from it.
template <class Base>
class NamedPacket : public Base, public Named
{
public:
    NamedPacket(unsigned int type, wchar_t const * name, IVekResourceFileManager * manager)
        : Base(manager), Named(type, name)
    {
    }
    NamedPacket(NamedPacket const &) = delete;
    NamedPacket & operator=(NamedPacket const &) = delete;
    ~NamedPacket() override { DropChildren(*this); }

    int AddChild(CVekResourceFilePacket * child, int index) override
    {
        int const added = Base::AddChild(child, index);
        return added == -1 ? -1 : (Touch(), added);
    }
    bool RemoveChild(int index) override { return Base::RemoveChild(index) && Touch(); }
    bool RemoveChild(CVekResourceFilePacket * child) override { return Base::RemoveChild(child) && Touch(); }
    void RemoveAllChildren() override
    {
        DropChildren(*this);
        Touch();
    }

protected:
    /// Tells the manager that something has changed.
    bool Touch()
    {
        if (IVekResourceFileManager * const manager = this->GetManager())
            manager->SetModified(true);
        return true;
    }
};

} // namespace packetfile
