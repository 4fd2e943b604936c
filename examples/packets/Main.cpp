// Builds a small tree of packets, saves it to a file, loads it back and prints it; then shows what becomes of a file
// that has lost its end:
//     example_packets scene.vkpf
#include "packetfile/Blob.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"

#include <cstdio>

using packetfile::Blob;
using packetfile::Manager;

static std::vector<unsigned char> BytesOf(char const * text)
{
    return std::vector<unsigned char>(text, text + std::strlen(text));
}

// Creates a packet and adds it to another one, which holds the only reference to it afterwards.
static CVekResourceFilePacket * Add(Manager & manager, CVekResourceFilePacket & parent, unsigned int type,
                                    wchar_t const * name)
{
    CVekRef<CVekResourceFilePacket> const packet(manager.CreatePacket(type, name)); // count 1, ours
    return packet && parent.AddChild(packet.Get(), -1) != -1 ? packet.Get() : nullptr;
}

static bool Build(Manager & manager)
{
    CVekResourceFilePacket * const root = manager.GetRoot();
    CVekResourceFilePacket * const shaders = Add(manager, *root, packetfile::TYPE_FOLDER, L"shaders");
    auto * const water = shaders ? Add(manager, *shaders, packetfile::TYPE_BLOB, L"water.glsl") : nullptr;
    auto * const notes = Add(manager, *root, packetfile::TYPE_BLOB, L"notes.txt");
    if (!water || !notes)
        return false;
    static_cast<Blob *>(water)->SetBytes(BytesOf("void main()\n{\n}\n"));
    static_cast<Blob *>(notes)->SetBytes(BytesOf("the pier is too short"));
    return true;
}

// A tree of a program's own making is not deep: here recursion will do.
static void Print(Manager & manager, CVekResourceFilePacket const & packet, int level)
{
    for (int i = 0; i < packet.GetNumChildren(); ++i)
    {
        CVekResourceFilePacket const & child = *packet.GetChild(i);
        std::printf("%*s%ls", 2 * level, "", manager.GetPacketName(&child));
        if (manager.GetPacketType(&child) == packetfile::TYPE_BLOB)
            std::printf(", %u bytes", static_cast<unsigned int>(static_cast<Blob const &>(child).Bytes().size()));
        std::puts("");
        Print(manager, child, level + 1);
    }
}

// Reads all but the last ten bytes of what the tree would be as a file.
static bool ReadTruncated(Manager & manager, Manager & other)
{
    CVekRef<IVekMemoryIOStream> const whole(getVekLibKernel()->CreateMemoryIOStream());
    CVekRef<IVekMemoryIOStream> const part(getVekLibKernel()->CreateMemoryIOStream());
    unsigned int const flags = VEK_IO_READ | VEK_IO_WRITE;
    if (!whole || !part || !whole->Open(nullptr, flags, 1000) || !manager.WriteTree(whole.Get()))
        return false;
    auto const size = static_cast<unsigned int>(whole->GetPosition()) - 10;
    if (!part->Open(nullptr, flags, size))
        return false;
    std::memcpy(part->GetBuffer(), whole->GetBuffer(), size);
    return other.ReadTree(part.Get());
}

static bool Run(wchar_t const * path)
{
    Manager manager; // outlives its packets
    bool const isDone = Build(manager) && manager.Save(path) && manager.Open(path);
    if (!isDone)
    {
        std::printf("%ls %ls\n", path, manager.GetLastErrorText());
        return false;
    }
    Print(manager, *manager.GetRoot(), 0);
    auto const * const notes = static_cast<Blob const *>(manager.FindPacket(L"notes.txt"));
    std::printf("notes: %.*s\n", static_cast<int>(notes->Bytes().size()),
                reinterpret_cast<char const *>(notes->Bytes().data()));
    Manager other;
    if (!ReadTruncated(manager, other))
        std::printf("without its end it %ls\n", other.GetLastErrorText());
    return true;
}

int wmain(int count, wchar_t ** arguments)
{
    if (count != 2)
    {
        std::puts("usage: example_packets FILE\nWrites a small tree of packets to FILE and reads it back.");
        return 2;
    }
    CVekLibrary const library;
    return library && Run(arguments[1]) ? 0 : 1;
}
