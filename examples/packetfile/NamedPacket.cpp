#include "NamedPacket.h"

#include <utility>

namespace packetfile
{

/// Packets whose last reference this list holds, linked through their own fields.
struct Named::Doomed
{
    CVekRef<CVekResourceFilePacket> first;

    /// Takes the last child out, which costs least.
    void TakeLastChild(CVekResourceFilePacket & packet)
    {
        int const last = packet.GetNumChildren() - 1;
        auto child = CVekRef<CVekResourceFilePacket>::Share(packet.GetChild(last));
        // Not the packet's own operation, which would tell a manager that may be gone.
        packet.CVekResourceFilePacket::RemoveChild(last);
        auto * const named = dynamic_cast<Named *>(child.Get());
        if (!named || child->GetRefCount() > 1 || child->GetNumChildren() == 0)
            return;
        named->m_nextDoomed = std::move(first);
        first = std::move(child);
    }
    CVekRef<CVekResourceFilePacket> Pop()
    {
        CVekRef<CVekResourceFilePacket> packet = std::move(first);
        if (packet)
            first = std::move(dynamic_cast<Named &>(*packet).m_nextDoomed);
        return packet;
    }
};

void Named::DropChildren(CVekResourceFilePacket & packet)
{
    Doomed doomed;
    while (packet.GetNumChildren() > 0)
        doomed.TakeLastChild(packet);
    while (auto const next = doomed.Pop())
    {
        while (next->GetNumChildren() > 0)
            doomed.TakeLastChild(*next);
    }
}

} // namespace packetfile
