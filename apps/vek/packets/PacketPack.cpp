#include "Console.h"
#include "FileErrors.h"
#include "FileTree.h"
#include "Platform.h"
#include "packets/PacketFile.h"
#include "packets/Packets.h"

#include <algorithm>

namespace tool
{

namespace
{

std::wstring FullPath(std::wstring const & path)
{
    DWORD const size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    return full;
}

bool ReadBytes(std::wstring const & path, std::vector<unsigned char> & bytes)
{
    CVekFileIOStream stream;
    if (!stream.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
        return Fail(path, L"can't be read: " + LastErrorText()), false;
    unsigned int const size = stream.GetSize();
    if (size > packetfile::LARGEST_FILE)
        return Fail(path, L"is too large"), false;
    bytes.resize(size);
    return stream.Read(bytes.data(), size, true) || (Fail(path, L"can't be read whole"), false);
}

class Packing
{
public:
    Packing(packetfile::Manager & manager, std::wstring const & own) : m_manager(manager), m_own(FullPath(own)) {}

    bool Pack(std::wstring const & folder)
    {
        m_rest.push_back({folder, m_manager.GetRoot()});
        while (!m_rest.empty())
        {
            Place const place = std::move(m_rest.back());
            m_rest.pop_back();
            if (!PackFolder(place))
                return false;
        }
        return true;
    }

private:
    struct Place
    {
        std::wstring path;
        CVekResourceFilePacket * packet;
    };

    bool PackFolder(Place const & place)
    {
        std::vector<std::wstring> files, folders;
        if (!ReadFolder(place.path, files, folders))
            return false;
        std::sort(files.begin(), files.end());
        std::sort(folders.begin(), folders.end());
        for (std::wstring const & path : folders)
        {
            CVekResourceFilePacket * const packet = Add(*place.packet, packetfile::TYPE_FOLDER, path);
            if (!packet)
                return false;
            m_rest.push_back({path, packet});
        }
        return std::all_of(files.begin(), files.end(),
                           [&](std::wstring const & path) { return PackFile(*place.packet, path); });
    }
    bool PackFile(CVekResourceFilePacket & parent, std::wstring const & path)
    {
        if (VekStrCompareW(FullPath(path).c_str(), m_own.c_str(), false) == 0)
            return true;
        std::vector<unsigned char> bytes;
        CVekResourceFilePacket * const packet =
            ReadBytes(path, bytes) ? Add(parent, packetfile::TYPE_BLOB, path) : nullptr;
        if (packet)
            static_cast<packetfile::Blob *>(packet)->SetBytes(std::move(bytes));
        return packet != nullptr;
    }
    CVekResourceFilePacket * Add(CVekResourceFilePacket & parent, unsigned int type, std::wstring const & path)
    {
        std::wstring const name = path.substr(path.rfind(L'\\') + 1);
        CVekRef<CVekResourceFilePacket> const packet(m_manager.CreatePacket(type, name.c_str()));
        if (packet && parent.AddChild(packet.Get(), -1) != -1)
            return packet.Get();
        Fail(path, m_manager.GetLastErrorText());
        return nullptr;
    }

    packetfile::Manager & m_manager;
    std::wstring m_own;
    std::vector<Place> m_rest;
};

} // namespace

int RunPacketsPack(std::wstring const & folder, std::wstring const & path)
{
    packetfile::Manager manager;
    if (!manager.GetRoot() || !Packing(manager, path).Pack(folder))
        return EXIT_FAILED;
    return manager.Save(path.c_str()) ? EXIT_DONE : Fail(path, manager.GetLastErrorText());
}

} // namespace tool
