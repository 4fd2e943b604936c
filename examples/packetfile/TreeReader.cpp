#include "TreeReader.h"

#include "Blob.h"
#include "Folder.h"

#include <algorithm>
#include <new>

namespace packetfile
{

CVekRef<CVekResourceFilePacket> TreeReader::Read()
{
    if (!ReadFileHeader() || !ReadPackets() || !CheckEnd())
        return nullptr;
    return std::move(m_root);
}

bool TreeReader::ReadFileHeader()
{
    unsigned int const size = m_stream.GetSize();
    int const position = m_stream.GetPosition();
    if (position < 0 || static_cast<unsigned int>(position) > size ||
        size - static_cast<unsigned int>(position) < HEADER_SIZE + HEADER_SIZE + CHECKSUM_SIZE)
        return m_manager.Fail(L"is no packet file");
    unsigned int const held = size - static_cast<unsigned int>(position);
    m_left = held - CHECKSUM_SIZE;
    Numbers header;
    if (!Take(header))
        return false;
    if (header[0] != FILE_MAGIC)
        return m_manager.Fail(L"is no packet file");
    if (header[1] != FILE_VERSION)
        return m_manager.Fail(L"is a packet file of version %u, which is not known", header[1]);
    if (header[2] != held)
        return m_manager.Fail(L"is damaged: it has %u bytes, and should have %u", held, header[2]);
    m_count = header[3];
    if (m_count == 0 || m_count > m_left / HEADER_SIZE)
        return m_manager.Fail(L"is damaged: it can't hold the %u packets that it claims", m_count);
    return true;
}

bool TreeReader::ReadPackets()
{
    for (m_index = 0; m_index < m_count; ++m_index)
    {
        while (!m_places.empty() && m_places.back().missing == 0)
            m_places.pop_back();
        if (m_index > 0 && m_places.empty())
            return Fail(L"has no parent");
        if (!ReadPacket())
            return false;
    }
    return std::all_of(m_places.begin(), m_places.end(), [](Place const & place) { return place.missing == 0; }) ||
           m_manager.Fail(L"is damaged: packets are missing at its end");
}

bool TreeReader::ReadPacket()
{
    Numbers header;
    if (!Take(header) || !CheckPacketHeader(header) || !ReadName(header[2]))
        return false;
    unsigned char * const payload = m_payload.Resize(header[3]);
    if (!payload)
        return m_manager.Fail(L"is too large for memory");
    if (!Take(payload, header[3]))
        return false;
    CVekRef<CVekResourceFilePacket> packet = MakePacket(header);
    if (!packet)
        return false;
    m_places.push_back({packet.Get(), header[1]});
    if (m_index == 0)
    {
        m_root = std::move(packet);
        return true;
    }
    Place & parent = m_places[m_places.size() - 2];
    --parent.missing;
    return parent.packet->AddChild(packet.Get(), -1) != -1 || m_manager.Fail(L"is too large for memory");
}

bool TreeReader::CheckPacketHeader(Numbers const & header)
{
    auto const [type, children, nameLength, size] = header;
    if (nameLength > m_left / 2 || size > m_left - nameLength * 2)
        return Fail(L"claims more bytes than the file has");
    if (children >= m_count - m_index)
        return Fail(L"claims more children than the file has packets");
    if (type == TYPE_FOLDER && size > 0)
        return Fail(L"is a folder, but has bytes");
    if (m_index == 0 && (type != TYPE_FOLDER || nameLength > 0))
        return Fail(L"is no root");
    return true;
}

bool TreeReader::ReadName(unsigned int length)
{
    static_assert(sizeof(wchar_t) == 2, "names are stored as they are");
    m_name.resize(length);
    if (!Take(m_name.data(), length * 2))
        return false;
    return std::all_of(m_name.begin(), m_name.end(), IsNameUnit) || Fail(L"has a name that can't be");
}

CVekRef<CVekResourceFilePacket> TreeReader::MakePacket(Numbers const & header)
{
    unsigned int const type = header[0];
    CVekRef<CVekResourceFilePacket> packet;
    if (m_manager.FindHandler(type))
        packet.Reset(m_manager.CreatePacket(type, m_name.c_str()));
    else
        packet.Reset(new Blob(type, m_name.c_str(), &m_manager)); // kept as it is
    if (packet && packet->Read(&m_payload) && m_payload.IsAtEnd() && packet->GetNumChildren() == 0)
        return packet;
    Fail(L"can't be read by its own kind");
    return nullptr;
}

bool TreeReader::CheckEnd()
{
    if (m_left > 0)
        return m_manager.Fail(L"is damaged: %u bytes follow its last packet", m_left);
    // Byte by byte: the library's memory streams give the last byte of their block to no other reading.
    unsigned char stored[CHECKSUM_SIZE];
    for (unsigned char & byte : stored)
        byte = m_stream.ReadByte(true);
    return Number(stored) == m_checksum.Value() || m_manager.Fail(L"is damaged: its checksum is wrong");
}

bool TreeReader::Take(void * data, unsigned int size)
{
    if (size > m_left || (size > 0 && !m_stream.Read(data, size, true)))
        return m_manager.Fail(L"ends too early");
    m_left -= size;
    m_checksum.Add(data, size);
    return true;
}

bool TreeReader::Take(Numbers & numbers)
{
    unsigned char bytes[HEADER_SIZE];
    if (!Take(bytes, HEADER_SIZE))
        return false;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = Number(bytes + 4 * i);
    return true;
}

bool TreeReader::Fail(wchar_t const * what)
{
    return m_manager.Fail(L"is damaged: packet %u %s", m_index, what);
}

} // namespace packetfile
