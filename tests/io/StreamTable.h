// What both streams have in common, as tables that either test runs.
#pragma once

#include "VekIO.h"

#include "support/Slots.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

// The 16 bytes that the reading slots are tried on.
inline constexpr unsigned char SLOT_BYTES[16] = {0x81, 0x02, 0x83, 0x04, 0x85, 0x06, 0x87, 0x08,
                                                 0x89, 0x0A, 0x8B, 0x0C, 0x8D, 0x0E, 0x8F, 0x10};

template <class T>
void ExpectReadSlot(IVekIOStream * stream, int slot)
{
    SCOPED_TRACE(testing::Message() << "slot " << slot);
    int const before = stream->GetPosition();
    T expected;
    std::memcpy(&expected, SLOT_BYTES, sizeof expected);
    EXPECT_EQ(CallSlot<T>(stream, slot, false), expected);
    EXPECT_EQ(stream->GetPosition(), before) << "without advance";
    EXPECT_EQ(CallSlot<T>(stream, slot, true), expected);
    EXPECT_EQ(stream->GetPosition(), before + static_cast<int>(sizeof(T))) << "with advance";
    EXPECT_TRUE(stream->MovePosition(-static_cast<int>(sizeof(T))));
}

template <class... Types>
void ExpectReadSlotsFrom(IVekIOStream * stream, int slot)
{
    (ExpectReadSlot<Types>(stream, slot++), ...);
}

// The stream stands at the first of SLOT_BYTES and stands there again at the end.
inline void ExpectReadSlots(IVekIOStream * stream)
{
    unsigned char block[15] = {};
    int const before = stream->GetPosition();
    EXPECT_TRUE(CallSlot<bool>(stream, 16, static_cast<void *>(block), 15u, true));
    EXPECT_EQ(std::memcmp(block, SLOT_BYTES, 15), 0) << "slot 16";
    EXPECT_EQ(stream->GetPosition(), before + 15);
    EXPECT_TRUE(CallSlot<bool>(stream, 14, -15)) << "slot 14";
    ExpectReadSlotsFrom<char, wchar_t, wchar_t, short, int, long long, unsigned char, unsigned short, unsigned int,
                        unsigned long long, float, double>(stream, 17);
}

// Writes a value of every type; gives the bytes that have to be there then, when the byte orders differ or not.
inline std::string WriteSlots(IVekIOStream * stream, bool reversed)
{
    EXPECT_TRUE(CallSlot<bool>(stream, 29, static_cast<void const *>("ab"), 2u, true)) << "slot 29";
    std::string bytes = "ab";
    auto write = [&, slot = 30]<std::size_t size>(auto value, char const(&inOrder)[size]) mutable
    {
        EXPECT_TRUE(CallSlot<bool>(stream, slot, decltype(value){}, false)) << "slot " << slot;
        EXPECT_TRUE(CallSlot<bool>(stream, slot, value, true)) << "slot " << slot; // over the first one
        ++slot;
        for (std::size_t i = 0; i + 1 < size; ++i)
            bytes += inOrder[reversed ? size - 2 - i : i];
    };
    write('A', "A");
    write(wchar_t{0x0102}, "\x02\x01");
    write(wchar_t{0x0304}, "\x04\x03");
    write(short{0x0506}, "\x06\x05");
    write(0x01020304, "\x04\x03\x02\x01");
    write(-2, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"); // kept: 32 bits in, 64 written
    write(static_cast<unsigned char>(200), "\xC8");
    write(static_cast<unsigned short>(0x0708), "\x08\x07");
    write(0x890A0B0Cu, "\x0C\x0B\x0A\x89");
    write(0x8102030405060708ull, "\x08\x07\x06\x05\x04\x03\x02\x81");
    write(1.0f, "\x00\x00\x80\x3F");
    write(-1.5, "\x00\x00\x00\x00\x00\x00\xF8\xBF");
    EXPECT_TRUE(CallFormatSlot(stream, 43, "%s%d", "w", 7)) << "slot 43";
    EXPECT_TRUE(CallFormatSlot(stream, 43, "%c%d", 'n', 8)) << "slot 43";
    return bytes + "w7n8";
}

// What comes before opening: the reference count and the byte orders.
inline void ExpectFirstSlots(IVekIOStream * stream)
{
    EXPECT_EQ(CallSlot<unsigned int>(stream, 0), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 1), 1u);
    EXPECT_EQ(CallSlot<unsigned int>(stream, 2), 1u);
    auto const orders = [stream]
    { return CallSlot<VEK_BYTEORDER>(stream, 10) * 10 + CallSlot<VEK_BYTEORDER>(stream, 11); };
    EXPECT_EQ(orders(), 11) << "the default of both is 1";
    CallSlot(stream, 8, VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(orders(), 21);
    CallSlot(stream, 9, VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(orders(), 22);
    CallSlot(stream, 8, VEK_BYTEORDER_BIG);
    EXPECT_EQ(orders(), 12);
    CallSlot(stream, 9, VEK_BYTEORDER_BIG);
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
