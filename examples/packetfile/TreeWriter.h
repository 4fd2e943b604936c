#pragma once

#include "Format.h"
#include "Manager.h"
#include "PayloadStream.h"

#include <unordered_set>
#include <vector>

namespace packetfile
{

/// Writes a tree as a packet file. Each packet writes itself twice, once to be measured, and must write the same both
/// times: one whose payload costs much to make keeps it.
class TreeWriter
{
public:
    TreeWriter(Manager & manager, IVekIOStream & stream) : m_manager(manager), m_stream(stream) {}

    /// False, with the manager's error set, when the tree can't be stored or the stream fails.
    bool Write(CVekResourceFilePacket & root);

private:
    bool Collect(CVekResourceFilePacket & root);
    bool Measure();
    bool FillPayload(CVekResourceFilePacket & packet);
    bool WritePacket(CVekResourceFilePacket & packet, unsigned int size);
    bool Put(Numbers const & numbers);
    bool Put(void const * data, std::size_t size);

    Manager & m_manager;
    IVekIOStream & m_stream;
    Checksum m_checksum;
    PayloadStream m_payload;
    std::vector<CVekResourceFilePacket *> m_packets; // in the order of the file
    std::vector<unsigned int> m_sizes;               // of their payloads
    unsigned int m_size = 0;                         // of the whole file
};

} // namespace packetfile
