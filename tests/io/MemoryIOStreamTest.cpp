#include "VekIO.h"

#include "io/StreamTable.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

static_assert(VEK_BYTEORDER_BIG == 1 && VEK_BYTEORDER_LITTLE == 2);
static_assert(VEK_IO_BINARY == 1 && VEK_IO_TEXT == 2 && VEK_IO_READ == 8 && VEK_IO_WRITE == 16);
#if defined(__i386__)
static_assert(sizeof(CVekMemoryIOStream) == 4 + 4 + 6 * 4);
#endif

namespace
{

// An open stream of that size, filled with dots.
struct OpenStream
{
    CVekMemoryIOStream stream;

    explicit OpenStream(unsigned int size)
    {
        EXPECT_TRUE(stream.Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, size));
        std::memset(stream.GetBuffer(), '.', size);
    }
    std::string Bytes() const { return {reinterpret_cast<char const *>(stream.GetBuffer()), stream.GetSize()}; }
    void Fill(std::string const & bytes) { std::memcpy(stream.GetBuffer(), bytes.data(), bytes.size()); }
    void MoveTo(int position)
    {
        ASSERT_TRUE(stream.SetPosition(0, true));
        int const size = stream.GetPosition();
        ASSERT_TRUE(position > size ? stream.SetPosition(position, false) : stream.MovePosition(position - size));
    }
};

} // namespace

TEST(MemoryIOStream, OpensAndCloses)
{
    LogCapture log;
    CVekMemoryIOStream stream;
    EXPECT_TRUE(stream.Open(L"ignored", VEK_IO_READ, 8));
    EXPECT_TRUE(stream.IsReadable() && !stream.IsWritable() && stream.GetSize() == 8);
    EXPECT_TRUE(stream.SetPosition(3, true));
    stream.Close();
    EXPECT_EQ(stream.GetBuffer(), nullptr);
    EXPECT_TRUE(stream.GetSize() == 8 && stream.GetPosition() == 5) << "kept: closing keeps size and position";
    stream.Close();

    EXPECT_TRUE(stream.Open(nullptr, VEK_IO_WRITE, 4));
    EXPECT_TRUE(!stream.IsReadable() && stream.IsWritable() && stream.GetPosition() == 0);
    EXPECT_EQ(log.Take(), L"");
    EXPECT_FALSE(stream.Open(nullptr, VEK_IO_READ, 0));
    EXPECT_EQ(log.Take(), L"CVekMemoryIOStream::Open --> invalid size is specified for open");
    EXPECT_EQ(stream.GetBuffer(), nullptr) << "closed first";
    EXPECT_TRUE(stream.IsReadable()) << "the flags are stored first";
    EXPECT_FALSE(stream.Open(nullptr, 0, 0x80000000u));
    EXPECT_EQ(log.Take(), L"CVekMemoryIOStream::Open --> Memory allocation error -2147483648 bytes");
}

TEST(MemoryIOStream, Positions)
{
    wchar_t const * const negative = L"SetPosition --> Invalid position specified. Position will be negative";
    wchar_t const * const overflow = L"SetPosition --> Invalid position specified. Overflow";
    wchar_t const * const moveNegative = L"MovePosition --> Offset invalid, position will become negative";
    wchar_t const * const moveOverflow = L"MovePosition --> Offset invalid, overflow";
    // from the Start, from the End, Move; the position afterwards, or the message
    std::tuple<char const *, int, char, int, int, wchar_t const *> const rows[] = {
        // clang-format off
        {"kept: the start can't be reached from the start", 3, 'S', 0, 3, overflow},
        {"kept: nor anything before the end", 3, 'S', 7, 3, overflow},
        {"kept: nor a negative position", 3, 'S', -1, 3, overflow}, {"the end", 3, 'S', 8, 8, nullptr},
        {"kept: and beyond it", 3, 'S', 1000, 1000, nullptr}, {"as far as can be", 3, 'S', INT_MAX, INT_MAX, nullptr},
        {"the end from the end", 3, 'E', 0, 8, nullptr}, {"the start from the end", 3, 'E', 8, 0, nullptr},
        {"before the start from the end", 3, 'E', 9, 3, negative},
        {"beyond the end from the end", 3, 'E', -2, 10, nullptr},
        {"too far beyond the end", 3, 'E', INT_MIN, 3, negative},
        {"too far before the start", 3, 'E', INT_MAX, 3, negative}, {"back", 8, 'M', -8, 0, nullptr},
        {"forth to the end", 3, 'M', 5, 8, nullptr}, {"before the start", 3, 'M', -4, 3, moveNegative},
        {"beyond the end", 3, 'M', 6, 3, moveOverflow}, {"far beyond the end", 3, 'M', INT_MAX, 3, moveOverflow},
        {"far before the start", 3, 'M', INT_MIN, 3, moveNegative},
        // clang-format on
    };
    for (auto const & [name, before, operation, argument, after, message] : rows)
    {
        SCOPED_TRACE(name);
        OpenStream open(8);
        open.MoveTo(before);
        LogCapture log;
        bool const moved =
            operation == 'M' ? open.stream.MovePosition(argument) : open.stream.SetPosition(argument, operation == 'E');
        EXPECT_EQ(moved, message == nullptr);
        EXPECT_EQ(open.stream.GetPosition(), after);
        EXPECT_EQ(open.stream.IsAtEnd(), after == 8);
        EXPECT_EQ(log.Text(), Message(L"CVekMemoryIOStream::", message, L""));
    }
}

TEST(MemoryIOStream, Blocks)
{
    std::wstring const prefix = L"CVekMemoryIOStream::", overflow = L" --> Invalid size. Overflow";
    std::wstring const backwards = prefix + L"SetPosition --> Invalid position specified. Overflow";
    std::tuple<char const *, int, unsigned int, bool, bool, int> const rows[] = {
        // clang-format off
        {"all but the last byte", 0, 7, true, true, 7}, {"kept: never the last byte", 0, 8, true, false, 0},
        {"kept: not from the middle either", 5, 3, true, false, 5}, {"nothing", 3, 0, true, true, 3},
        {"kept: not even nothing at the end", 8, 0, true, false, 8}, {"beyond the end", 100, 1, true, false, 100},
        {"a length that wraps", 4, 0xFFFFFFFFu, true, false, 4},
        {"a length that wraps to the start", 4, 0xFFFFFFFCu, true, false, 4},
        {"kept: without advance the position moves and a message appears", 2, 3, false, true, 5},
        {"kept: for nothing too", 2, 0, false, true, 2}, {"refused without advance", 2, 6, false, false, 2},
        // clang-format on
    };
    for (auto const & [name, before, count, advance, done, after] : rows)
    {
        SCOPED_TRACE(name);
        OpenStream open(8);
        open.Fill("01234567");
        open.MoveTo(before);
        LogCapture log;
        char data[8] = {};
        auto const place = static_cast<std::size_t>(before);
        EXPECT_EQ(open.stream.Read(data, count, advance), done);
        EXPECT_EQ(open.stream.GetPosition(), after);
        EXPECT_EQ(std::string(data), done ? std::string("01234567").substr(place, count) : "");
        EXPECT_EQ(log.Take(), !done ? prefix + L"Read" + overflow : advance ? std::wstring() : backwards);

        open.MoveTo(before);
        EXPECT_EQ(open.stream.Write("abcdefgh", count, advance), done);
        EXPECT_EQ(open.stream.GetPosition(), after);
        std::string expected = "01234567";
        if (done)
            expected.replace(place, count, "abcdefgh", count);
        EXPECT_EQ(open.Bytes(), expected);
        EXPECT_EQ(log.Take(), !done ? prefix + L"Write" + overflow : advance ? std::wstring() : backwards);
        EXPECT_FALSE(open.stream.Read(nullptr, 1, true) || open.stream.Write(nullptr, 1, true));
        EXPECT_EQ(open.stream.GetPosition(), after);
    }
}

template <class Value, class Argument>
void ExpectInsideTheBlock(bool (IVekIOStream::*write)(Argument, bool), Value (IVekIOStream::*read)(bool))
{
    constexpr int size = sizeof(Value);
    auto const value = static_cast<Argument>(0x5D5D5D5D5D5D5D5D);
    SCOPED_TRACE(testing::Message() << size << " bytes");
    OpenStream open(11);
    std::string const dots(11, '.');
    for (int const position : {11 - size + 1, 11, 12, 5000, INT_MAX})
    {
        SCOPED_TRACE(position);
        open.MoveTo(position);
        EXPECT_TRUE((open.stream.*write)(value, true)) << "true always";
        EXPECT_EQ((open.stream.*read)(true), Value{});
        EXPECT_EQ(open.stream.GetPosition(), position);
        EXPECT_EQ(open.Bytes(), dots);
    }
    open.MoveTo(11 - size);
    EXPECT_TRUE((open.stream.*write)(value, true));
    EXPECT_TRUE(open.stream.IsAtEnd()) << "one that ends at the end fits";
    EXPECT_NE(open.Bytes(), dots);
}

TEST(MemoryIOStream, SingleValuesStayInsideTheBlock)
{
    ExpectInsideTheBlock(&IVekIOStream::WriteByte, &IVekIOStream::ReadByte);
    ExpectInsideTheBlock(&IVekIOStream::WriteWChar, &IVekIOStream::ReadWChar);
    ExpectInsideTheBlock(&IVekIOStream::WriteInt32, &IVekIOStream::ReadInt32);
    ExpectInsideTheBlock(&IVekIOStream::WriteDouble, &IVekIOStream::ReadDouble);
}

TEST(MemoryIOStream, MessagesWithoutBlock)
{
    LogCapture log;
    OpenStream closed(16);
    closed.stream.Close();
    for (OperationWithoutStream const & operation : OPERATIONS_WITHOUT_STREAM)
    {
        SCOPED_TRACE(operation.name);
        EXPECT_FALSE(operation.call(closed.stream));
        EXPECT_EQ(log.Take(), Message(L"CVekMemoryIOStream::", operation.memory, L" --> Buffer is not allocated"));
    }
}

TEST(MemoryIOStream, TypedValues)
{
    OpenStream open(80);
    IVekMemoryIOStream * const stream = &open.stream;
    ExpectByteOrders(*stream);
    for (bool const reversed : {false, true})
    {
        SCOPED_TRACE(reversed);
        EXPECT_TRUE(stream->SetPosition(80, true));
        stream->SetStreamByteOrder(reversed ? VEK_BYTEORDER_LITTLE : VEK_BYTEORDER_BIG);
        std::string const expected = WriteTypedValues(stream, reversed);
        EXPECT_EQ(open.Bytes().substr(0, expected.size()), expected);
        EXPECT_EQ(stream->GetPosition(), static_cast<int>(expected.size()));
        EXPECT_TRUE(stream->SetPosition(80, true));
        ReadTypedValues(stream);
    }
    EXPECT_EQ(CallSlot<unsigned char *>(stream, 46), stream->GetBuffer());
    EXPECT_NE(stream->GetBuffer(), nullptr);
}

TEST(MemoryIOStream, Printf)
{
    // the block of 8 dots afterwards, narrow and wide, with '0' for a zero byte; null: refused
    std::tuple<char const *, int, char const *, char const *, char const *> const rows[] = {
        // clang-format off
        {"nothing writes a terminator", 2, "", "..0.....", "..00...."},
        {"the terminator just fits", 0, "abc", "abc0....", "a0b0c000"},
        {"exactly the remaining length in wide characters", 0, "abcd", "abcd0...", "a0b0c0d0"},
        {"the same in the middle", 4, "cd", "....cd0.", "....c0d0"},
        {"one wide character too long", 4, "cde", "....cde0", nullptr},
        {"exactly the remaining length", 4, "cdef", "....cdef", nullptr},
        {"one too long", 4, "cdefg", nullptr, nullptr},
        {"an odd position leaves no room for a wide terminator", 3, "ab", "...ab0..", "...a0b0."},
        {"nothing at the end", 8, "", "........", "........"}, {"something at the end", 8, "a", nullptr, nullptr},
        {"beyond the end", 50, "", nullptr, nullptr},
        // clang-format on
    };
    for (auto const & [name, before, text, narrowBlock, wideBlock] : rows)
        for (bool const wide : {false, true})
        {
            SCOPED_TRACE(testing::Message() << name << (wide ? ", wide" : ", narrow"));
            OpenStream open(8);
            open.MoveTo(before);
            char const * const expected = wide ? wideBlock : narrowBlock;
            int const length = static_cast<int>(std::strlen(text)) * (wide ? 2 : 1);
            LogCapture log;
            EXPECT_EQ(wide ? open.stream.Printf(L"%S", text) : open.stream.Printf("%s", text), expected != nullptr);
            EXPECT_EQ(log.Take(), expected ? L"" : L"CVekMemoryIOStream::Printf --> Size too big");
            EXPECT_EQ(open.stream.GetPosition(), expected ? before + length : before);
            std::string bytes = open.Bytes();
            for (char & byte : bytes)
                byte = byte ? byte : '0';
            EXPECT_EQ(bytes, expected ? expected : "........");
        }
    OpenStream open(8);
    EXPECT_FALSE(open.stream.Printf(static_cast<char const *>(nullptr)));
    EXPECT_FALSE(open.stream.Printf(static_cast<wchar_t const *>(nullptr)));
}

TEST(MemoryIOStream, KeptScanfReadsFromTheStart)
{
    OpenStream open(12);
    open.Fill("12 34 567890"); // no terminator in the block
    open.MoveTo(6);
    int a = 0, b = 0, c = 0;
    EXPECT_TRUE(open.stream.Scanf("%d %d %d", &a, &b, &c));
    EXPECT_TRUE(a == 12 && b == 34 && c == 567890) << "from the start, bounded by the block: " << a << b << c;
    EXPECT_EQ(open.stream.GetPosition(), 6);

    char word[4] = "";
    float number = 0;
    EXPECT_TRUE(open.stream.Scanf("%*d %3[0-9] %f", word, 4u, &number));
    EXPECT_EQ(std::string(word), "34");
    EXPECT_EQ(number, 567890.0f);
    EXPECT_TRUE(open.stream.Scanf("nothing of that %d", &a)) << "true whatever was found";
    EXPECT_EQ(a, 12);
    EXPECT_FALSE(open.stream.Scanf(static_cast<char const *>(nullptr)));

    open.Fill(std::string("7\0 \0w\0x\0y\0z\0", 12));
    wchar_t text[5] = L"";
    EXPECT_TRUE(open.stream.Scanf(L"%d%s", &a, text, 5u));
    EXPECT_EQ(a, 7);
    EXPECT_EQ(std::wstring(text), L"wxyz");

    OpenStream odd(1);
    odd.stream.WriteChar('5', false);
    EXPECT_TRUE(odd.stream.Scanf("%d", &a));
    EXPECT_EQ(a, 5);
    EXPECT_TRUE(odd.stream.Scanf(L"%d", &b)) << "no whole wide character";
    EXPECT_EQ(b, 34);
}
