#include "packets/PacketFile.h"

#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"

namespace tool
{

namespace
{

// Of a path: a hostile file can nest as deep as it is long.
constexpr std::size_t SHOWN_PATH = 300;

} // namespace

bool LoadPackets(std::wstring const & path, packetfile::Manager & manager)
{
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        Fail(path, L"can't be read: " + LastErrorText());
    else if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        Fail(path, L"is a directory");
    else if (!manager.Open(path.c_str()))
        Fail(path, manager.GetLastErrorText());
    else
        return true;
    return false;
}

void PacketPath::Enter(CVekResourceFilePacket const & packet, std::size_t level)
{
    if (level == 0)
        return;
    packetfile::Named const & named = *packetfile::Named::Of(&packet);
    m_lengths.resize(level - 1);
    m_text.resize(m_lengths.empty() ? 0 : m_lengths.back());
    if (level > 1)
        m_text += m_separator;
    m_text.append(named.Name(), named.NameLength());
    m_lengths.push_back(m_text.size());
}

std::wstring PacketPath::Shown() const
{
    if (m_text.size() <= SHOWN_PATH)
        return Printable(m_text);
    return L"..." + Printable(std::wstring_view(m_text).substr(m_text.size() - SHOWN_PATH));
}

} // namespace tool
