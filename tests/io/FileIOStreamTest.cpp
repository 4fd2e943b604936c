#include "VekIO.h"

#include "io/StreamTable.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <climits>
#include <cstdio>
#include <cstdlib>

#if defined(__i386__)
static_assert(sizeof(CVekFileIOStream) == 4 + 4 + 6 * 4);
#endif

namespace
{

constexpr unsigned int READ_BINARY = VEK_IO_READ | VEK_IO_BINARY;
constexpr unsigned int WRITE_BINARY = VEK_IO_WRITE | VEK_IO_BINARY;

// A file of the test's own, removed at its end.
class FileIOStream : public testing::Test
{
protected:
    FileIOStream()
    {
        char const * const folder = std::getenv("VEK_TEST_TMP");
        std::string const text = folder ? folder : ".";
        m_folder.assign(text.begin(), text.end());
        m_path = m_folder + L"/file stream.bin";
        DeleteFileW(m_path.c_str());
    }
    ~FileIOStream() override
    {
        m_stream.Close();
        DeleteFileW(m_path.c_str());
    }

    bool Open(unsigned int flags) { return m_stream.Open(m_path.c_str(), flags, 0); }
    void Fill(std::string const & bytes)
    {
        std::FILE * const file = _wfopen(m_path.c_str(), L"wb");
        ASSERT_NE(file, nullptr);
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    std::string Contents() const
    {
        std::string bytes;
        if (std::FILE * const file = _wfopen(m_path.c_str(), L"rb"))
        {
            for (int byte = std::getc(file); byte != EOF; byte = std::getc(file))
                bytes += static_cast<char>(byte);
            std::fclose(file);
        }
        return bytes;
    }

    std::wstring m_folder;
    std::wstring m_path;
    CVekFileIOStream m_stream;
    LogCapture m_log;
};

} // namespace

TEST_F(FileIOStream, KeepsTheRefCountContract)
{
    ExpectRefCountContract("file stream", new CVekFileIOStream);
    Fill("x");
    auto * const open = new CVekFileIOStream;
    EXPECT_TRUE(open->Open(m_path.c_str(), READ_BINARY, 0));
    EXPECT_EQ(open->Release(), 0u);
    EXPECT_NE(DeleteFileW(m_path.c_str()), 0) << "the last Release closes the file";
}

TEST_F(FileIOStream, OpensInTheModeOfItsFlags)
{
    struct Row
    {
        unsigned int flags;
        bool opens;
        char const * written; // what "a\n" becomes; null when it can't be written
        int readBack;         // the characters read of "a\r\nb"
    };
    Row const rows[] = {
        {8, true, nullptr, 3},
        {8 | 1, true, nullptr, 4},
        {8 | 2, true, nullptr, 3},
        {16, true, "a\r\n", 0},
        {16 | 1, true, "a\n", 0},
        {16 | 2, true, "a\r\n", 0},
        {0, false, nullptr, 0},
        {1, false, nullptr, 0},
        {2, false, nullptr, 0},
        {8 | 16, false, nullptr, 0},
        {8 | 1 | 2, false, nullptr, 0},
        {4, false, nullptr, 0},
        {8 | 1 | 4 | 32, true, nullptr, 4},
        {0xFFFFFFFF, false, nullptr, 0},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.flags);
        Fill("a\r\nb");
        EXPECT_EQ(Open(row.flags), row.opens);
        EXPECT_EQ(m_log.Take(), row.opens ? L"" : L"CVekFileIOStream::Open --> Failed to open file");
        EXPECT_EQ(m_stream.GetFileHandle() != nullptr, row.opens);
        EXPECT_EQ(m_stream.IsReadable(), (row.flags & 8) != 0);
        EXPECT_EQ(m_stream.IsWritable(), (row.flags & 16) != 0);
        if (!row.opens)
            continue;
        EXPECT_EQ(m_stream.Write("a\n", 2, true), row.written != nullptr);
        EXPECT_TRUE(m_stream.WriteByte('~', false)) << "true always";
        int count = 0;
        while (!m_stream.IsAtEnd() && m_stream.IsReadable())
            count += m_stream.ReadChar(true) != 0;
        EXPECT_EQ(count, row.readBack);
        EXPECT_EQ(m_stream.ReadInt32(true), 0);
        EXPECT_EQ(m_stream.Flush(), row.written != nullptr);
        m_stream.Close();
        EXPECT_EQ(Contents(), row.written ? std::string(row.written) + "~" : "a\r\nb");
    }
}

TEST_F(FileIOStream, OpenReportsWhatIsWrong)
{
    struct Row
    {
        char const * name;
        wchar_t const * path;
        unsigned int flags;
        wchar_t const * message;
    };
    std::wstring const missing = m_folder + L"/no such folder/file";
    std::wstring const tooLong = m_folder + L"/" + std::wstring(40000, L'x');
    Row const rows[] = {
        {"no name", nullptr, READ_BINARY, L"CVekFileIOStream::Open --> Filename is NULL"},
        {"an empty name", L"", READ_BINARY, L"CVekFileIOStream::Open --> Filename has no character"},
        {"a file that is not there", m_path.c_str(), READ_BINARY, L"CVekFileIOStream::Open --> Failed to open file"},
        {"a folder that is not there", missing.c_str(), WRITE_BINARY,
         L"CVekFileIOStream::Open --> Failed to open file"},
        {"a folder, reading", m_folder.c_str(), READ_BINARY, L"CVekFileIOStream::Open --> Failed to open file"},
        {"a folder, writing", m_folder.c_str(), WRITE_BINARY, L"CVekFileIOStream::Open --> Failed to open file"},
        {"a name without end", tooLong.c_str(), READ_BINARY, L"CVekFileIOStream::Open --> Failed to open file"},
        {"characters that no name has", L"a?b*c|d", WRITE_BINARY, L"CVekFileIOStream::Open --> Failed to open file"},
    };
    std::wstring const other = m_path + L".open";
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(m_stream.Open(other.c_str(), WRITE_BINARY, 0));
        EXPECT_FALSE(m_stream.Open(row.path, row.flags, 0));
        EXPECT_EQ(m_log.Take(), row.message);
        EXPECT_EQ(m_stream.GetFileHandle(), nullptr) << "closed first";
        EXPECT_EQ(std::wstring(m_stream.GetFilePath()), other);
        EXPECT_NE(DeleteFileW(other.c_str()), 0) << "closed first";
    }
}

TEST_F(FileIOStream, KnowsItsPathAndName)
{
    EXPECT_EQ(std::wstring(m_stream.GetFilePath()), L"");
    EXPECT_EQ(std::wstring(m_stream.GetFileName()), L"");
    wchar_t const * const separators[] = {L"/", L"\\", L"\\/", L"/./", L"\\.\\"};
    for (wchar_t const * separator : separators)
    {
        std::wstring const path = m_folder + separator + L"file stream.bin";
        ASSERT_TRUE(m_stream.Open(path.c_str(), WRITE_BINARY, 0));
        EXPECT_EQ(std::wstring(m_stream.GetFilePath()), path);
        EXPECT_EQ(std::wstring(m_stream.GetFileName()), L"file stream.bin");
    }
    ASSERT_TRUE(m_stream.Open(m_stream.GetFilePath(), READ_BINARY, 0)) << "its own path again";
    EXPECT_EQ(std::wstring(m_stream.GetFileName()), L"file stream.bin");
    m_stream.Close();
    EXPECT_EQ(std::wstring(m_stream.GetFileName()), L"file stream.bin") << "closing keeps it";
}

TEST_F(FileIOStream, MessagesWithoutFile)
{
    struct Row
    {
        char const * name;
        bool (*call)(CVekFileIOStream &);
        wchar_t const * message;
    };
    static char c;
    static int n;
    wchar_t const * const size = L"CVekFileIOStream::GetSize --> File is not opened";
    wchar_t const * const print = L"CVekFileIOStream::Printf --> File is not opened";
    wchar_t const * const scan = L"CVekFileIOStream::Scanf --> File is not opened";
    Row const rows[] = {
        {"GetSize", [](CVekFileIOStream & s) { return s.GetSize() != 0; }, size},
        {"kept: GetPosition", [](CVekFileIOStream & s) { return s.GetPosition() != 0; }, size},
        {"kept: Read", [](CVekFileIOStream & s) { return s.Read(&c, 1, true); }, size},
        {"kept: ReadChar", [](CVekFileIOStream & s) { return s.ReadChar(false) != 0; }, size},
        {"kept: ReadWChar", [](CVekFileIOStream & s) { return s.ReadWChar(true) != 0; }, size},
        {"kept: ReadTChar", [](CVekFileIOStream & s) { return s.ReadTChar(true) != 0; }, size},
        {"Write", [](CVekFileIOStream & s) { return s.Write(&c, 1, true); },
         L"CVekFileIOStream::Write --> File is not opened"},
        {"Printf", [](CVekFileIOStream & s) { return s.Printf("x"); }, print},
        {"wide Printf", [](CVekFileIOStream & s) { return s.Printf(L"x"); }, print},
        {"Scanf", [](CVekFileIOStream & s) { return s.Scanf("%d", &n); }, scan},
        {"wide Scanf", [](CVekFileIOStream & s) { return s.Scanf(L"%d", &n); }, scan},
        {"SetPosition", [](CVekFileIOStream & s) { return s.SetPosition(0, false) || s.SetPosition(0, true); }, L""},
        {"MovePosition", [](CVekFileIOStream & s) { return s.MovePosition(0); }, L""},
        {"IsAtEnd", [](CVekFileIOStream & s) { return s.IsAtEnd(); }, L""},
        {"Flush", [](CVekFileIOStream & s) { return s.Flush(); }, L""},
        {"ReadByte", [](CVekFileIOStream & s) { return s.ReadByte(false) != 0; }, L""},
        {"ReadDWord", [](CVekFileIOStream & s) { return s.ReadDWord(true) != 0; }, L""},
        {"ReadDouble", [](CVekFileIOStream & s) { return s.ReadDouble(true) != 0; }, L""},
        {"WriteChar", [](CVekFileIOStream & s) { return !s.WriteChar('x', true); }, L""},
        {"WriteQWord", [](CVekFileIOStream & s) { return !s.WriteQWord(1, false); }, L""},
    };
    ASSERT_TRUE(Open(WRITE_BINARY));
    m_stream.Close();
    m_stream.Close();
    CVekFileIOStream never;
    for (CVekFileIOStream * const stream : {&never, &m_stream})
        for (Row const & row : rows)
        {
            EXPECT_FALSE(row.call(*stream)) << row.name;
            EXPECT_EQ(m_log.Take(), row.message) << row.name;
        }
}

TEST_F(FileIOStream, SlotOrder)
{
    IVekFileIOStream * const stream = &m_stream;
    EXPECT_EQ(CallSlot<unsigned int>(stream, 0), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 1), 1u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 2), 1u);
    ExpectByteOrderSlots(stream);
    for (bool const reversed : {false, true})
    {
        SCOPED_TRACE(reversed);
        EXPECT_TRUE(CallSlot<bool>(stream, 3, m_path.c_str(), WRITE_BINARY, 0u));
        EXPECT_TRUE(CallSlot<bool>(stream, 7) && !CallSlot<bool>(stream, 6));
        stream->SetSystemByteOrder(reversed ? VEK_BYTEORDER_LITTLE : VEK_BYTEORDER_BIG);
        WriteSlots(stream);
        EXPECT_EQ(CallSlot<unsigned int>(stream, 5), WrittenBytes(reversed).size());
        CallSlot(stream, 4);
        EXPECT_EQ(Contents(), WrittenBytes(reversed));
    }
    stream->SetSystemByteOrder(VEK_BYTEORDER_BIG);
    EXPECT_TRUE(stream->Open(m_path.c_str(), WRITE_BINARY, 0));
    EXPECT_TRUE(CallFormatSlot(stream, 42, L"%s %d", L"ab", 12)) << "slot 42";
    stream->Close();
    EXPECT_EQ(Contents(), std::string("a\0b\0 \0001\0002\0", 10));

    Fill("12 word" + std::string(reinterpret_cast<char const *>(SLOT_BYTES), 16));
    EXPECT_TRUE(stream->Open(m_path.c_str(), READ_BINARY, 0));
    int number = 0;
    char word[5] = "";
    EXPECT_TRUE(CallFormatSlot(stream, 45, "%d %4s", &number, word, 5u)) << "slot 45";
    EXPECT_EQ(number, 12);
    EXPECT_EQ(std::string(word), "word");
    EXPECT_EQ(CallSlot<int>(stream, 12), 7);
    ExpectReadSlots(stream);
    EXPECT_TRUE(CallSlot<bool>(stream, 13, 0, true)) << "slot 13";
    EXPECT_TRUE(CallSlot<bool>(stream, 15)) << "slot 15";
    EXPECT_EQ(CallSlot<_iobuf *>(stream, 46), m_stream.GetFileHandle());
    EXPECT_EQ(CallSlot<_iobuf *>(stream, 47), m_stream.GetFileHandle());
    EXPECT_NE(m_stream.GetFileHandle(), nullptr);
    EXPECT_EQ(CallSlot<CVekString<wchar_t> const *>(stream, 48), &m_stream.GetFilePath());
    EXPECT_EQ(CallSlot<CVekString<wchar_t> const *>(stream, 49), &m_stream.GetFileName());

    Fill(std::string("7\0 \0", 4));
    EXPECT_TRUE(stream->Open(m_path.c_str(), READ_BINARY, 0));
    EXPECT_TRUE(CallFormatSlot(stream, 44, L"%d", &number)) << "slot 44";
    EXPECT_EQ(number, 7);
    CallSlot(new CVekFileIOStream, 51); // the deleting one of the destructor's two places
}

TEST_F(FileIOStream, Positions)
{
    struct Row
    {
        char const * name;
        char operation; // S from the start, E from the end, M by an offset
        int argument;
        int after; // -1: refused
    };
    Row const rows[] = {
        {"start", 'S', 0, 0},
        {"middle", 'S', 5, 5},
        {"end", 'S', 10, 10},
        {"beyond the end", 'S', 15, 15},
        {"before the start", 'S', -1, -1},
        {"the end", 'E', 0, 10},
        {"before the end", 'E', 4, 6},
        {"start from the end", 'E', 10, 0},
        {"too far before the end", 'E', 11, -1},
        {"beyond from the end", 'E', -3, 13},
        {"forth", 'M', 4, 7},
        {"back", 'M', -3, 0},
        {"too far back", 'M', -4, -1},
        {"nowhere", 'M', 0, 3},
        {"very far back", 'M', INT_MIN, -1},
        {"far", 'S', INT_MAX, INT_MAX},
    };
    Fill("0123456789");
    ASSERT_TRUE(Open(READ_BINARY));
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(m_stream.SetPosition(3, false));
        bool const moved = row.operation == 'M' ? m_stream.MovePosition(row.argument)
                                                : m_stream.SetPosition(row.argument, row.operation == 'E');
        EXPECT_EQ(moved, row.after >= 0);
        if (row.after < 0)
            continue;
        EXPECT_EQ(m_stream.GetPosition(), row.after);
        EXPECT_EQ(m_stream.GetSize(), 10u);
        EXPECT_EQ(m_stream.GetPosition(), row.after) << "GetSize comes back";
        EXPECT_EQ(m_stream.IsAtEnd(), row.after >= 10);
        EXPECT_EQ(m_stream.ReadByte(false), row.after < 10 ? '0' + row.after : 0);
        EXPECT_EQ(m_stream.GetPosition(), row.after);
    }
    ASSERT_TRUE(Open(WRITE_BINARY));
    EXPECT_TRUE(m_stream.IsAtEnd());
    EXPECT_TRUE(m_stream.Write("abcdef", 6, true) && m_stream.IsAtEnd());
    EXPECT_EQ(m_stream.GetSize(), 6u);
    EXPECT_TRUE(m_stream.SetPosition(2, false) && !m_stream.IsAtEnd());
    EXPECT_TRUE(m_stream.Write("XY", 2, false) && m_stream.Write("Z", 1, true));
    EXPECT_EQ(m_stream.GetPosition(), 3);
    m_stream.Close();
    EXPECT_EQ(Contents(), "abZYef");
}

TEST_F(FileIOStream, BlocksAreWholeOrRefused)
{
    struct Row
    {
        char const * name;
        int before;
        unsigned int count;
        bool advance, whole;
        int after;
        char const * data;
    };
    Row const rows[] = {
        {"all of it", 0, 10, true, true, 10, "0123456789"}, {"a part", 3, 4, true, true, 7, "3456"},
        {"a look", 3, 4, false, true, 3, "3456"},           {"nothing", 3, 0, true, true, 3, ""},
        {"too much", 6, 5, true, false, 10, "6789"},        {"a look at too much", 6, 5, false, false, 6, "6789"},
        {"at the end", 10, 1, true, false, 10, ""},
    };
    Fill("0123456789");
    ASSERT_TRUE(Open(READ_BINARY));
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(m_stream.SetPosition(row.before, false));
        char data[16] = {};
        EXPECT_EQ(m_stream.Read(data, row.count, row.advance), row.whole);
        EXPECT_EQ(std::string(data), row.data);
        EXPECT_EQ(m_stream.GetPosition(), row.after);
    }
    EXPECT_FALSE(m_stream.Read(nullptr, 1, true));
    ASSERT_TRUE(m_stream.SetPosition(7, false));
    EXPECT_EQ(m_stream.ReadInt32(false), 0) << "not wholly there";
    EXPECT_EQ(m_stream.GetPosition(), 7);
    EXPECT_EQ(m_stream.ReadChar(true), '7');
    EXPECT_EQ(m_stream.ReadQWord(true), 0u);
    EXPECT_TRUE(m_stream.IsAtEnd());
    EXPECT_EQ(m_stream.ReadChar(true), 0);
    EXPECT_EQ(m_log.Text(), L"");
}

TEST_F(FileIOStream, WritesMoreThanItsBuffer)
{
    std::string expected;
    ASSERT_TRUE(Open(WRITE_BINARY));
    for (unsigned int i = 0; i < 60000; ++i)
    {
        m_stream.WriteDWord(i, true);
        expected.append(reinterpret_cast<char const *>(&i), 4);
    }
    EXPECT_TRUE(m_stream.Write(expected.data(), static_cast<unsigned int>(expected.size()), true));
    EXPECT_EQ(m_stream.GetPosition(), 480000);
    EXPECT_TRUE(m_stream.Flush());
    m_stream.Close();
    EXPECT_TRUE(Contents() == expected + expected);
}

TEST_F(FileIOStream, FlushTellsOfLostBytes)
{
    // A pipe whose reader has gone takes nothing; a small write only shows that when the buffer is flushed.
    HANDLE const reader =
        CreateNamedPipeW(L"\\\\.\\pipe\\veklib test", PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, 1, 0, 4096, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    ASSERT_TRUE(m_stream.Open(L"\\\\.\\pipe\\veklib test", WRITE_BINARY, 0)) << "error " << GetLastError();
    EXPECT_TRUE(m_stream.Write("x", 1, true));
    EXPECT_TRUE(m_stream.Flush());
    CloseHandle(reader);
    EXPECT_TRUE(m_stream.WriteByte('y', true)) << "true always";
    EXPECT_FALSE(m_stream.Flush());
    EXPECT_FALSE(m_stream.Flush()) << "what is lost stays lost";
}

TEST_F(FileIOStream, PositionsAbove2GB)
{
    // The file is sparse: nothing is stored but its last byte.
    ASSERT_TRUE(Open(WRITE_BINARY));
    long long const size = 0x123456789;
    ASSERT_EQ(_fseeki64(m_stream.GetFileHandle(), size - 1, SEEK_SET), 0);
    if (!m_stream.WriteByte(7, true) || !m_stream.Flush())
        GTEST_SKIP() << "no room for a large file";
    EXPECT_EQ(m_stream.GetPosition(), INT_MAX);
    EXPECT_EQ(m_stream.GetSize(), UINT_MAX);
    m_stream.Close();
    ASSERT_TRUE(Open(READ_BINARY));
    EXPECT_TRUE(m_stream.SetPosition(1, true));
    EXPECT_EQ(m_stream.GetPosition(), INT_MAX);
    EXPECT_FALSE(m_stream.IsAtEnd());
    EXPECT_EQ(m_stream.ReadByte(true), 7);
    EXPECT_TRUE(m_stream.IsAtEnd());
}

TEST_F(FileIOStream, OpenWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    Fill("kept");
    std::size_t n = 1;
    for (bool failed = true; failed; ++n)
    {
        VekGuard::FailAllocation(n);
        bool const opened = Open(READ_BINARY);
        failed = VekGuard::FailReset();
        EXPECT_EQ(m_stream.GetFileHandle() != nullptr, opened) << n;
        EXPECT_TRUE(opened || m_log.Text() == L"CVekFileIOStream::Open --> Failed to open file") << n;
        m_log.Clear();
        ASSERT_LT(n, 50u);
    }
    EXPECT_NE(m_stream.GetFileHandle(), nullptr);
    m_stream.Close();
    EXPECT_EQ(Contents(), "kept");
}
