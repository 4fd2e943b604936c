#pragma once

#include "NamedPacket.h"

#include <vector>

namespace packetfile
{

/// Any bytes. It also keeps the bytes of packets whose type nobody knows, so that they survive.
class Blob final : public NamedPacket<CVekResourceFilePacket>
{
public:
    using NamedPacket::NamedPacket;

    std::vector<unsigned char> const & Bytes() const { return m_bytes; }
    /// Takes the bytes over.
    void SetBytes(std::vector<unsigned char> && bytes);

    /// Reads all that the stream holds from its position on, in one block: from a PayloadStream, as the manager gives
    /// it. A CVekMemoryIOStream refuses a block that reaches its last byte.
    bool Read(IVekIOStream * stream) override;
    bool Write(IVekIOStream * stream) override;

private:
    std::vector<unsigned char> m_bytes;
};

} // namespace packetfile
