#include "Console.h"
#include "WalkTree.h"
#include "packets/PacketFile.h"
#include "packets/Packets.h"

namespace tool
{

namespace
{

std::wstring TypeText(unsigned int type)
{
    std::wstring text;
    for (int i = 0; i < 4; ++i)
        text += static_cast<wchar_t>(type >> 8 * i & 0xFF);
    return Printable(text);
}

} // namespace

int RunPacketsList(std::wstring const & path)
{
    packetfile::Manager manager;
    if (!LoadPackets(path, manager))
        return EXIT_FAILED;
    PacketPath place(L'/');
    CVekResourceFilePacket const * const root = manager.GetRoot();
    WalkTree(root,
             [&](CVekResourceFilePacket const * packet, std::size_t level)
             {
                 place.Enter(*packet, level);
                 if (level == 0)
                     return true;
                 bool const isFolder = IsFolder(*packet);
                 std::wstring const size =
                     isFolder ? L"-" : std::to_wstring(static_cast<packetfile::Blob const *>(packet)->Bytes().size());
                 Console::Out().Write(Format(L"%10s  ", size.c_str()) + TypeText(manager.GetPacketType(packet)) +
                                      L"  " + place.Shown() + (isFolder ? L"/\n" : L"\n"));
                 return true;
             });
    return EXIT_DONE;
}

} // namespace tool
