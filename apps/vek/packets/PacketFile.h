#pragma once

#include "packetfile/Blob.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"

#include <string>
#include <vector>

namespace tool
{

/// Reads a packet file; false after telling the user why it can't be read. Packets that are no folders become blobs.
bool LoadPackets(std::wstring const & path, packetfile::Manager & manager);

inline bool IsFolder(CVekResourceFilePacket const & packet)
{
    return packetfile::Named::Of(&packet)->Type() == packetfile::TYPE_FOLDER;
}

/// The path of the packet that a walk has come to, as the walk goes on.
class PacketPath
{
public:
    explicit PacketPath(wchar_t separator) : m_separator(separator) {}

    /// Enters a packet; the root, of level 0, adds nothing.
    void Enter(CVekResourceFilePacket const & packet, std::size_t level);
    std::wstring const & Text() const { return m_text; }
    /// Its end, fit for a terminal.
    std::wstring Shown() const;

private:
    wchar_t m_separator;
    std::wstring m_text;
    std::vector<std::size_t> m_lengths; // of the paths of the packets above
};

} // namespace tool
