#pragma once

#include "Format.h"
#include "Manager.h"
#include "PayloadStream.h"

namespace packetfile
{

/// Reads a packet file into a tree of its own.
class TreeReader
{
public:
    TreeReader(Manager & manager, IVekIOStream & stream) : m_manager(manager), m_stream(stream) {}

    /// The root of a tree that is exactly what the stream holds; null, with the manager's error set.
    CVekRef<CVekResourceFilePacket> Read();

private:
    /// A packet that still waits for children. The tree holds it.
    struct Place
    {
        CVekResourceFilePacket * packet;
        unsigned int missing;
    };

    bool ReadFileHeader();
    bool ReadPackets();
    bool ReadPacket();
    bool CheckPacketHeader(Numbers const & header);
    bool ReadName(unsigned int length);
    CVekRef<CVekResourceFilePacket> MakePacket(Numbers const & header);
    bool CheckEnd();
    bool Take(void * data, unsigned int size);
    bool Take(Numbers & numbers);
    bool Fail(wchar_t const * what);

    Manager & m_manager;
    IVekIOStream & m_stream;
    Checksum m_checksum;
    unsigned int m_left = 0; // bytes before the checksum
    unsigned int m_count = 0;
    unsigned int m_index = 0;
    std::wstring m_name;
    PayloadStream m_payload;
    CVekRef<CVekResourceFilePacket> m_root;
    std::vector<Place> m_places;
};

} // namespace packetfile
