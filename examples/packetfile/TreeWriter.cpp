#include "TreeWriter.h"

#include "NamedPacket.h"

namespace packetfile
{

bool TreeWriter::Write(CVekResourceFilePacket & root)
{
    if (!Collect(root) || !Measure())
        return false;
    int const begin = m_stream.GetPosition();
    if (!Put({FILE_MAGIC, FILE_VERSION, m_size, static_cast<unsigned int>(m_packets.size())}))
        return false;
    for (std::size_t i = 0; i < m_packets.size(); ++i)
    {
        if (!WritePacket(*m_packets[i], m_sizes[i]))
            return false;
    }
    unsigned char stored[CHECKSUM_SIZE];
    StoreNumber(m_checksum.Value(), stored);
    for (unsigned char const byte : stored) // as TreeReader::CheckEnd reads it
        m_stream.WriteByte(byte, true);
    // Writing a single value never fails; only the position tells.
    return m_stream.GetPosition() - begin == static_cast<int>(m_size) || m_manager.Fail(L"can't be written whole");
}

bool TreeWriter::Collect(CVekResourceFilePacket & root)
{
    std::unordered_set<CVekResourceFilePacket *> met;
    std::vector<CVekResourceFilePacket *> next = {&root};
    while (!next.empty())
    {
        CVekResourceFilePacket * const packet = next.back();
        next.pop_back();
        Named const * const named = Named::Of(packet);
        if (!named)
            return m_manager.Fail(L"can't be stored: a packet is null or of a foreign kind");
        // A circle would have no end, and a packet in two places would come back as two.
        if (!met.insert(packet).second)
            return m_manager.Fail(L"can't be stored: packet \"%.100s\" is in the tree twice", named->Name());
        m_packets.push_back(packet);
        for (int i = packet->GetNumChildren(); i > 0; --i)
            next.push_back(packet->GetChild(i - 1));
    }
    return true;
}

bool TreeWriter::Measure()
{
    unsigned long long size = HEADER_SIZE + CHECKSUM_SIZE;
    for (CVekResourceFilePacket * const packet : m_packets)
    {
        if (!FillPayload(*packet))
            return false;
        m_sizes.push_back(m_payload.GetSize());
        size += HEADER_SIZE + 2ULL * Named::Of(packet)->NameLength() + m_payload.GetSize();
    }
    m_size = static_cast<unsigned int>(size);
    return size <= LARGEST_FILE ||
           m_manager.Fail(L"can't be stored: it would have %.0f MB", static_cast<double>(size) / 0x100000);
}

bool TreeWriter::FillPayload(CVekResourceFilePacket & packet)
{
    if (m_payload.Resize(0) && packet.Write(&m_payload) && m_payload.IsWhole())
        return true;
    return m_manager.Fail(L"can't be stored: packet \"%.100s\" can't write itself", Named::Of(&packet)->Name());
}

bool TreeWriter::WritePacket(CVekResourceFilePacket & packet, unsigned int size)
{
    Named const & named = *Named::Of(&packet);
    if (!FillPayload(packet))
        return false;
    if (m_payload.GetSize() != size)
        return m_manager.Fail(L"can't be stored: packet \"%.100s\" changes while it is written", named.Name());
    Numbers const header = {named.Type(), static_cast<unsigned int>(packet.GetNumChildren()),
                            static_cast<unsigned int>(named.NameLength()), size};
    return Put(header) && Put(named.Name(), named.NameLength() * 2) && Put(m_payload.Data(), size);
}

bool TreeWriter::Put(Numbers const & numbers)
{
    unsigned char bytes[HEADER_SIZE];
    for (std::size_t i = 0; i < numbers.size(); ++i)
        StoreNumber(numbers[i], bytes + 4 * i);
    return Put(bytes, HEADER_SIZE);
}

bool TreeWriter::Put(void const * data, std::size_t size)
{
    if (size > 0 && !m_stream.Write(data, static_cast<unsigned int>(size), true))
        return m_manager.Fail(L"can't be written whole");
    m_checksum.Add(data, size);
    return true;
}

} // namespace packetfile
