#include "VekLib.h"

#include "support/DataKit.h"
#include "support/Files.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/TestStream.h"

#include <gtest/gtest.h>

#include <functional>

#include <windows.h>

namespace
{

using namespace std::string_literals;
using Writing = std::function<bool(CVekTypedDataWriter &)>;

constexpr GUID SOME_ID = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

struct HostStream final : TestStream
{
    bool knowsSize = true;
    unsigned int GetSize() const override { return knowsSize ? TestStream::GetSize() : 0xFFFFFFFF; }
};

constexpr char const * STREAMS[] = {"host", "host without size", "memory", "file", "file as text"};
constexpr int HOST = 0, MEMORY = 2, BINARY_FILE = 3;

/// Runs the work on a stream of that kind that holds the bytes; text files hold them as text.
template <class Work>
void WithBytes(int kind, std::string const & bytes, Work work, VEK_BYTEORDER order = VEK_BYTEORDER_BIG)
{
    SCOPED_TRACE(STREAMS[kind]);
    if (kind < MEMORY)
    {
        HostStream stream;
        stream.knowsSize = kind == HOST;
        stream.bytes = bytes;
        stream.streamOrder = order;
        return work(stream);
    }
    if (kind == MEMORY)
    {
        CVekMemoryIOStream stream;
        stream.SetStreamByteOrder(order);
        if (!bytes.empty())
        {
            ASSERT_TRUE(stream.Open(nullptr, VEK_IO_READ, static_cast<unsigned int>(bytes.size())));
            std::memcpy(stream.GetBuffer(), bytes.data(), bytes.size());
        }
        return work(stream);
    }
    unsigned int const mode = kind == BINARY_FILE ? VEK_IO_BINARY : VEK_IO_TEXT;
    std::wstring const path = TemporaryPath(L"typed.dat");
    CVekFileIOStream stream;
    stream.SetStreamByteOrder(order);
    ASSERT_TRUE(stream.Open(path.c_str(), VEK_IO_WRITE | mode, 0));
    stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()), true);
    ASSERT_TRUE(stream.Open(path.c_str(), VEK_IO_READ | mode, 0));
    work(stream);
}

/// What a writer gives on a stream of that kind.
std::string Written(int kind, CVekTypedDataWriter & writer, VEK_BYTEORDER order = VEK_BYTEORDER_BIG)
{
    SCOPED_TRACE(STREAMS[kind]);
    TestStream host;
    host.streamOrder = order;
    EXPECT_TRUE(writer.Write(&host));
    if (kind == MEMORY)
    {
        CVekMemoryIOStream stream; // of just the size that is needed
        stream.SetStreamByteOrder(order);
        stream.Open(nullptr, VEK_IO_WRITE, static_cast<unsigned int>(host.bytes.size()));
        EXPECT_TRUE(writer.Write(&stream));
        EXPECT_TRUE(stream.IsAtEnd());
        return {reinterpret_cast<char const *>(stream.GetBuffer()), host.bytes.size()};
    }
    if (kind == BINARY_FILE)
    {
        std::wstring const path = TemporaryPath(L"typed.dat");
        CVekFileIOStream stream;
        stream.SetStreamByteOrder(order);
        EXPECT_TRUE(stream.Open(path.c_str(), VEK_IO_WRITE | VEK_IO_BINARY, 0));
        EXPECT_TRUE(writer.Write(&stream));
        EXPECT_EQ(stream.GetPosition(), static_cast<int>(host.bytes.size()));
        stream.Close();
        return FileBytes(path);
    }
    return host.bytes;
}

std::string Again(CVekTypedDataReader const & reader)
{
    CVekTypedDataWriter writer;
    for (int i = 0; i < reader.GetNumEntries(); ++i)
        EXPECT_TRUE(CopyEntry(*reader.GetEntry(i), writer));
    return Written(HOST, writer);
}

struct Golden
{
    char const * name;
    Writing write;
    std::string value; // its bytes, type included
};

Golden const GOLDEN[] = {
    // clang-format off
    {"true", [](auto & w) { return w.WriteBool(L"n", true); }, "\x01\0\0\0\x01"s},
    {"false", [](auto & w) { return w.WriteBool(L"n", false); }, "\x01\0\0\0\0"s},
    {"byte", [](auto & w) { return w.WriteByte(L"n", 200); }, "\x02\0\0\0\xC8"s},
    {"char", [](auto & w) { return w.WriteChar(L"n", 'A'); }, "\x03\0\0\0A"s},
    {"wchar_t", [](auto & w) { return w.WriteWChar(L"n", L'\x20AC'); }, "\x04\0\0\0\xAC\x20"s},
    {"short", [](auto & w) { return w.WriteInt16(L"n", -2); }, "\x05\0\0\0\xFE\xFF"s},
    {"unsigned short", [](auto & w) { return w.WriteWord(L"n", 0x0102); }, "\x06\0\0\0\x02\x01"s},
    {"int", [](auto & w) { return w.WriteInt32(L"n", 0x01020304); }, "\x07\0\0\0\x04\x03\x02\x01"s},
    {"unsigned int", [](auto & w) { return w.WriteDWord(L"n", 0x81020304); }, "\x08\0\0\0\x04\x03\x02\x81"s},
    {"float", [](auto & w) { return w.WriteFloat(L"n", 1.0f); }, "\x09\0\0\0\0\0\x80\x3F"s},
    {"double", [](auto & w) { return w.WriteDouble(L"n", -1.5); }, "\x0A\0\0\0\0\0\0\0\0\0\xF8\xBF"s},
    {"text", [](auto & w) { return w.WriteString(L"n", "ab\xE9"); }, "\x0B\0\0\0\x03\0\0\0ab\xE9"s},
    {"null text", [](auto & w) { return w.WriteString(L"n", nullptr); }, "\x0B\0\0\0\0\0\0\0"s},
    {"wide text", [](auto & w) { return w.WriteWString(L"n", L"a\x20AC"); }, "\x0C\0\0\0\x02\0\0\0a\0\xAC\x20"s},
    {"text of 256", [](auto & w) { return w.WriteString(L"n", std::string(256, 'a').c_str()); },
     "\x0B\0\0\0\0\x01\0\0"s + std::string(256, 'a')},
    {"wide text of 255", [](auto & w) { return w.WriteWString(L"n", std::wstring(255, L'\x0101').c_str()); },
     "\x0C\0\0\0\xFF\0\0\0"s + std::string(510, '\x01')},
    {"wide text of 256", [](auto & w) { return w.WriteWString(L"n", std::wstring(256, L'\x0101').c_str()); },
     "\x0C\0\0\0\0\x01\0\0"s + std::string(512, '\x01')},
    {"colour", [](auto & w) { return w.WriteColor(L"n", CVekRGBA<unsigned char>(1, 2, 3, 255)); },
     "\x0D\0\0\0\x01\x02\x03\xFF"s},
    {"float colour", [](auto & w) { return w.WriteColor(L"n", CVekRGBA<float>(0, 1, 2, -1)); },
     "\x0E\0\0\0\0\0\0\0\0\0\x80\x3F\0\0\0\x40\0\0\x80\xBF"s},
    {"int vector", [](auto & w) { return w.WriteVector(L"n", CVekVector4D<int>(1, 2, 3, -1)); },
     "\x0F\0\0\0\x01\0\0\0\x02\0\0\0\x03\0\0\0\xFF\xFF\xFF\xFF"s},
    {"float vector", [](auto & w) { return w.WriteVector(L"n", CVekVector4D<float>(0, 1, 2, -1)); },
     "\x10\0\0\0\0\0\0\0\0\0\x80\x3F\0\0\0\x40\0\0\x80\xBF"s},
    {"double vector", [](auto & w) { return w.WriteVector(L"n", CVekVector4D<double>(1, 0, 0, 0)); },
     "\x11\0\0\0\0\0\0\0\0\0\xF0\x3F"s + std::string(24, '\0')},
    {"float matrix", [](auto & w) { auto m = CVekMatrix4x4<float>(); m(0, 1) = 1; return w.WriteMatrix(L"n", m); },
     "\x12\0\0\0\0\0\0\0\0\0\x80\x3F"s + std::string(56, '\0')},
    {"double matrix", [](auto & w) { auto m = CVekMatrix4x4<double>(); m(3, 3) = 1; return w.WriteMatrix(L"n", m); },
     "\x13\0\0\0"s + std::string(126, '\0') + "\xF0\x3F"s},
    {"kept: a GUID has no bytes", [](auto & w) { return w.WriteGUID(L"n", SOME_ID); }, "\x14\0\0\0"s},
    {"buffer", [](auto & w) { return w.WriteBuffer(L"n", reinterpret_cast<unsigned char const *>("x\0y"), 3); },
     "\x15\0\0\0\x03\0\0\0x\0y"s},
    {"buffer of one byte", [](auto & w) { return w.WriteBuffer(L"n", reinterpret_cast<unsigned char const *>("z"), 1); },
     "\x15\0\0\0\x01\0\0\0z"s},
    // clang-format on
};

constexpr VEK_BYTEORDER REVERSED = VEK_BYTEORDER_LITTLE; // the system's is left at the other one

/// A writer with one entry of each row.
void AddAll(CVekTypedDataWriter & writer)
{
    for (Golden const & row : GOLDEN)
        EXPECT_TRUE(row.write(writer)) << row.name;
}

TEST(TypedData, GoldenBytes)
{
    for (Golden const & row : GOLDEN)
    {
        SCOPED_TRACE(row.name);
        CVekTypedDataWriter writer;
        ASSERT_TRUE(row.write(writer));
        std::string const expected = "\x01\0\0\0\x01\0\0\0n\0"s + row.value;
        for (int const kind : {HOST, MEMORY, BINARY_FILE})
        {
            EXPECT_EQ(Written(kind, writer), expected);
            WithBytes(kind, expected,
                      [&](IVekIOStream & stream) { EXPECT_EQ(Again(CVekTypedDataReader(&stream)), expected); });
        }
    }
    CVekTypedDataWriter empty;
    EXPECT_EQ(Written(HOST, empty), "\0\0\0\0"s);
    // So much that the writer holds it in many pieces, one of them larger than others are.
    std::string const large(20000, 'b');
    CVekTypedDataWriter much;
    std::string all(4, '\0');
    for (int i = 0; i < 40; ++i)
    {
        for (Golden const & row : GOLDEN)
            all += row.write(much) ? "\x01\0\0\0n\0"s + row.value : "?";
        if (i == 20 && much.WriteString(L"n", large.c_str()))
            all += "\x01\0\0\0n\0\x0B\0\0\0\x20\x4E\0\0"s + large;
    }
    int const count = 40 * static_cast<int>(std::size(GOLDEN)) + 1;
    std::memcpy(all.data(), &count, sizeof count);
    for (int const kind : {HOST, MEMORY, BINARY_FILE})
    {
        EXPECT_TRUE(Written(kind, much) == all);
        WithBytes(
            kind, Written(kind, much, REVERSED),
            [&](IVekIOStream & stream) { EXPECT_TRUE(Again(CVekTypedDataReader(&stream)) == all); }, REVERSED);
    }
    CVekTypedDataWriter reversed;
    reversed.WriteInt32(L"\x20AC", 0x01020304);
    reversed.WriteWString(L"", L"a");
    std::string const expected = "\0\0\0\x02\0\0\0\x01\x20\xAC\0\0\0\x07\x01\x02\x03\x04"
                                 "\0\0\0\0\0\0\0\x0C\0\0\0\x01\0a"s;
    std::string const plain = Written(HOST, reversed);
    for (int const kind : {HOST, MEMORY, BINARY_FILE})
    {
        EXPECT_EQ(Written(kind, reversed, REVERSED), expected);
        auto const read = [&](IVekIOStream & stream)
        {
            EXPECT_EQ(Again(CVekTypedDataReader(&stream)), plain);
            EXPECT_EQ(stream.GetPosition(), static_cast<int>(expected.size())) << "what follows is not touched";
        };
        WithBytes(kind, expected + "rest", read, REVERSED);
    }
}

TEST(TypedData, EveryTruncationIsToldAndLeavesTheEntriesBeforeIt)
{
    CVekTypedDataWriter writer;
    AddAll(writer);
    std::string const whole = Written(HOST, writer);
    for (int kind = 0; kind < static_cast<int>(std::size(STREAMS)); ++kind)
    {
        // On the guard heap each costs much, and the memory stream tells most.
        std::size_t const step = VekGuard::Active && kind != MEMORY ? 11 : 1;
        for (std::size_t size = whole.size() % step; size <= whole.size() && !HasFailure(); size += step)
        {
            SCOPED_TRACE(size);
            WithBytes(kind, whole.substr(0, size),
                      [&](IVekIOStream & stream)
                      {
                          CVekTypedDataReader reader;
                          VekDataError error;
                          EXPECT_EQ(reader.Read(&stream, error), size == whole.size());
                          EXPECT_EQ(error.code == VEK_DATA_ERROR_NONE, size == whole.size());
                          EXPECT_TRUE(error.entry == -1 || error.entry == reader.GetNumEntries());
                          EXPECT_TRUE(kind != MEMORY || error.offset <= size);
                          std::string const got = Again(reader);
                          EXPECT_EQ(whole.compare(4, got.size() - 4, got, 4), 0);
                      });
        }
    }
}

TEST(TypedData, LyingStreams)
{
    std::string const good = "\x01\0\0\0n\0\x03\0\0\0A"s;
    std::string const head = "\x02\0\0\0"s + good;
    std::tuple<char const *, std::string, bool, int> const rows[] = {
        // is it read, and how many entries of it
        {"kept: a negative count is none", "\xFF\xFF\xFF\xFF"s, true, 0},
        {"count beyond the stream", "\xFF\xFF\xFF\x7F"s + good, false, 0},
        {"count of entries of 8 bytes", "\x02\0\0\0"s + good, false, 0},
        {"negative name length", head + "\xFF\xFF\xFF\xFF\x07\0\0\0"s, false, 1},
        {"name beyond the stream", head + "\xFF\xFF\xFF\x7F\x07\0\0\0"s, false, 1},
        {"text beyond the stream", head + "\0\0\0\0\x0B\0\0\0\xFE\xFF\xFF\x7F"s, false, 1},
        {"negative buffer size", head + "\0\0\0\0\x15\0\0\0\xFF\xFF\xFF\xFF"s, false, 1},
        {"buffer beyond the stream", head + "\0\0\0\0\x15\0\0\0\xFF\xFF\xFF\x7Fxy"s, false, 1},
        {"kept: type 0 has no bytes", head + "\0\0\0\0\0\0\0\0"s, true, 2},
        {"kept: type 22 has no bytes", head + "\0\0\0\0\x16\0\0\0"s, true, 2},
        {"type -1", head + "\0\0\0\0\xFF\xFF\xFF\xFF"s, true, 2},
        {"a zero ends a name and a text", head + "\x03\0\0\0a\0\0\0b\0\x0B\0\0\0\x03\0\0\0x\0y"s, true, 2},
    };
    for (auto const & [name, bytes, isRead, entries] : rows)
        for (int kind = 0; kind < static_cast<int>(std::size(STREAMS)); ++kind)
        {
            SCOPED_TRACE(name);
            auto const check = [&, isRead = isRead, entries = entries](IVekIOStream & stream)
            {
                CVekTypedDataReader reader;
                VekDataError error;
                EXPECT_EQ(reader.Read(&stream, error), isRead);
                bool const knowsSize = kind == HOST || kind == MEMORY || kind == BINARY_FILE;
                // All that is wrong here is a number, but a stream that can't tell its size just ends.
                EXPECT_EQ(error.code, isRead      ? VEK_DATA_ERROR_NONE
                                      : knowsSize ? VEK_DATA_ERROR_LENGTH
                                                  : std::max(error.code, VEK_DATA_ERROR_ENDS_EARLY));
                EXPECT_TRUE(!knowsSize || error.entry == (isRead || entries == 0 ? -1 : entries));
                EXPECT_TRUE(!knowsSize || reader.GetNumEntries() == entries);
                CVekString<char> text;
                EXPECT_TRUE(!reader.ReadString(L"A", text, "") || text.Compare("x") == 0);
            };
            WithBytes(kind, bytes, check);
        }
    CVekTypedDataReader reader;
    VekDataError error;
    EXPECT_TRUE(!reader.Read(nullptr, error) && error.code == VEK_DATA_ERROR_NO_STREAM);
    CVekFileIOStream closed;
    EXPECT_FALSE(reader.Read(&closed));
}

TEST(TypedData, RefusedWrites)
{
    CVekTypedDataWriter writer;
    AddAll(writer);
    EXPECT_FALSE(writer.WriteBuffer(L"n", reinterpret_cast<unsigned char const *>("x"), 0));
    EXPECT_FALSE(writer.WriteBuffer(L"n", nullptr, 5));
    EXPECT_FALSE(writer.Write(nullptr));
    TestStream probe;
    ASSERT_TRUE(writer.Write(&probe));
    for (unsigned int n = 1; n <= probe.transfers; ++n)
    {
        TestStream stream;
        stream.failFrom = n;
        EXPECT_FALSE(writer.Write(&stream)) << n;
        EXPECT_EQ(stream.transfers, n) << "nothing after a refused write";
        EXPECT_EQ(probe.bytes.compare(0, stream.bytes.size(), stream.bytes), 0) << n;
    }
    // A memory stream that is full after any byte, against what its own typed writes leave there.
    LogCapture log;
    CVekTypedDataWriter scalars, buffer;
    scalars.WriteInt32(L"ab", 7);
    scalars.WriteChar(L"", 'x');
    buffer.WriteBuffer(L"", reinterpret_cast<unsigned char const *>("12345"), 5);
    for (unsigned int size = 1; size <= 30; ++size)
    {
        SCOPED_TRACE(size);
        CVekMemoryIOStream stream, expected;
        stream.Open(nullptr, VEK_IO_WRITE, size);
        expected.Open(nullptr, VEK_IO_WRITE, size);
        std::memset(stream.GetBuffer(), 0xEE, size);
        std::memset(expected.GetBuffer(), 0xEE, size);
        for (int const value : {2, 2})
            expected.WriteInt32(value, true);
        expected.WriteWChar(L'a', true);
        expected.WriteWChar(L'b', true);
        for (int const value : {7, 7, 0, 3})
            expected.WriteInt32(value, true);
        expected.WriteChar('x', true);
        EXPECT_TRUE(scalars.Write(&stream)) << "kept: a full memory stream refuses no single value";
        EXPECT_EQ(std::memcmp(stream.GetBuffer(), expected.GetBuffer(), size), 0);
        EXPECT_EQ(stream.GetPosition(), expected.GetPosition());
        stream.Open(nullptr, VEK_IO_WRITE, size);
        EXPECT_EQ(buffer.Write(&stream), size >= 21) << "but a buffer";
    }
    EXPECT_EQ(log.Lines().size(), 20U);
}

TEST(TypedData, LookUps)
{
    CVekTypedDataWriter writer;
    AddAll(writer);
    writer.WriteInt32(L"Twice", 1);
    writer.WriteInt32(L"TWICE", 2);
    writer.WriteFloat(L"f", 2.5f);
    CVekMatrix4x4<float> numbered;
    numbered(2, 1) = 9;
    numbered(3, 3) = 15;
    writer.WriteMatrix(L"m", numbered);
    writer.WriteGUID(L"id", SOME_ID);
    writer.WriteBuffer(L"b", reinterpret_cast<unsigned char const *>("1234"), 4);
    writer.WriteWChar(L"\xE4", L'\x20AC');
    writer.WriteBool(nullptr, true);
    for (int const more : {0, 1000}) // short lists are searched, long ones have an index
    {
        SCOPED_TRACE(more);
        for (int i = 0; i < more; ++i)
            writer.WriteInt32((L"x" + std::to_wstring(i)).c_str(), i);
        TestStream stream;
        ASSERT_TRUE(writer.Write(&stream));
        stream.SetPosition(0, false);
        CVekTypedDataReader reader(&stream);
        int number = 0;
        EXPECT_TRUE(reader.ReadInt32(L"tWICE", number, 5) && number == 1) << "the first wins";
        EXPECT_TRUE(!reader.ReadInt32(L"f", number, 5) && number == 5) << "no conversion";
        unsigned int word = 0;
        EXPECT_TRUE(!reader.ReadDWord(L"Twice", word, 6) && word == 6) << "no conversion";
        EXPECT_TRUE(!reader.ReadInt32(L"Twic", number, 7) && number == 7);
        bool flag = false;
        EXPECT_TRUE(reader.ReadBool(L"", flag, false) && flag && reader.ReadBool(nullptr, flag, false));
        wchar_t unit = 0;
        EXPECT_TRUE(reader.ReadWChar(L"\xE4", unit, 0) && unit == L'\x20AC');
        EXPECT_FALSE(reader.ReadWChar(L"\xC4", unit, L'?')) << "only ASCII letters are folded";
        EXPECT_EQ(unit, L'?');
        GUID id = SOME_ID;
        EXPECT_TRUE(reader.ReadGUID(L"id", id, SOME_ID) && id.Data1 == 0) << "kept: no value";
        CVekString<wchar_t> text(L"old");
        EXPECT_TRUE(!reader.ReadWString(L"none", text, nullptr) && text.IsEmpty());
        unsigned char bytes[4] = {};
        EXPECT_TRUE(reader.ReadBuffer(L"B", bytes, 3) && bytes[2] == '3' && bytes[3] == 0);
        for (int const size : {0, 5, -1})
            EXPECT_FALSE(reader.ReadBuffer(L"B", bytes, size)) << size;
        CVekMatrix<float> matrix, square(4, 4);
        CVekMatrixMxN<float, 3, 3> fixed;
        EXPECT_FALSE(reader.ReadMatrix(L"none", matrix));
        EXPECT_TRUE(reader.ReadMatrix(L"m", matrix) && matrix.GetRows() == 4 && matrix(2, 1) == 9);
        EXPECT_TRUE(reader.ReadMatrix(L"m", square) && square(3, 3) == 15);
        EXPECT_FALSE(reader.ReadMatrix(L"m", fixed));
        for (int i = 0; i < more; ++i)
            EXPECT_TRUE(reader.ReadInt32((L"X" + std::to_wstring(i)).c_str(), number, -1) && number == i);
        int const before = reader.GetNumEntries();
        stream.SetPosition(0, false);
        EXPECT_TRUE(reader.Read(&stream) && reader.GetNumEntries() == 2 * before) << "adds to what is there";
        reader.Clear();
        EXPECT_TRUE(reader.GetNumEntries() == 0 && !reader.FindEntry(L"Twice"));
    }
}

// A stream may look back at the reader, as a progress display does; and reading and looking up take turns.
TEST(TypedData, LooksUpWhileReading)
{
    struct Asking final : TestStream
    {
        CVekTypedDataReader reader;
        bool Read(void * data, unsigned int count, bool advance) override
        {
            EXPECT_EQ(reader.FindEntry(L"none"), nullptr);
            return TestStream::Read(data, count, advance);
        }
    } stream;
    for (int round = 0; round < 3; ++round) // of 50 names each, the last 10 of which come again in the next round
    {
        CVekTypedDataWriter writer;
        for (int i = 40 * round; i < 40 * round + 50; ++i)
            writer.WriteInt32((L"x" + std::to_wstring(i)).c_str(), round);
        stream.bytes = Written(HOST, writer);
        stream.SetPosition(0, false);
        EXPECT_TRUE(stream.reader.Read(&stream));
        int number = -1;
        for (int i = 0; i < 40 * round + 50; ++i)
            EXPECT_TRUE(stream.reader.ReadInt32((L"X" + std::to_wstring(i)).c_str(), number, -1) &&
                        number == (i - 10) / 40)
                << "round " << round << ", name " << i;
    }
}

} // namespace

// Each typed read finds entries of its own type and takes the default for all others.
TEST(TypedData, TypedReadsAreExact)
{
    using Byte = unsigned char;
    using Word = unsigned short;
    using DWord = unsigned int;
    CVekTypedDataWriter writer;
    auto const check = [](int type, auto read, auto expected, auto other)
    {
        for (int entry = 1; entry <= 17; ++entry)
        {
            SCOPED_TRACE(testing::Message() << "read of type " << type << ", entry of type " << entry);
            decltype(other) value{};
            EXPECT_EQ(read(std::to_wstring(entry).c_str(), value, other), entry == type);
            EXPECT_TRUE(value == (entry == type ? expected : other));
        }
    };
    // clang-format off
#define FOR_EACH_TYPE(use)                                                                                             \
    use(1, Bool, bool, (true), (false)) use(2, Byte, Byte, (200), (9)) use(3, Char, char, ('c'), ('d'))                \
    use(4, WChar, wchar_t, (L'w'), (L'd')) use(5, Int16, short, (-5), (9)) use(6, Word, Word, (60000), (9))            \
    use(7, Int32, int, (-7), (9)) use(8, DWord, DWord, (4000000000u), (9))                                             \
    use(9, Float, float, (1.5f), (9)) use(10, Double, double, (2.5), (9))                                              \
    use(13, Color, CVekRGBA<Byte>, (1, 2, 3, 4), (9, 9, 9, 9))                                                         \
    use(14, Color, CVekRGBA<float>, (1, 2, 3, 4), (9, 9, 9, 9))                                                        \
    use(15, Vector, CVekVector4D<int>, (1, 2, 3, 4), (9, 9, 9, 9))                                                     \
    use(16, Vector, CVekVector4D<float>, (1, 2, 3, 4), (9, 9, 9, 9))                                                   \
    use(17, Vector, CVekVector4D<double>, (1, 2, 3, 4), (9, 9, 9, 9))
#define WRITE(type, name, T, value, other) writer.Write##name(L"" #type, T value);
#define CHECK(type, name, T, value, other)                                                                             \
    check(type, [&](auto n, auto & v, auto const & d) { return reader.Read##name(n, v, d); }, T value, T other);
    // clang-format on
    FOR_EACH_TYPE(WRITE)
    TestStream stream;
    ASSERT_TRUE(writer.Write(&stream));
    stream.SetPosition(0, false);
    CVekTypedDataReader const reader(&stream);
    FOR_EACH_TYPE(CHECK)
}
