#include "NamedPacket.h"

namespace packetfile
{

/// Packets whose last reference this list holds, linked through their own fields.
struct Named::Doomed
{
    CVekResourceFilePacket * first = nullptr;

    /// Takes the last child out, which costs least.
    void TakeLastChild(CVekResourceFilePacket & packet)
    {
        int const last = packet.GetNumChildren() - 1;
        CVekResourceFilePacket * const child = packet.GetChild(last);
        if (child)
            child->AddRef();
        // Not the packet's own operation, which would tell a manager that may be gone.
        packet.CVekResourceFilePacket::RemoveChild(last);
        if (!child)
            return;
        auto * const named = dynamic_cast<Named *>(child);
        if (!named || child->GetRefCount() > 1 || child->GetNumChildren() == 0)
        {
            child->Release();
            return;
        }
        named->m_nextDoomed = first;
        first = child;
    }
    CVekResourceFilePacket * Pop()
    {
        CVekResourceFilePacket * const packet = first;
        if (packet)
            first = dynamic_cast<Named *>(packet)->m_nextDoomed;
        return packet;
    }
};

void Named::DropChildren(CVekResourceFilePacket & packet)
{
    Doomed doomed;
    while (packet.GetNumChildren() > 0)
        doomed.TakeLastChild(packet);
    while (CVekResourceFilePacket * const next = doomed.Pop())
    {
        while (next->GetNumChildren() > 0)
            doomed.TakeLastChild(*next);
        next->Release();
    }
}

} // namespace packetfile
