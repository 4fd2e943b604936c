#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"
#include "WalkTree.h"
#include "packets/PacketFile.h"
#include "packets/Packets.h"
#include "packets/SafeName.h"

#include <unordered_set>

namespace tool
{

namespace
{

/// Makes a folder, or accepts one that is there. Not a link, which could lead anywhere.
bool MakeFolder(std::wstring const & path, std::wstring & why)
{
    if (CreateDirectoryW(path.c_str(), nullptr))
        return true;
    bool const exists = GetLastError() == ERROR_ALREADY_EXISTS;
    why = LastErrorText();
    DWORD const attributes = exists ? GetFileAttributesW(path.c_str()) : INVALID_FILE_ATTRIBUTES;
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
        why = L"a file of that name is there";
    else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        why = L"a link of that name is there";
    else
        return true;
    return false;
}

/// Writes a file that must not be there yet; none is left after a failure.
bool WriteNewFile(std::wstring const & path, std::vector<unsigned char> const & bytes, std::wstring & why)
{
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        why = LastErrorText();
        return false;
    }
    DWORD written = 0;
    bool const isDone =
        bytes.empty() ||
        (WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size());
    why = LastErrorText();
    CloseHandle(file);
    if (!isDone)
        DeleteFileW(path.c_str());
    return isDone;
}

class Extraction
{
public:
    Extraction(std::wstring const & file, std::wstring const & target) : m_file(file), m_target(target) {}

    /// Has a packet and all below it extracted, with the folders that lead to it.
    void Select(CVekResourceFilePacket * packet)
    {
        m_selected.insert(packet);
        while ((packet = packet->GetParent()) != nullptr)
            m_above.insert(packet);
    }
    bool Run(CVekResourceFilePacket * root)
    {
        WalkTree(root,
                 [this](CVekResourceFilePacket * packet, std::size_t level)
                 {
                     m_place.Enter(*packet, level);
                     if (level <= m_selectedLevel)
                         m_selectedLevel = m_selected.contains(packet) ? level : NO_LEVEL;
                     bool const isWanted = m_selectedLevel != NO_LEVEL || m_above.contains(packet);
                     return isWanted && (level == 0 || Extract(*packet));
                 });
        Console::Out().Write(std::to_wstring(m_files) + (m_files == 1 ? L" file, " : L" files, ") +
                             std::to_wstring(m_folders) + (m_folders == 1 ? L" folder\n" : L" folders\n"));
        return m_isComplete;
    }

private:
    static constexpr std::size_t NO_LEVEL = static_cast<std::size_t>(-1);

    /// True when the packets below can follow.
    bool Extract(CVekResourceFilePacket & packet)
    {
        packetfile::Named const & named = *packetfile::Named::Of(&packet);
        if (wchar_t const * const unsafe = WhyUnsafe(std::wstring_view(named.Name(), named.NameLength())))
            return Refuse(unsafe);
        std::wstring const path = m_target + L"\\" + m_place.Text();
        std::wstring why;
        if (IsFolder(packet))
        {
            if (!MakeFolder(path, why))
                return Refuse(why);
            ++m_folders;
            return true;
        }
        if (!WriteNewFile(path, static_cast<packetfile::Blob &>(packet).Bytes(), why))
            return Refuse(why);
        ++m_files;
        return packet.GetNumChildren() > 0 && Refuse(L"the packets below it: it is no folder");
    }
    bool Refuse(std::wstring_view why)
    {
        Console::Err().Write(
            (L"vek: " + Printable(m_file) + L": not extracted: " + m_place.Shown() + L": ").append(why).append(L"\n"));
        m_isComplete = false;
        return false;
    }

    std::wstring const & m_file;
    std::wstring const & m_target;
    PacketPath m_place{L'\\'};
    std::unordered_set<CVekResourceFilePacket *> m_selected;
    std::unordered_set<CVekResourceFilePacket *> m_above;
    std::size_t m_selectedLevel = NO_LEVEL;
    std::size_t m_files = 0;
    std::size_t m_folders = 0;
    bool m_isComplete = true;
};

} // namespace

int RunPacketsExtract(std::wstring const & path, std::vector<std::wstring> const & packets, std::wstring const & target)
{
    packetfile::Manager manager;
    if (!LoadPackets(path, manager))
        return EXIT_FAILED;
    Extraction extraction(path, target);
    for (std::wstring const & packet : packets)
    {
        CVekResourceFilePacket * const found = manager.FindPacket(packet.c_str());
        if (!found)
            return Fail(path, L"holds no \"" + Printable(packet, 200) + L"\"");
        extraction.Select(found);
    }
    if (packets.empty())
        extraction.Select(manager.GetRoot());
    std::wstring why;
    DWORD const attributes = GetFileAttributesW(target.c_str()); // a link here is the user's own
    bool const isThere = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    if (!isThere && !MakeFolder(target, why))
        return Fail(target, L"can't be made: " + why);
    return extraction.Run(manager.GetRoot()) ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
