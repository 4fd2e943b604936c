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

#include <random>
#include <tuple>

using namespace packetfile;
using testing::HasSubstr;

namespace
{

// A manager, and trees as one line of text: "folder{blob=bytes other{}}".
struct Tree
{
    Manager manager;

    CVekResourceFilePacket * Add(CVekResourceFilePacket * parent, unsigned int type, std::wstring const & name,
                                 std::string const & bytes = {})
    {
        Held<CVekResourceFilePacket> const packet(manager.CreatePacket(type, name.c_str()));
        EXPECT_TRUE(packet != nullptr && parent->AddChild(packet.get(), -1) != -1) << manager.GetLastErrorText();
        if (type == TYPE_BLOB)
            static_cast<Blob *>(packet.get())->SetBytes({bytes.begin(), bytes.end()});
        return packet.get();
    }
    void Build()
    {
        CVekResourceFilePacket * const folder = Add(manager.GetRoot(), TYPE_FOLDER, L"f");
        Add(folder, TYPE_BLOB, L"\xD83D\xDE00", std::string("\0\xFF", 2));
        Add(manager.GetRoot(), TYPE_BLOB, L"f");
    }
    static std::string Text(CVekResourceFilePacket const * packet)
    {
        std::string text;
        for (int i = 0; i < packet->GetNumChildren(); ++i)
        {
            CVekResourceFilePacket const * const child = packet->GetChild(i);
            for (wchar_t const * unit = Named::Of(child)->Name(); *unit; ++unit)
                text += *unit < 0x80 ? static_cast<char>(*unit) : '?';
            if (auto const * const blob = dynamic_cast<Blob const *>(child))
                text += "=" + std::string(blob->Bytes().begin(), blob->Bytes().end()) + " ";
            else
                text += "{" + Text(child) + "} ";
        }
        return text;
    }
    std::string Text() { return Text(manager.GetRoot()); }
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

// A root and the beginning of a blob below it.
std::string OneBlob(unsigned int nameLength, unsigned int size)
{
    return Folders(1) + Numbers4({TYPE_BLOB, 0, nameLength, size});
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

template <class Base>
struct Mute final : Base
{
    using Base::Base;
    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return false; }
};

} // namespace

TEST(PacketFile, WritesTheDocumentedBytes)
{
    Tree tree;
    tree.Build();
    EXPECT_EQ(tree.Bytes(), Golden());
}

TEST(PacketFile, ComesBackThroughEveryStream)
{
    std::wstring const path = TemporaryPath(L"tree.vkpf");
    Tree tree;
    EXPECT_FALSE(tree.manager.Save(nullptr)) << "there is no name yet";
    tree.Build();
    EXPECT_TRUE(tree.manager.IsModified());
    ASSERT_TRUE(tree.manager.Save(path.c_str())) << tree.Error();
    EXPECT_TRUE(!tree.manager.IsModified() && tree.manager.GetFilePath() == path);
    EXPECT_EQ(FileBytes(path), Golden());
    tree.manager.GetRoot()->RemoveChild(0);
    EXPECT_TRUE(tree.manager.IsModified());
    ASSERT_TRUE(tree.manager.Open(path.c_str())) << tree.Error();
    EXPECT_FALSE(tree.manager.IsModified());
    EXPECT_EQ(tree.Bytes(), Golden());

    CVekMemoryIOStream memory;
    auto const size = static_cast<unsigned int>(Golden().size());
    ASSERT_TRUE(memory.Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, size));
    ASSERT_TRUE(tree.manager.WriteTree(&memory)) << tree.Error();
    EXPECT_TRUE(memory.IsAtEnd() && memory.MovePosition(-static_cast<int>(size)));
    Tree other;
    ASSERT_TRUE(other.manager.ReadTree(&memory)) << other.Error();
    EXPECT_TRUE(other.manager.IsModified()) << "no file holds it";
    EXPECT_EQ(other.Bytes(), Golden());
    tree.manager.Close();
    EXPECT_TRUE(!*tree.manager.GetFilePath() && tree.Text().empty());
}

TEST(PacketFile, FailingStreamsAreNoticed)
{
    Tree tree;
    tree.Build();
    for (unsigned int n = 1; n < 1000; ++n)
    {
        TestStream stream;
        stream.failFrom = n;
        if (tree.manager.WriteTree(&stream))
        {
            EXPECT_EQ(stream.bytes, Golden());
            EXPECT_GT(n, 10u);
            break;
        }
        EXPECT_THAT(tree.Error(), HasSubstr("can't be written"));
    }
    LogCapture const log;
    std::wstring const path = TemporaryPath(L"no such folder/tree.vkpf");
    EXPECT_FALSE(tree.manager.Save(path.c_str()) || tree.manager.Open(path.c_str()) || tree.manager.Open(nullptr));
    EXPECT_EQ(tree.Bytes(), Golden()) << "a failure leaves the tree";
}

TEST(PacketFile, FindsByPath)
{
    Tree tree;
    tree.Build();
    CVekResourceFilePacket * const root = tree.manager.GetRoot();
    CVekResourceFilePacket * const folder = root->GetChild(0);
    tree.Add(folder, TYPE_FOLDER, std::wstring(1000000, L'n'));
    std::tuple<std::wstring, CVekResourceFilePacket *> const rows[] = {
        {L"", root},
        {L"/", root},
        {L"f", folder}, // the first of two
        {L"\\f//", folder},
        {L"F", nullptr},
        {L"f/\xD83D\xDE00", folder->GetChild(0)},
        {L"f/\xD83D", nullptr},
        {L"..", nullptr},
        {L"f/" + std::wstring(1000000, L'n'), folder->GetChild(1)},
    };
    for (auto const & [path, packet] : rows)
        EXPECT_EQ(tree.manager.FindPacket(path.c_str()), packet) << path.substr(0, 9).c_str();
    EXPECT_EQ(tree.Read(tree.Bytes()), "") << "a megabyte of name";
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
    EXPECT_EQ(tree.manager.CreatePacket(type, L"m"), nullptr);
    std::string const mesh = File(2, Folders(1) + Numbers4({type, 0, 1, 2}) + std::string("m\0xy", 4));
    EXPECT_EQ(tree.Read(mesh), "") << "an unknown type is kept";
    EXPECT_EQ(tree.manager.GetPacketType(tree.manager.FindPacket(L"m")), type);

    EXPECT_TRUE(tree.manager.RegisterHandler(type, &handler));
    EXPECT_FALSE(tree.manager.RegisterHandler(type, &handler) || tree.manager.RegisterHandler(1, nullptr));
    EXPECT_TRUE(handler.GetRefCount() == 2 && tree.manager.FindHandler(type) == &handler);
    EXPECT_THAT(tree.Read(mesh), HasSubstr("packet 1 can't be read by its own kind"));
    handler.made = new Folder(TYPE_FOLDER, L"m", &tree.manager);
    EXPECT_EQ(tree.manager.CreatePacket(type, L"m"), nullptr) << "of another type than asked for";
    handler.made = new Folder(type, L"m", &tree.manager);
    EXPECT_THAT(tree.Read(mesh), HasSubstr("packet 1 can't be read by its own kind")) << "it left bytes unread";
    EXPECT_TRUE(tree.manager.UnregisterHandler(type));
    EXPECT_TRUE(!tree.manager.UnregisterHandler(type) && handler.GetRefCount() == 1);
    for (wchar_t const * const name : {L"a/b", L"\\", static_cast<wchar_t const *>(nullptr)})
        EXPECT_EQ(tree.manager.CreatePacket(TYPE_BLOB, name), nullptr);
}

TEST(PacketFile, TreesThatCantBeStored)
{
    LogCapture const log;
    for (std::size_t row = 0; row < 6; ++row)
    {
        std::wstring const path = WriteFileBytes(L"old.vkpf", "old");
        Tree tree;
        CVekResourceFilePacket * const root = tree.manager.GetRoot();
        CVekResourceFilePacket * const blob = tree.Add(root, TYPE_BLOB, L"a");
        CVekResourceFilePacket * const folder = tree.Add(root, TYPE_FOLDER, L"b");
        Held<CVekResourceFilePacket> const foreign(new Mute<CVekResourceFilePacket>(nullptr));
        Held<CVekResourceFilePacket> const silent(new Mute<NamedPacket<CVekResourceFilePacket>>(1, L"s", nullptr));
        std::tuple<char const *, CVekResourceFilePacket *, char const *> const rows[] = {
            {"in itself", folder, "\"b\" is in the tree twice"},
            {"above itself", root, "\"\" is in the tree twice"},
            {"in two places", blob, "\"a\" is in the tree twice"},
            {"null", nullptr, "null or of a foreign kind"},
            {"foreign", foreign.get(), "foreign kind"},
            {"unwilling", silent.get(), "\"s\" can't write itself"},
        };
        auto const & [name, packet, error] = rows[row];
        SCOPED_TRACE(name);
        folder->AddChild(packet, -1);
        EXPECT_FALSE(tree.manager.Save(path.c_str()));
        EXPECT_THAT(tree.Error(), HasSubstr(error));
        EXPECT_EQ(FileBytes(path), "old");
        folder->RemoveAllChildren(); // a circle would keep itself alive
    }
}

TEST(PacketFile, DamagedFilesAreRefused)
{
    Tree tree;
    ASSERT_EQ(tree.Read(Golden()), "");
    for (std::size_t size = 0; size < Golden().size(); ++size)
        EXPECT_NE(tree.Read(Golden().substr(0, size)), "") << "cut to " << size;
    EXPECT_NE(tree.Read(Golden() + "x"), "");
    std::mt19937 random(5);
    for (std::size_t i = 0; i < Golden().size(); ++i)
    {
        for (int bit = 0; bit < 8; ++bit)
        {
            std::string bytes = Golden();
            bytes[i] = static_cast<char>(bytes[i] ^ 1 << bit);
            EXPECT_NE(tree.Read(bytes), "") << "byte " << i << " bit " << bit;
            // With the checksum put right it may be a good file, which is then read as it stands: Read compares.
            tree.Read(Sealed(bytes.substr(0, bytes.size() - 4)));
            bytes[random() % (bytes.size() - 4)] = static_cast<char>(random());
            tree.Read(Sealed(bytes.substr(0, bytes.size() - 4)));
        }
    }
}

TEST(PacketFile, LyingFilesAreRefused)
{
    unsigned int const most = 0xFFFFFFFF;
    std::tuple<char const *, std::string, char const *> const rows[] = {
        {"no packets", File(0, std::string(16, 'x')), "can't hold the 0 packets"},
        {"too many packets", File(most, Folders(0)), "can't hold the 4294967295 packets"},
        {"one packet too many", File(2, Folders(0) + Folders(0)), "packet 1 has no parent"},
        {"bytes behind the last", File(1, Folders(0) + "x"), "1 bytes follow"},
        {"missing children", File(2, Folders(1) + Folders(1)), "packet 1 claims more children"},
        {"children elsewhere", File(3, Folders(2) + Folders(1) + Folders(0)), "packets are missing"},
        {"all the children there are", File(1, Folders(most)), "packet 0 claims more children"},
        {"name", File(2, OneBlob(most, 0)), "packet 1 claims more bytes"},
        {"name that wraps round", File(2, OneBlob(0x80000000, 0)), "claims more bytes"},
        {"payload", File(2, OneBlob(0, most)), "packet 1 claims more bytes"},
        {"name and payload", File(2, OneBlob(1, 1) + "n "), "claims more bytes"},
        {"folder with bytes", File(2, Folders(1) + Numbers4({TYPE_FOLDER, 0, 0, 1}) + "x"), "is a folder"},
        {"root that is none", File(1, Numbers4({TYPE_BLOB, 0, 0, 0})), "packet 0 is no root"},
        {"name with a zero", File(2, OneBlob(1, 0) + std::string(2, '\0')), "a name that"},
        {"name with a slash", File(2, OneBlob(1, 0) + std::string("/\0", 2)), "a name that"},
        {"other version", Sealed(Numbers4({FILE_MAGIC, 2, 36, 1}) + Folders(0)), "version 2"},
        {"other kind", Sealed(Numbers4({1, 1, 36, 1}) + Folders(0)), "is no packet file"},
        {"size", Sealed(Numbers4({FILE_MAGIC, 1, most, 1}) + Folders(0)), "and should have 4294967295"},
    };
    for (auto const & [name, bytes, error] : rows)
    {
        SCOPED_TRACE(name);
        Tree tree;
        EXPECT_THAT(tree.Read(bytes), HasSubstr(error));
    }
}

TEST(PacketFile, AnyDepthIsReadWrittenAndEnded)
{
    unsigned int const depth = VekGuard::Active ? 100000 : 1000000;
    std::string packets;
    for (unsigned int i = 0; i < depth; ++i)
        packets += Folders(i + 1 < depth);
    Tree tree;
    EXPECT_EQ(tree.Read(File(depth, packets)), "");
    EXPECT_EQ(tree.Read(File(depth, packets + std::string(1, 'x'))), "is damaged: 1 bytes follow its last packet");
    EXPECT_EQ(tree.manager.GetRoot()->GetNumChildren(), 1) << "the good tree is still there";

    // A packet that somebody else holds outlives the tree above it.
    CVekResourceFilePacket * const held = tree.manager.GetRoot()->GetChild(0)->GetChild(0);
    held->AddRef();
    tree.manager.Close();
    EXPECT_EQ(held->GetRefCount(), 1u);
    EXPECT_EQ(held->GetNumChildren(), 1);
    held->Release();
}

TEST(PacketFile, WithoutMemoryNothingIsLost)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    Tree tree;
    tree.Build();
    bool isDone = false;
    for (std::size_t n = 1; !isDone && n < 1000; ++n)
    {
        TestStream stream;
        stream.bytes = Golden();
        VekGuard::FailAllocation(n);
        isDone = tree.manager.ReadTree(&stream);
        bool const hasFailed = VekGuard::FailReset();
        EXPECT_TRUE(isDone || hasFailed) << n;
        EXPECT_EQ(tree.Bytes(), Golden());
    }
    EXPECT_TRUE(isDone);
}
