// vek packets as its users meet it.

#include "Process.h"

#include "packetfile/Blob.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace
{

struct VekPackets : testing::Test
{
    VekPackets() { Clean(); }
    ~VekPackets() override { Clean(); } // other tests expect files alone
    void Clean() const
    {
        for (wchar_t const * const name : {L"in", L"out"})
            std::filesystem::remove_all(m_folder + name);
    }
    static CVekResourceFilePacket * Add(packetfile::Manager & manager, CVekResourceFilePacket * parent,
                                        unsigned int type, std::wstring const & name)
    {
        CVekRef<CVekResourceFilePacket> const packet(manager.CreatePacket(type, name.c_str()));
        return parent->AddChild(packet.Get(), -1), packet.Get();
    }
    // What stands in the folder, below it and beside it.
    std::size_t Entries() const
    {
        auto const all = std::filesystem::recursive_directory_iterator(m_folder);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    std::wstring const m_folder = MakeFolder();
    std::wstring const m_file = m_folder + L"a.vkpf";
    std::wstring const m_out = m_folder + L"out";
};

} // namespace

TEST_F(VekPackets, FoldersComeBack)
{
    std::filesystem::create_directories(m_folder + L"in/b c/empty");
    StoreBytes(m_folder + L"in/b c/\x20AC.bin", std::string("\0\x1A\r\n", 4));
    StoreBytes(m_folder + L"in/empty.txt", "");
    Outcome const packed = Vek({L"packets", L"pack", m_folder + L"in", m_folder + L"in/self.vkpf"});
    EXPECT_EQ(packed.out + packed.err, "");
    ASSERT_EQ(Vek({L"packets", L"pack", m_folder + L"in", m_folder + L"in/self.vkpf"}).code, 0);
    std::filesystem::rename(m_folder + L"in/self.vkpf", m_file);
    EXPECT_EQ(Vek({L"packets", L"list", m_file}).out, "         -  FLDR  b c/\n"
                                                      "         -  FLDR  b c/empty/\n"
                                                      "         4  BLOB  b c/\xE2\x82\xAC.bin\n"
                                                      "         0  BLOB  empty.txt\n");
    Outcome const all = Vek({L"packets", L"extract", m_file, L"-o", m_out});
    EXPECT_EQ(all.code, 0) << all.err;
    EXPECT_EQ(all.out, "2 files, 2 folders\n");
    EXPECT_EQ(FileBytes(m_out + L"/b c/\x20AC.bin"), std::string("\0\x1A\r\n", 4));
    EXPECT_TRUE(std::filesystem::is_empty(m_out + L"/b c/empty") && std::filesystem::is_empty(m_out + L"/empty.txt"));

    Outcome const again = Vek({L"packets", L"extract", m_file, L"empty.txt", L"b c/empty", L"-o", m_out});
    EXPECT_EQ(again.code, 1) << "nothing is replaced";
    EXPECT_EQ(again.out, "0 files, 2 folders\n");
    EXPECT_THAT(again.err, AllOf(HasSubstr("not extracted: empty.txt: "), Not(HasSubstr(".bin"))));
    std::filesystem::remove_all(m_out);
    EXPECT_EQ(Vek({L"packets", L"extract", m_file, L"empty.txt", L"-o", m_out}).out, "1 file, 0 folders\n");
    EXPECT_EQ(Vek({L"packets", L"extract", m_file, L"b c", L"no", L"-o", m_out}).code, 1);
    EXPECT_FALSE(std::filesystem::exists(m_out + L"/b c")) << "a wrong path is told of before anything is written";
}

TEST_F(VekPackets, HostileNamesStayOut)
{
    wchar_t const * const names[] = {
        L"..",      L".",       L"",       L"C:",         L"C:x", L"a:b",       L"a::$DATA", L"nul",
        L"CON.txt", L"aux .a",  L"lpt1",   L"COM\x00B9",  L"x.",  L"x ",        L"x?",       L"*",
        L"a\nb",    L"\x1B[2J", L"conin$", L"CLOCK$.b.c", L"a|b", L"\"quote\"", L"<",        L"com0.x",
    };
    packetfile::Manager manager;
    for (wchar_t const * const name : names)
    {
        Add(manager, manager.GetRoot(), packetfile::TYPE_BLOB, name);
        Add(manager, Add(manager, manager.GetRoot(), packetfile::TYPE_FOLDER, name), packetfile::TYPE_BLOB, L"below");
    }
    Add(manager, manager.GetRoot(), packetfile::TYPE_BLOB, std::wstring(256, L'l'));
    for (wchar_t const * const name : {L"good", L"GOOD", L"com10", L"nulls", L"..a", L"a.b"})
        Add(manager, manager.GetRoot(), packetfile::TYPE_BLOB, name);
    Add(manager, manager.GetRoot()->GetChild(manager.GetRoot()->GetNumChildren() - 1), packetfile::TYPE_BLOB, L"c");
    ASSERT_TRUE(manager.Save(m_file.c_str()));

    Outcome const outcome = Vek({L"packets", L"extract", m_file, L"-o", m_out});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "5 files, 0 folders\n") << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2 * 24 + 3);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("not extracted: GOOD: "), HasSubstr("a.b: the packets below it"),
                                   HasSubstr("not extracted: ..: its name ends"), HasSubstr("\\x1B[2J: its name has"),
                                   HasSubstr("nul: its name is a device's"), Not(HasSubstr("below:"))));
    EXPECT_EQ(Entries(), 2 + 5u);
    EXPECT_THAT(Vek({L"packets", L"list", m_file}).out, HasSubstr("BLOB  a\\nb\n"));
}

TEST_F(VekPackets, BadFilesAndUsage)
{
    StoreBytes(m_file, "VKPF");
    std::tuple<std::vector<std::wstring>, int, char const *> const rows[] = {
        {{L"list", m_folder + L"none"}, 1, "can't be read: "},
        {{L"list", m_folder}, 1, "is a directory"},
        {{L"list", m_file}, 1, "a.vkpf: is no packet file"},
        {{L"extract", m_file, L"-o", m_out}, 1, "a.vkpf: is no packet file"},
        {{L"extract", m_file}, 2, "--output is required"},
        {{L"pack", m_folder + L"none", m_file}, 1, "can't be read: "},
        {{L"pack", m_folder, m_folder + L"none\\a"}, 1, "can't be written"},
        {{}, 2, "wants a command: list, extract, pack"},
    };
    for (auto const & [arguments, code, message] : rows)
    {
        SCOPED_TRACE(message);
        std::vector<std::wstring> all = {L"packets"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        Outcome const outcome = Vek(all);
        EXPECT_EQ(outcome.code, code);
        EXPECT_THAT(outcome.err, HasSubstr(message));
    }
    EXPECT_EQ(FileBytes(m_file), "VKPF");
    EXPECT_EQ(Entries(), 1u);
}

TEST_F(VekPackets, ExampleShowsAllOfIt)
{
    Outcome const outcome = RunBeside(L"example_packets.exe", {m_file});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out,
              "shaders\r\n  water.glsl, 16 bytes\r\nnotes.txt, 21 bytes\r\nnotes: the pier is too short\r\n"
              "without its end it is damaged: it has 163 bytes, and should have 173\r\n");
    EXPECT_EQ(Vek({L"packets", L"list", m_file}).code, 0);
    EXPECT_EQ(RunBeside(L"example_packets.exe", {m_folder + L"none\\a"}).code, 1);
}
