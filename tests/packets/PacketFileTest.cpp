// The packet-file manager of the examples: what it stores comes back, and no file can harm it.

#include "packetfile/Blob.h"
#include "packetfile/Folder.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"
#include "packetfile/PayloadStream.h"

#include "support/Files.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/TestStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

using namespace packetfile;
using testing::HasSubstr;

namespace
{

// A manager and its tree.
struct Tree
{
    Manager manager;

    CVekResourceFilePacket * Add(CVekResourceFilePacket * parent, unsigned int type, std::wstring const & name,
                                 std::string const & bytes = {})
    {
        CVekRef<CVekResourceFilePacket> const packet(manager.CreatePacket(type, name.c_str()));
        EXPECT_TRUE(packet != nullptr && parent->AddChild(packet.Get(), -1) != -1) << manager.GetLastErrorText();
        if (type == TYPE_BLOB)
            static_cast<Blob *>(packet.Get())->SetBytes({bytes.begin(), bytes.end()});
        return packet.Get();
    }
    void Build()
    {
        CVekResourceFilePacket * const folder = Add(manager.GetRoot(), TYPE_FOLDER, L"f");
        Add(folder, TYPE_BLOB, L"\xD83D\xDE00", std::string("\0\xFF", 2));
        Add(manager.GetRoot(), TYPE_BLOB, L"f");
    }
    // The file as it would be; the reason in brackets when it can't be.
    std::string Bytes()
    {
        PayloadStream stream;
        if (!manager.WriteTree(&stream))
            return "[" + Error() + "]";
        return {reinterpret_cast<char const *>(stream.Data()), stream.GetSize()};
    }
    // What a file holds, and writes again byte for byte; else the reason.
    std::string Read(std::string const & bytes)
    {
        TestStream stream;
        stream.bytes = bytes;
        if (!manager.ReadTree(&stream))
            return Error();
        EXPECT_TRUE(Bytes() == bytes) << "what was accepted is not what was read";
        return "";
    }
    std::string Error() const
    {
        std::wstring const text = manager.GetLastErrorText();
        return std::string(text.begin(), text.end());
    }
};

std::string Numbers4(std::initializer_list<unsigned int> numbers)
{
    std::string bytes;
    for (unsigned int const number : numbers)
        for (unsigned int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string Sealed(std::string const & body)
{
    Checksum checksum;
    checksum.Add(body.data(), body.size());
    return body + Numbers4({checksum.Value()});
}

// A file of these packets, its size and checksum right.
std::string File(unsigned int count, std::string const & packets)
{
    auto const size = static_cast<unsigned int>(packets.size()) + 20;
    return Sealed(Numbers4({FILE_MAGIC, FILE_VERSION, size, count}) + packets);
}

std::string Folders(unsigned int children)
{
    return Numbers4({TYPE_FOLDER, children, 0, 0});
}

// What the format's own page says, byte for byte.
std::string Golden()
{
    return std::string("VKPF\1\0\0\0\x5E\0\0\0\4\0\0\0"
                       "FLDR\2\0\0\0\0\0\0\0\0\0\0\0"
                       "FLDR\1\0\0\0\1\0\0\0\0\0\0\0f\0"
                       "BLOB\0\0\0\0\2\0\0\0\2\0\0\0\x3D\xD8\0\xDE\0\xFF"
                       "BLOB\0\0\0\0\1\0\0\0\0\0\0\0f\0"
                       "\xFD\x5B\x4A\x74",
                       0x5E);
}

} // namespace

TEST(PacketFile, ComesBackFromFilesAndStreams)
{
    std::wstring const path = TemporaryPath(L"tree.vkpf");
    LogCapture const log;
    Tree tree;
    EXPECT_FALSE(tree.manager.Save(nullptr)) << "there is no name yet";
    tree.Build();
    EXPECT_EQ(tree.Bytes(), Golden());
    EXPECT_TRUE(tree.manager.IsModified());
    ASSERT_TRUE(tree.manager.Save(path.c_str())) << tree.Error();
    EXPECT_TRUE(!tree.manager.IsModified() && tree.manager.GetFilePath() == path);
    EXPECT_EQ(FileBytes(path), Golden());
    tree.manager.GetRoot()->RemoveChild(0);
    EXPECT_TRUE(tree.manager.IsModified());
    ASSERT_TRUE(tree.manager.Open(path.c_str())) << tree.Error();
    EXPECT_FALSE(tree.manager.IsModified());
    EXPECT_FALSE(tree.manager.Save(TemporaryPath(L"no such folder/tree.vkpf").c_str()) || tree.manager.Open(nullptr));
    EXPECT_EQ(tree.Bytes(), Golden()) << "a failure leaves the tree";
    CVekResourceFilePacket * const folder = tree.manager.GetRoot()->GetChild(0); // the first of two of its name
    EXPECT_EQ(tree.manager.FindPacket(L"\\f//"), folder);
    EXPECT_EQ(tree.manager.FindPacket(L"f/\xD83D\xDE00"), folder->GetChild(0));
    EXPECT_FALSE(tree.manager.FindPacket(L"F") || tree.manager.FindPacket(L"f/\xD83D"));
    tree.manager.Close();
    EXPECT_TRUE(!*tree.manager.GetFilePath() && tree.manager.GetRoot()->GetNumChildren() == 0);

    struct HostStream final : TestStream
    {
        unsigned int size = 0; // as it is told
        unsigned int GetSize() const override { return size; }
    };
    for (unsigned int const told : {2U + 0x5EU, 0U, 0xFFFFFFFFU})
    {
        HostStream stream;
        stream.bytes = "xy" + Golden();
        stream.size = told;
        stream.SetPosition(2, false);
        ASSERT_TRUE(tree.manager.ReadTree(&stream)) << told << tree.Error();
        EXPECT_TRUE(tree.manager.IsModified()) << "no file holds it";
        EXPECT_EQ(tree.Bytes(), Golden());
    }
}

TEST(PacketFile, HandlersMakePackets)
{
    struct Refusing final : CVekRefCounted<IVekResourceFilePacketHandler>
    {
        CVekResourceFilePacket * made = nullptr;
        CVekResourceFilePacket * CreatePacket(unsigned int, wchar_t const *, IVekResourceFileManager *) override
        {
            return made;
        }
    } handler;
    constexpr unsigned int type = TypeOf("MESH");
    Tree tree;
    std::string const mesh = File(2, Folders(1) + Numbers4({type, 0, 1, 2}) + std::string("m\0xy", 4));
    EXPECT_EQ(tree.Read(mesh), "") << "an unknown type is kept";
    EXPECT_EQ(tree.manager.GetPacketType(tree.manager.FindPacket(L"m")), type);
    EXPECT_TRUE(tree.manager.RegisterHandler(type, &handler) && !tree.manager.RegisterHandler(type, &handler));
    EXPECT_THAT(tree.Read(mesh), HasSubstr("packet 1 can't be read by its own kind"));
    for (unsigned int const made : {TYPE_FOLDER, type})
    {
        handler.made = new Folder(made, L"m", &tree.manager);
        EXPECT_THAT(tree.Read(mesh), HasSubstr("can't be read")) << "of another type, or bytes were left";
    }
    EXPECT_TRUE(tree.manager.UnregisterHandler(type) && handler.GetRefCount() == 1);
}

TEST(PacketFile, TreesThatCantBeStored)
{
    LogCapture const log;
    std::wstring const path = WriteFileBytes(L"old.vkpf", "old");
    Tree tree;
    CVekResourceFilePacket * const root = tree.manager.GetRoot();
    CVekResourceFilePacket * const blob = tree.Add(root, TYPE_BLOB, L"a");
    CVekResourceFilePacket * const folder = tree.Add(root, TYPE_FOLDER, L"b");
    std::pair<CVekResourceFilePacket *, char const *> const rows[] = {
        {folder, "\"b\" is in the tree twice"}, // in itself
        {root, "\"\" is in the tree twice"},
        {blob, "\"a\" is in the tree twice"}, // in two places
        {nullptr, "null or of a foreign kind"},
    };
    for (auto const & [packet, error] : rows)
    {
        folder->AddChild(packet, -1);
        EXPECT_FALSE(tree.manager.Save(path.c_str()));
        EXPECT_THAT(tree.Error(), HasSubstr(error));
        EXPECT_EQ(FileBytes(path), "old") << error;
        folder->RemoveAllChildren(); // a circle would keep itself alive
    }
}

TEST(PacketFile, DamagedFilesAreRefused)
{
    Tree tree;
    ASSERT_EQ(tree.Read(Golden()), "");
    for (std::size_t size = 0; size < Golden().size(); ++size)
        EXPECT_NE(tree.Read(Golden().substr(0, size)), "") << "cut to " << size;
    std::pair<std::string, char const *> const rows[] = {
        {File(0xFFFFFFFF, Folders(0)), "can't hold the 4294967295 packets"},
        {File(2, Folders(0) + Folders(0)), "packet 1 has no parent"},
        {File(3, Folders(2) + Folders(1) + Folders(0)), "packets are missing"},
        {File(1, Folders(0xFFFFFFFF)), "packet 0 claims more children"},
        {File(2, Folders(1) + Numbers4({TYPE_BLOB, 0, 0x80000000, 0})), "packet 1 claims more bytes"},
        {File(2, Folders(1) + Numbers4({TYPE_BLOB, 0, 0, 0xFFFFFFFF})), "packet 1 claims more bytes"},
        {File(1, Numbers4({TYPE_BLOB, 0, 0, 0})), "packet 0 is no root"},
        {Sealed(Numbers4({FILE_MAGIC, 2, 36, 1}) + Folders(0)), "version 2"},
    };
    for (auto const & [bytes, error] : rows)
        EXPECT_THAT(tree.Read(bytes), HasSubstr(error));
}

TEST(PacketFile, AnyDepthIsReadWrittenAndEnded)
{
    unsigned int const depth = VekGuard::Active ? 100000 : 1000000;
    std::string packets;
    for (unsigned int i = 0; i < depth; ++i)
        packets += Folders(i + 1 < depth);
    Tree tree;
    EXPECT_EQ(tree.Read(File(depth, packets)), "");
    EXPECT_EQ(tree.Read(File(depth, packets + 'x')), "is damaged: 1 bytes follow its last packet");
    EXPECT_EQ(tree.manager.GetRoot()->GetNumChildren(), 1) << "the good tree is still there";

    // A packet that somebody else holds outlives the tree above it.
    CVekResourceFilePacket * const held = tree.manager.GetRoot()->GetChild(0)->GetChild(0);
    held->AddRef();
    tree.manager.Close();
    EXPECT_EQ(held->GetRefCount(), 1u);
    EXPECT_EQ(held->GetNumChildren(), 1);
    held->Release();
}
