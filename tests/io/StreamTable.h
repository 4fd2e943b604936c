// What both streams have in common, as tables that either test runs.
#pragma once

#include "VekIO.h"

#include "support/Slots.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

// One value of each type, in the order of the operations, and its bytes in the system's order.
template <class Visitor>
void ForEachType(Visitor visit)
{
    visit('A', "A");
    visit(wchar_t{0x0102}, "\x02\x01");
    visit(wchar_t{0x8304}, "\x04\x83");
    visit(short{0x0506}, "\x06\x05");
    visit(0x01020304, "\x04\x03\x02\x01");
    visit(-2, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"); // kept: 32 bits in, 64 written
    visit(static_cast<unsigned char>(200), "\xC8");
    visit(static_cast<unsigned short>(0x8708), "\x08\x87");
    visit(0x890A0B0Cu, "\x0C\x0B\x0A\x89");
    visit(0x8102030405060708ull, "\x08\x07\x06\x05\x04\x03\x02\x81");
    visit(1.0f, "\x00\x00\x80\x3F");
    visit(-1.5, "\x00\x00\x00\x00\x00\x00\xF8\xBF");
}

// Writes a value of every type by its slot; gives the bytes that have to be there then, when the byte orders differ or
// not.
inline std::string WriteTypedValues(IVekIOStream * stream, bool reversed)
{
    EXPECT_TRUE(stream->Write("ab", 2, true));
    std::string bytes = "ab";
    ForEachType(
        [&, slot = 30]<std::size_t size>(auto value, char const(&inOrder)[size]) mutable
        {
            EXPECT_TRUE(CallSlot<bool>(stream, slot, decltype(value){}, false)) << "slot " << slot;
            EXPECT_TRUE(CallSlot<bool>(stream, slot, value, true)) << "slot " << slot; // over the first one
            ++slot;
            for (std::size_t i = 0; i + 1 < size; ++i)
                bytes += inOrder[reversed ? size - 2 - i : i];
        });
    EXPECT_TRUE(CallFormatSlot(stream, 43, "%s%d", "w", 7));
    EXPECT_TRUE(stream->Printf("%c%d", 'n', 8));
    return bytes + "w7n8";
}

// Reads them again from the stream's place on.
inline void ReadTypedValues(IVekIOStream * stream)
{
    char block[3] = "";
    EXPECT_TRUE(stream->Read(block, 2, true));
    EXPECT_STREQ(block, "ab");
    ForEachType(
        [stream, slot = 17]<std::size_t size>(auto value, char const(&)[size]) mutable
        {
            SCOPED_TRACE(testing::Message() << "slot " << slot);
            using Value = std::conditional_t<sizeof value == size - 1, decltype(value), long long>;
            int const before = stream->GetPosition();
            EXPECT_EQ(CallSlot<Value>(stream, slot, false), value);
            EXPECT_EQ(stream->GetPosition(), before) << "without advance";
            EXPECT_EQ(CallSlot<Value>(stream, slot++, true), value);
            EXPECT_EQ(stream->GetPosition(), before + static_cast<int>(size) - 1) << "with advance";
        });
}

// The byte orders before opening, which are left as they were.
inline void ExpectByteOrders(IVekIOStream & stream)
{
    auto const orders = [&] { return stream.GetStreamByteOrder() * 10 + stream.GetSystemByteOrder(); };
    EXPECT_EQ(orders(), 11) << "the default of both is 1";
    stream.SetStreamByteOrder(VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(orders(), 21);
    stream.SetSystemByteOrder(VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(orders(), 22);
    stream.SetStreamByteOrder(VEK_BYTEORDER_BIG);
    EXPECT_EQ(orders(), 12);
    stream.SetSystemByteOrder(VEK_BYTEORDER_BIG);
}

// A whole message, or none.
inline std::wstring Message(std::wstring text, wchar_t const * operation, wchar_t const * rest)
{
    return operation ? text.append(operation).append(rest) : std::wstring();
}

// Operations that fail on a stream without file or block: the one to be named in the message, if any.
struct OperationWithoutStream
{
    char const * name;
    bool (*call)(IVekIOStream &);
    wchar_t const *file, *memory;
};
inline char g_byte;
inline OperationWithoutStream const OPERATIONS_WITHOUT_STREAM[] = {
    // clang-format off
    {"SetPosition", [](IVekIOStream & s) { return s.SetPosition(0, true); }, nullptr, L"SetPosition"},
    {"MovePosition", [](IVekIOStream & s) { return s.MovePosition(0); }, nullptr, L"MovePosition"},
    {"IsAtEnd", [](IVekIOStream & s) { return s.IsAtEnd(); }, nullptr, L"IsAtEnd"},
    {"kept: Read", [](IVekIOStream & s) { return s.Read(&g_byte, 1, true); }, L"GetSize", L"Read"},
    {"Write", [](IVekIOStream & s) { return s.Write(&g_byte, 1, true); }, L"Write", L"Write"},
    {"kept: ReadChar", [](IVekIOStream & s) { return s.ReadChar(false) != 0; }, L"GetSize", L"ReadChar"},
    {"kept: ReadWChar", [](IVekIOStream & s) { return s.ReadWChar(true) != 0; }, L"GetSize", L"ReadWChar"},
    {"Printf", [](IVekIOStream & s) { return s.Printf("x"); }, L"Printf", L"Printf"},
    {"Scanf", [](IVekIOStream & s) { return s.Scanf("%c", &g_byte, 1); }, L"Scanf", L"Scanf"},
    {"ReadDouble", [](IVekIOStream & s) { return s.ReadDouble(false) != 0; }, nullptr, nullptr},
    {"WriteQWord", [](IVekIOStream & s) { return !s.WriteQWord(1, false); }, nullptr, nullptr},
    // clang-format on
};
