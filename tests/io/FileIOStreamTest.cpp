#include "VekIO.h"

#include "io/StreamTable.h"
#include "support/Files.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <climits>
#include <cwchar>
#include <tuple>

#if defined(__i386__)
static_assert(sizeof(CVekFileIOStream) == 4 + 4 + 6 * 4);
#endif

namespace
{

constexpr unsigned int READ_BINARY = VEK_IO_READ | VEK_IO_BINARY;
constexpr unsigned int WRITE_BINARY = VEK_IO_WRITE | VEK_IO_BINARY;
constexpr wchar_t const * NAME = L"file stream.bin";

// A file of the test's own, removed at its end.
class FileIOStream : public testing::Test
{
protected:
    FileIOStream() { DeleteFileW(m_path.c_str()); }
    ~FileIOStream() override
    {
        m_stream.Close();
        DeleteFileW(m_path.c_str());
    }

    bool Open(unsigned int flags) { return m_stream.Open(m_path.c_str(), flags, 0); }
    static void Fill(std::string const & bytes) { WriteFileBytes(NAME, bytes); }
    std::string Contents() const { return FileBytes(m_path); }

    std::wstring m_path = TemporaryPath(NAME);
    std::wstring m_folder = m_path.substr(0, m_path.size() - std::wcslen(NAME)) + L".";
    CVekFileIOStream m_stream;
    LogCapture m_log;
};

} // namespace

TEST_F(FileIOStream, OpensInTheModeOfItsFlags)
{
    // What "a\n" becomes, null when it can't be written; the characters read of "a\r\nb", -1 when it doesn't open.
    std::tuple<unsigned int, char const *, int> const rows[] = {
        // clang-format off
        {8, nullptr, 3}, {8 | 1, nullptr, 4}, {8 | 2, nullptr, 3}, {8 | 1 | 4 | 32, nullptr, 4}, {16, "a\r\n", 0},
        {16 | 1, "a\n", 0}, {16 | 2, "a\r\n", 0}, {0, nullptr, -1}, {1, nullptr, -1}, {2, nullptr, -1},
        {4, nullptr, -1}, {8 | 16, nullptr, -1}, {0xFFFFFFFF, nullptr, -1},
        // clang-format on
    };
    for (auto const & [flags, written, readBack] : rows)
    {
        SCOPED_TRACE(flags);
        Fill("a\r\nb");
        bool const opens = readBack >= 0;
        EXPECT_EQ(Open(flags), opens);
        EXPECT_EQ(m_log.Take(), opens ? L"" : L"CVekFileIOStream::Open --> Failed to open file");
        EXPECT_EQ(m_stream.GetFileHandle() != nullptr, opens);
        EXPECT_EQ(m_stream.IsReadable(), (flags & 8) != 0);
        EXPECT_EQ(m_stream.IsWritable(), (flags & 16) != 0);
        if (!opens)
            continue;
        EXPECT_EQ(m_stream.Write("a\n", 2, true), written != nullptr);
        EXPECT_TRUE(m_stream.WriteByte('~', false)) << "true always";
        int count = 0;
        while (!m_stream.IsAtEnd() && m_stream.IsReadable())
            count += m_stream.ReadChar(true) != 0;
        EXPECT_EQ(count, readBack);
        EXPECT_EQ(m_stream.ReadInt32(true), 0);
        EXPECT_EQ(m_stream.Flush(), written != nullptr);
        m_stream.Close();
        EXPECT_EQ(Contents(), written ? std::string(written) + "~" : "a\r\nb");
    }
    // Kept: both words about the text are asked for, and the runtime decides.
    EXPECT_TRUE(Open(8 | 1 | 2) && !m_stream.IsBinary());
    EXPECT_TRUE(Open(16 | 1 | 2) && !m_stream.IsBinary());
}

TEST_F(FileIOStream, OpenReportsWhatIsWrong)
{
    wchar_t const * const failed = L"Failed to open file";
    std::wstring const missing = m_folder + L"/no such folder/file";
    std::wstring const tooLong = m_folder + L"/" + std::wstring(40000, L'x');
    std::tuple<char const *, wchar_t const *, unsigned int, wchar_t const *, unsigned int> const rows[] = {
        {"no name", nullptr, READ_BINARY, L"Filename is NULL", 0},
        {"an empty name", L"", READ_BINARY, L"Filename has no character", 0},
        {"a file that is not there", m_path.c_str(), READ_BINARY, failed, ERROR_FILE_NOT_FOUND},
        {"a folder that is not there", missing.c_str(), WRITE_BINARY, failed, ERROR_PATH_NOT_FOUND},
        {"a folder, reading", m_folder.c_str(), READ_BINARY, failed, ERROR_ACCESS_DENIED},
        {"a folder, writing", m_folder.c_str(), WRITE_BINARY, failed, ERROR_ACCESS_DENIED},
        {"a name without end", tooLong.c_str(), READ_BINARY, failed, ERROR_PATH_NOT_FOUND},
        {"characters that no name has", L"a?b*c|d", WRITE_BINARY, failed, ERROR_INVALID_NAME},
        {"no mode", m_path.c_str(), 0, failed, 0},
    };
    std::wstring const other = m_path + L".open";
    for (auto const & [name, path, flags, message, systemCode] : rows)
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(m_stream.Open(other.c_str(), WRITE_BINARY, 0));
        EXPECT_EQ(m_stream.GetError().operation, VEK_IO_OPERATION_NONE);
        EXPECT_FALSE(m_stream.Open(path, flags, 0));
        EXPECT_EQ(m_stream.GetError().operation, VEK_IO_OPERATION_OPEN);
        EXPECT_EQ(m_stream.GetError().systemCode, systemCode);
        EXPECT_EQ(m_log.Take(), std::wstring(L"CVekFileIOStream::Open --> ") + message);
        EXPECT_EQ(m_stream.GetFileHandle(), nullptr) << "closed first";
        EXPECT_EQ(std::wstring(m_stream.GetFilePath()), other);
        EXPECT_NE(DeleteFileW(other.c_str()), 0) << "closed first";
    }
}

TEST_F(FileIOStream, KnowsItsPathAndName)
{
    for (wchar_t const * separator : {L"/", L"\\", L"\\/"})
    {
        std::wstring const path = m_folder + separator + NAME;
        ASSERT_TRUE(m_stream.Open(path.c_str(), WRITE_BINARY, 0));
        EXPECT_EQ(std::wstring(m_stream.GetFilePath()), path);
        EXPECT_EQ(std::wstring(m_stream.GetFileName()), NAME);
    }
    ASSERT_TRUE(m_stream.Open(m_stream.GetFilePath(), READ_BINARY, 0)) << "its own path again";
    m_stream.Close();
    EXPECT_EQ(std::wstring(m_stream.GetFileName()), NAME) << "closing keeps it";

    auto * const open = new CVekFileIOStream;
    EXPECT_TRUE(open->Open(m_path.c_str(), READ_BINARY, 0));
    EXPECT_EQ(open->Release(), 0u);
    EXPECT_NE(DeleteFileW(m_path.c_str()), 0) << "the last Release closes the file";
}

TEST_F(FileIOStream, MessagesWithoutFile)
{
    ASSERT_TRUE(Open(WRITE_BINARY));
    m_stream.Close();
    m_stream.Close();
    for (OperationWithoutStream const & operation : OPERATIONS_WITHOUT_STREAM)
    {
        SCOPED_TRACE(operation.name);
        EXPECT_FALSE(operation.call(m_stream));
        EXPECT_EQ(m_log.Take(), Message(L"CVekFileIOStream::", operation.file, L" --> File is not opened"));
    }
    EXPECT_TRUE(m_stream.GetSize() == 0 && m_stream.GetPosition() == 0);
    std::wstring const message = L"CVekFileIOStream::GetSize --> File is not opened";
    EXPECT_EQ(m_log.Take(), message + L"\n" + message) << "kept: GetPosition names GetSize";
    EXPECT_FALSE(m_stream.SetPosition(0, false) || m_stream.Flush());
    EXPECT_EQ(m_log.Take(), L"");
}

TEST_F(FileIOStream, TypedValuesAndText)
{
    IVekFileIOStream * const stream = &m_stream;
    ExpectByteOrders(*stream);
    for (bool const reversed : {false, true})
    {
        SCOPED_TRACE(reversed);
        EXPECT_TRUE(Open(WRITE_BINARY));
        stream->SetSystemByteOrder(reversed ? VEK_BYTEORDER_LITTLE : VEK_BYTEORDER_BIG);
        std::string const expected = WriteTypedValues(stream, reversed);
        EXPECT_EQ(stream->GetSize(), expected.size());
        stream->Close();
        EXPECT_EQ(Contents(), expected);
        EXPECT_TRUE(Open(READ_BINARY));
        ReadTypedValues(stream);
    }
    stream->SetSystemByteOrder(VEK_BYTEORDER_BIG);
    EXPECT_TRUE(Open(WRITE_BINARY) && stream->Printf(L"%s %d", L"ab", 12));
    stream->Close();
    EXPECT_EQ(Contents(), std::string("a\0b\0 \0001\0002\0", 10));

    Fill("12 word\1");
    int number = 0;
    char word[5] = "";
    EXPECT_TRUE(Open(READ_BINARY) && stream->Scanf("%d %4s", &number, word, 5u));
    EXPECT_TRUE(number == 12 && std::string(word) == "word");
    EXPECT_EQ(stream->GetPosition(), 7);
    EXPECT_EQ(stream->ReadByte(true), 1);
    EXPECT_EQ(CallSlot<_iobuf *>(stream, 46), m_stream.GetFileHandle());

    Fill(std::string("7\0 \0", 4));
    EXPECT_TRUE(Open(READ_BINARY) && stream->Scanf(L"%d", &number));
    EXPECT_EQ(number, 7);
}

TEST_F(FileIOStream, Positions)
{
    // from the Start, from the End, Move; the position afterwards, which was 3; whether it is refused
    std::tuple<char const *, char, int, int, char const *> const rows[] = {
        // clang-format off
        {"start", 'S', 0, 0, nullptr}, {"middle", 'S', 5, 5, nullptr}, {"end", 'S', 10, 10, nullptr},
        {"beyond the end", 'S', 15, 15, nullptr}, {"far", 'S', INT_MAX, INT_MAX, nullptr},
        {"before the start", 'S', -1, 3, "refused"}, {"the end", 'E', 0, 10, nullptr},
        {"before the end", 'E', 4, 6, nullptr}, {"start from the end", 'E', 10, 0, nullptr},
        {"too far before the end", 'E', 11, 3, "refused"}, {"beyond from the end", 'E', -3, 13, nullptr},
        {"forth", 'M', 4, 7, nullptr}, {"back", 'M', -3, 0, nullptr}, {"too far back", 'M', -4, 3, "refused"},
        {"nowhere", 'M', 0, 3, nullptr}, {"very far back", 'M', INT_MIN, 3, "refused"},
        // clang-format on
    };
    Fill("0123456789");
    ASSERT_TRUE(Open(READ_BINARY));
    for (auto const & [name, operation, argument, after, refused] : rows)
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(m_stream.SetPosition(1, false) && m_stream.ReadWord(true) != 0); // the runtime has read on
        bool const moved =
            operation == 'M' ? m_stream.MovePosition(argument) : m_stream.SetPosition(argument, operation == 'E');
        EXPECT_EQ(moved, refused == nullptr);
        EXPECT_EQ(m_stream.GetPosition(), after);
        EXPECT_EQ(m_stream.GetSize(), 10u);
        EXPECT_EQ(m_stream.GetPosition(), after) << "GetSize comes back";
        EXPECT_EQ(m_stream.IsAtEnd(), after >= 10);
        EXPECT_EQ(m_stream.ReadByte(false), after < 10 ? '0' + after : 0);
        EXPECT_EQ(m_stream.GetPosition(), after);
    }
    ASSERT_TRUE(Open(WRITE_BINARY));
    EXPECT_TRUE(m_stream.IsAtEnd());
    EXPECT_TRUE(m_stream.Write("abcdef", 6, true) && m_stream.IsAtEnd());
    EXPECT_EQ(m_stream.GetSize(), 6u);
    EXPECT_TRUE(m_stream.SetPosition(2, false) && !m_stream.IsAtEnd());
    EXPECT_TRUE(m_stream.Write("XY", 2, false) && m_stream.Write("Z", 1, true));
    EXPECT_FALSE(m_stream.MovePosition(-4) || m_stream.SetPosition(-1, false) || m_stream.SetPosition(7, true));
    EXPECT_EQ(m_stream.GetPosition(), 3);
    m_stream.Close();
    EXPECT_EQ(Contents(), "abZYef");
}

TEST_F(FileIOStream, BlocksAreWholeOrRefused)
{
    std::tuple<char const *, int, unsigned int, bool, bool, int, char const *> const rows[] = {
        // clang-format off
        {"all of it", 0, 10, true, true, 10, "0123456789"}, {"a part", 3, 4, true, true, 7, "3456"},
        {"a look", 3, 4, false, true, 3, "3456"}, {"nothing", 3, 0, true, true, 3, ""},
        {"too much", 6, 5, true, false, 10, "6789"}, {"a look at too much", 6, 5, false, false, 6, "6789"},
        {"at the end", 10, 1, true, false, 10, ""},
        // clang-format on
    };
    Fill("0123456789");
    ASSERT_TRUE(Open(READ_BINARY));
    for (auto const & [name, before, count, advance, whole, after, expected] : rows)
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(m_stream.SetPosition(before, false));
        char data[16] = {};
        EXPECT_EQ(m_stream.Read(data, count, advance), whole);
        EXPECT_EQ(std::string(data), expected);
        EXPECT_EQ(m_stream.GetPosition(), after);
    }
    EXPECT_FALSE(m_stream.Read(nullptr, 1, true));
    ASSERT_TRUE(m_stream.SetPosition(7, false));
    EXPECT_EQ(m_stream.ReadInt32(false), 0) << "not wholly there";
    EXPECT_TRUE(m_stream.GetPosition() == 7 && m_stream.ReadChar(true) == '7');
    EXPECT_EQ(m_stream.ReadQWord(true), 0u);
    EXPECT_TRUE(m_stream.IsAtEnd() && m_stream.ReadChar(true) == 0);
    EXPECT_EQ(m_log.Text(), L"");
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
    EXPECT_EQ(m_stream.GetError().operation, VEK_IO_OPERATION_WRITE);
    EXPECT_TRUE(m_stream.GetError().systemCode == ERROR_BROKEN_PIPE || m_stream.GetError().systemCode == ERROR_NO_DATA);
    Fill("ab");
    char bytes[4];
    ASSERT_TRUE(Open(READ_BINARY) && m_stream.GetError().operation == VEK_IO_OPERATION_NONE);
    EXPECT_TRUE(!m_stream.Read(bytes, 4, true) && m_stream.GetError().operation == VEK_IO_OPERATION_READ);
    EXPECT_TRUE(!m_stream.SetPosition(-1, false) && m_stream.GetError().operation == VEK_IO_OPERATION_MOVE);
    EXPECT_TRUE(!m_stream.Write(bytes, 1, true) && m_stream.GetError().operation == VEK_IO_OPERATION_WRITE);
    EXPECT_EQ(m_stream.GetError().systemCode, 0u) << "the system has nothing against it";
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
