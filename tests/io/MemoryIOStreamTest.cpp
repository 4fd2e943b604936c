#include "VekIO.h"

#include "io/StreamTable.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"

#include <gtest/gtest.h>

#include <climits>

static_assert(VEK_BYTEORDER_BIG == 1 && VEK_BYTEORDER_LITTLE == 2);
static_assert(VEK_IO_BINARY == 1 && VEK_IO_TEXT == 2 && VEK_IO_READ == 8 && VEK_IO_WRITE == 16);
#if defined(__i386__)
static_assert(sizeof(CVekMemoryIOStream) == 4 + 4 + 6 * 4);
#endif

namespace
{

// An open stream of that size, filled with zeros, at its start.
struct OpenStream
{
    CVekMemoryIOStream stream;

    explicit OpenStream(unsigned int size)
    {
        EXPECT_TRUE(stream.Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, size));
        std::memset(stream.GetBuffer(), 0, size);
    }
    std::string Bytes() const { return {reinterpret_cast<char const *>(stream.GetBuffer()), stream.GetSize()}; }
    void MoveTo(int position)
    {
        ASSERT_TRUE(stream.SetPosition(0, true));
        ASSERT_TRUE(stream.MovePosition(position - stream.GetPosition()));
    }
};

} // namespace

TEST(MemoryIOStream, KeepsTheRefCountContract)
{
    ExpectRefCountContract("memory stream", new CVekMemoryIOStream);
}

TEST(MemoryIOStream, OpensAndCloses)
{
    LogCapture log;
    CVekMemoryIOStream stream;
    EXPECT_EQ(stream.GetBuffer(), nullptr);
    EXPECT_EQ(stream.GetSize(), 0u);
    EXPECT_EQ(stream.GetPosition(), 0);
    EXPECT_FALSE(stream.IsReadable() || stream.IsWritable());

    EXPECT_TRUE(stream.Open(L"ignored", VEK_IO_READ, 8));
    EXPECT_TRUE(stream.IsReadable() && !stream.IsWritable());
    EXPECT_EQ(stream.GetSize(), 8u);
    EXPECT_TRUE(stream.SetPosition(3, true));
    stream.Close();
    EXPECT_EQ(stream.GetBuffer(), nullptr);
    EXPECT_EQ(stream.GetSize(), 8u) << "kept: closing keeps size and position";
    EXPECT_EQ(stream.GetPosition(), 5);
    stream.Close();

    EXPECT_TRUE(stream.Open(nullptr, VEK_IO_WRITE, 4));
    EXPECT_TRUE(!stream.IsReadable() && stream.IsWritable());
    EXPECT_EQ(stream.GetPosition(), 0);
    EXPECT_EQ(log.Take(), L"");
    EXPECT_FALSE(stream.Open(nullptr, VEK_IO_READ, 0));
    EXPECT_EQ(log.Take(), L"CVekMemoryIOStream::Open --> invalid size is specified for open");
    EXPECT_EQ(stream.GetBuffer(), nullptr) << "closed first";
    EXPECT_TRUE(stream.IsReadable()) << "the flags are stored first";
    EXPECT_FALSE(stream.Open(nullptr, 0, 0x80000000u));
    EXPECT_EQ(log.Take(), L"CVekMemoryIOStream::Open --> Memory allocation error -2147483648 bytes");
    if (VekGuard::Active)
    {
        VekGuard::FailAllocation(1);
        EXPECT_FALSE(stream.Open(nullptr, 0, 100));
        EXPECT_TRUE(VekGuard::FailReset());
        EXPECT_EQ(log.Take(), L"CVekMemoryIOStream::Open --> Memory allocation error 100 bytes");
    }
}

TEST(MemoryIOStream, Positions)
{
    struct Row
    {
        char const * name;
        int before;
        char operation; // S from the start, E from the end, M by an offset
        int argument;
        int after; // -1: refused
        wchar_t const * message;
    };
    wchar_t const * const negative =
        L"CVekMemoryIOStream::SetPosition --> Invalid position specified. Position will be negative";
    wchar_t const * const overflow = L"CVekMemoryIOStream::SetPosition --> Invalid position specified. Overflow";
    wchar_t const * const moveNegative =
        L"CVekMemoryIOStream::MovePosition --> Offset invalid, position will become negative";
    wchar_t const * const moveOverflow = L"CVekMemoryIOStream::MovePosition --> Offset invalid, overflow";
    Row const rows[] = {
        {"kept: the start can't be reached from the start", 3, 'S', 0, -1, overflow},
        {"kept: nor anything before the end", 3, 'S', 7, -1, overflow},
        {"kept: nor a negative position", 3, 'S', -1, -1, overflow},
        {"the end", 3, 'S', 8, 8, L""},
        {"kept: and beyond it", 3, 'S', 1000, 1000, L""},
        {"as far as can be", 3, 'S', INT_MAX, INT_MAX, L""},
        {"the end from the end", 3, 'E', 0, 8, L""},
        {"the start from the end", 3, 'E', 8, 0, L""},
        {"before the start from the end", 3, 'E', 9, -1, negative},
        {"beyond the end from the end", 3, 'E', -2, 10, L""},
        {"too far beyond the end", 3, 'E', INT_MIN, -1, negative},
        {"too far before the start", 3, 'E', INT_MAX, -1, negative},
        {"back", 8, 'M', -8, 0, L""},
        {"forth to the end", 3, 'M', 5, 8, L""},
        {"nowhere", 3, 'M', 0, 3, L""},
        {"before the start", 3, 'M', -4, -1, moveNegative},
        {"beyond the end", 3, 'M', 6, -1, moveOverflow},
        {"far beyond the end", 3, 'M', INT_MAX, -1, moveOverflow},
        {"far before the start", 3, 'M', INT_MIN, -1, moveNegative},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        OpenStream open(8);
        open.MoveTo(row.before);
        LogCapture log;
        bool const moved = row.operation == 'M' ? open.stream.MovePosition(row.argument)
                                                : open.stream.SetPosition(row.argument, row.operation == 'E');
        EXPECT_EQ(moved, row.after >= 0);
        EXPECT_EQ(open.stream.GetPosition(), row.after >= 0 ? row.after : row.before);
        EXPECT_EQ(open.stream.IsAtEnd(), row.after == 8);
        EXPECT_EQ(log.Text(), row.message);
    }
}

TEST(MemoryIOStream, Blocks)
{
    std::wstring const backwards = L"CVekMemoryIOStream::SetPosition --> Invalid position specified. Overflow";
    std::wstring const readOverflow = L"CVekMemoryIOStream::Read --> Invalid size. Overflow";
    std::wstring const writeOverflow = L"CVekMemoryIOStream::Write --> Invalid size. Overflow";
    struct Row
    {
        char const * name;
        int before;
        unsigned int count;
        bool advance, done;
        int after;
    };
    Row const rows[] = {
        {"all but the last byte", 0, 7, true, true, 7},
        {"deliberate: never the last byte", 0, 8, true, false, 0},
        {"deliberate: not from the middle either", 5, 3, true, false, 5},
        {"from the middle", 5, 2, true, true, 7},
        {"nothing", 3, 0, true, true, 3},
        {"deliberate: not even nothing at the end", 8, 0, true, false, 8},
        {"beyond the end", 100, 1, true, false, 100},
        {"a length that wraps", 4, 0xFFFFFFFFu, true, false, 4},
        {"a length that wraps to the start", 4, 0xFFFFFFFCu, true, false, 4},
        {"deliberate: without advance the position moves and a message appears", 2, 3, false, true, 5},
        {"deliberate: for nothing too", 2, 0, false, true, 2},
        {"refused without advance", 2, 6, false, false, 2},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        OpenStream open(8);
        std::memcpy(open.stream.GetBuffer(), "01234567", 8);
        row.before > 8 ? static_cast<void>(open.stream.SetPosition(row.before, false)) : open.MoveTo(row.before);
        LogCapture log;
        char data[8] = {};
        EXPECT_EQ(open.stream.Read(data, row.count, row.advance), row.done);
        EXPECT_EQ(open.stream.GetPosition(), row.after);
        EXPECT_EQ(std::string(data),
                  row.done ? std::string("01234567").substr(static_cast<std::size_t>(row.before), row.count) : "");
        EXPECT_EQ(log.Take(), !row.done ? readOverflow : row.advance ? std::wstring() : backwards);

        row.before > 8 ? static_cast<void>(open.stream.SetPosition(row.before, false)) : open.MoveTo(row.before);
        EXPECT_EQ(open.stream.Write("abcdefgh", row.count, row.advance), row.done);
        EXPECT_EQ(open.stream.GetPosition(), row.after);
        std::string expected = "01234567";
        if (row.done)
            expected.replace(static_cast<std::size_t>(row.before), row.count, "abcdefgh", row.count);
        EXPECT_EQ(open.Bytes(), expected);
        EXPECT_EQ(log.Take(), !row.done ? writeOverflow : row.advance ? std::wstring() : backwards);
        EXPECT_FALSE(open.stream.Read(nullptr, 1, true) || open.stream.Write(nullptr, 1, true));
        EXPECT_EQ(open.stream.GetPosition(), row.after);
    }
}

TEST(MemoryIOStream, SingleValuesStayInsideTheBlock)
{
    struct Row
    {
        char const * name;
        int size;
        void (*write)(IVekIOStream &);
        bool (*readsNothing)(IVekIOStream &);
    };
    Row const rows[] = {
        {"char", 1, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteChar('x', true)); },
         [](IVekIOStream & s) { return s.ReadChar(true) == 0; }},
        {"byte", 1, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteByte('x', true)); },
         [](IVekIOStream & s) { return s.ReadByte(true) == 0; }},
        {"wide character", 2, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteWChar(0x7878, true)); },
         [](IVekIOStream & s) { return s.ReadWChar(true) == 0; }},
        {"16 bits", 2, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteInt16(0x7878, true)); },
         [](IVekIOStream & s) { return s.ReadInt16(true) == 0; }},
        {"32 bits", 4, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteInt32(0x78787878, true)); },
         [](IVekIOStream & s) { return s.ReadInt32(true) == 0; }},
        {"float", 4, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteFloat(1.5f, true)); },
         [](IVekIOStream & s) { return s.ReadFloat(true) == 0.0f; }},
        {"64 bits", 8, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteQWord(0x7878787878787878ull, true)); },
         [](IVekIOStream & s) { return s.ReadInt64(true) == 0; }},
        {"double", 8, [](IVekIOStream & s) { EXPECT_TRUE(s.WriteDouble(1.5, true)); },
         [](IVekIOStream & s) { return s.ReadDouble(true) == 0.0; }},
    };
    LogCapture log;
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        OpenStream open(11);
        std::memset(open.stream.GetBuffer(), '.', 11);
        for (int const position : {11 - row.size + 1, 11, 12, 5000, INT_MAX})
        {
            SCOPED_TRACE(position);
            if (position < 11)
                open.MoveTo(position);
            else
                EXPECT_TRUE(open.stream.SetPosition(position, false));
            row.write(open.stream);
            EXPECT_TRUE(row.readsNothing(open.stream));
            EXPECT_EQ(open.stream.GetPosition(), position);
            EXPECT_EQ(open.Bytes(), "...........");
        }
        open.MoveTo(11 - row.size);
        row.write(open.stream);
        EXPECT_TRUE(open.stream.IsAtEnd()) << "one that ends at the end fits";
        EXPECT_NE(open.Bytes(), "...........");
        open.stream.Close();
        open.stream.SetSystemByteOrder(VEK_BYTEORDER_LITTLE);
        log.Clear();
        row.write(open.stream);
        EXPECT_TRUE(row.readsNothing(open.stream)) << "closed";
    }
}

TEST(MemoryIOStream, MessagesWithoutBlock)
{
    struct Row
    {
        bool (*call)(CVekMemoryIOStream &);
        wchar_t const * message;
    };
    static char c;
    Row const rows[] = {
        {[](CVekMemoryIOStream & s) { return s.SetPosition(0, true); }, L"SetPosition --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.MovePosition(0); }, L"MovePosition --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.IsAtEnd(); }, L"IsAtEnd --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Read(&c, 1, true); }, L"Read --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Write(&c, 1, true); }, L"Write --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.ReadChar(true) != 0; }, L"ReadChar --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.ReadWChar(true) != 0; }, L"ReadWChar --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.ReadTChar(true) != 0; }, L"ReadWChar --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Printf("x"); }, L"Printf --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Printf(L"x"); }, L"Printf --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Scanf("%c", &c, 1); }, L"Scanf --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.Scanf(L"%hc", &c, 1); }, L"Scanf --> Buffer is not allocated"},
        {[](CVekMemoryIOStream & s) { return s.ReadByte(true) != 0; }, nullptr},
        {[](CVekMemoryIOStream & s) { return s.ReadDouble(false) != 0; }, nullptr},
        {[](CVekMemoryIOStream & s) { return !s.WriteChar('x', true); }, nullptr},
        {[](CVekMemoryIOStream & s) { return !s.WriteQWord(1, false); }, nullptr},
    };
    LogCapture log;
    for (Row const & row : rows)
    {
        std::wstring const expected =
            row.message ? std::wstring(L"CVekMemoryIOStream::") + row.message : std::wstring();
        SCOPED_TRACE(&row - rows);
        CVekMemoryIOStream never;
        EXPECT_FALSE(row.call(never));
        EXPECT_EQ(log.Take(), expected);
        CVekMemoryIOStream closed;
        EXPECT_TRUE(closed.Open(nullptr, 0, 16));
        closed.Close();
        EXPECT_FALSE(row.call(closed));
        EXPECT_EQ(log.Take(), expected);
    }
}

TEST(MemoryIOStream, SlotOrder)
{
    CVekMemoryIOStream object;
    IVekMemoryIOStream * const stream = &object;
    EXPECT_EQ(CallSlot<unsigned int>(stream, 0), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 1), 1u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 2), 1u);
    wchar_t const * const noName = nullptr;
    EXPECT_TRUE(CallSlot<bool>(stream, 3, noName, 8u, 80u));
    EXPECT_EQ(CallSlot<unsigned int>(stream, 5), 80u);
    EXPECT_TRUE(CallSlot<bool>(stream, 6));
    EXPECT_FALSE(CallSlot<bool>(stream, 7));
    ExpectByteOrderSlots(stream);
    EXPECT_TRUE(CallSlot<bool>(stream, 13, 80, true));
    EXPECT_EQ(CallSlot<int>(stream, 12), 0);
    EXPECT_FALSE(CallSlot<bool>(stream, 15));
    std::memcpy(stream->GetBuffer(), SLOT_BYTES, 16);
    ExpectReadSlots(stream);
    for (bool const reversed : {false, true})
    {
        SCOPED_TRACE(reversed);
        std::memset(stream->GetBuffer(), '~', 80);
        EXPECT_TRUE(stream->SetPosition(80, true));
        stream->SetStreamByteOrder(reversed ? VEK_BYTEORDER_LITTLE : VEK_BYTEORDER_BIG);
        WriteSlots(stream);
        std::string const expected = WrittenBytes(reversed);
        EXPECT_EQ(std::string(reinterpret_cast<char *>(stream->GetBuffer()), expected.size()), expected);
        EXPECT_EQ(stream->GetPosition(), static_cast<int>(expected.size()));
    }
    EXPECT_TRUE(stream->SetPosition(80, true));
    EXPECT_TRUE(CallFormatSlot(stream, 42, L"%s %d", L"wide", 12)) << "slot 42";
    wchar_t text[8] = L"";
    int number = 0;
    EXPECT_TRUE(CallFormatSlot(stream, 44, L"%s %d", text, 8u, &number)) << "slot 44";
    EXPECT_EQ(std::wstring(text), L"wide");
    EXPECT_EQ(number, 12);
    char narrow[8] = "";
    EXPECT_TRUE(CallFormatSlot(stream, 45, "%c", narrow, 8u)) << "slot 45";
    EXPECT_EQ(narrow[0], 'w');
    EXPECT_EQ(CallSlot<unsigned char *>(stream, 46), object.GetBuffer());
    EXPECT_EQ(CallSlot<unsigned char const *>(stream, 47), object.GetBuffer());
    EXPECT_NE(object.GetBuffer(), nullptr);
    CallSlot(stream, 4);
    EXPECT_EQ(CallSlot<unsigned char *>(stream, 46), nullptr);

    auto * const dying = new CVekMemoryIOStream;
    EXPECT_TRUE(dying->Open(nullptr, 0, 10));
    CallSlot(dying, 49); // the deleting one of the destructor's two places; the leak check sees that it did
}

TEST(MemoryIOStream, Printf)
{
    struct Row
    {
        char const * name;
        int before;
        char const * text;
        bool done;
        char const * narrow; // the block of 8 dots afterwards, with '0' for a zero byte
        char const * wide;
    };
    Row const rows[] = {
        {"short", 0, "ab", true, "ab0.....", "a0b000.."},
        {"nothing writes a terminator", 2, "", true, "..0.....", "..00...."},
        {"the terminator just fits", 0, "abc", true, "abc0....", "a0b0c000"},
        {"exactly the remaining length in wide characters", 0, "abcd", true, "abcd0...", "a0b0c0d0"},
        {"exactly the remaining length in wide characters, in the middle", 4, "cd", true, "....cd0.", "....c0d0"},
        {"one wide character too long", 4, "cde", true, "....cde0", nullptr},
        {"exactly the remaining length", 4, "cdef", true, "....cdef", nullptr},
        {"one too long", 4, "cdefg", false, nullptr, nullptr},
        {"an odd position leaves no room for a wide terminator", 3, "ab", true, "...ab0..", "...a0b0."},
        {"nothing at the end", 8, "", true, "........", "........"},
        {"something at the end", 8, "a", false, nullptr, nullptr},
        {"beyond the end", 50, "", false, nullptr, nullptr},
    };
    for (Row const & row : rows)
    {
        for (bool const wide : {false, true})
        {
            SCOPED_TRACE(testing::Message() << row.name << (wide ? ", wide" : ", narrow"));
            OpenStream open(8);
            std::memset(open.stream.GetBuffer(), '.', 8);
            row.before > 8 ? static_cast<void>(open.stream.SetPosition(row.before, false)) : open.MoveTo(row.before);
            char const * const expected = wide ? row.wide : row.narrow;
            int const length = static_cast<int>(std::strlen(row.text)) * (wide ? 2 : 1);
            LogCapture log;
            EXPECT_EQ(wide ? open.stream.Printf(L"%S", row.text) : open.stream.Printf("%s", row.text),
                      expected != nullptr);
            EXPECT_EQ(log.Take(), expected ? L"" : L"CVekMemoryIOStream::Printf --> Size too big");
            EXPECT_EQ(open.stream.GetPosition(), expected ? row.before + length : row.before);
            std::string bytes = open.Bytes();
            for (char & byte : bytes)
                byte = byte ? byte : '0';
            EXPECT_EQ(bytes, expected ? expected : "........");
        }
    }
    OpenStream open(8);
    EXPECT_FALSE(open.stream.Printf(static_cast<char const *>(nullptr)));
    EXPECT_FALSE(open.stream.Printf(static_cast<wchar_t const *>(nullptr)));
}

TEST(MemoryIOStream, ScanfReadsFromTheStart)
{
    OpenStream open(12);
    std::memcpy(open.stream.GetBuffer(), "12 34 567890", 12); // no terminator in the block
    open.MoveTo(6);
    int a = 0, b = 0, c = 0;
    EXPECT_TRUE(open.stream.Scanf("%d %d %d", &a, &b, &c));
    EXPECT_EQ(a, 12) << "deliberate: from the start, not from the position";
    EXPECT_EQ(b, 34);
    EXPECT_EQ(c, 567890) << "bounded by the block";
    EXPECT_EQ(open.stream.GetPosition(), 6);

    char word[4] = "";
    float number = 0;
    EXPECT_TRUE(open.stream.Scanf("%*d %3[0-9] %f", word, 4u, &number));
    EXPECT_EQ(std::string(word), "34");
    EXPECT_EQ(number, 567890.0f);
    EXPECT_TRUE(open.stream.Scanf("nothing of that %d", &a)) << "true whatever was found";
    EXPECT_EQ(a, 12);
    EXPECT_FALSE(open.stream.Scanf(static_cast<char const *>(nullptr)));

    std::memcpy(open.stream.GetBuffer(), L"7 wxyz", 12);
    wchar_t text[5] = L"";
    EXPECT_TRUE(open.stream.Scanf(L"%d%s", &a, text, 5u));
    EXPECT_EQ(a, 7);
    EXPECT_EQ(std::wstring(text), L"wxyz");

    OpenStream odd(1);
    odd.stream.WriteChar('5', false);
    EXPECT_TRUE(odd.stream.Scanf("%d", &a));
    EXPECT_EQ(a, 5);
    EXPECT_TRUE(odd.stream.Scanf(L"%d", &a)) << "no whole wide character";
    EXPECT_EQ(a, 5);
}
