// What both streams have in common, as tables that either test runs.
#pragma once

#include "VekIO.h"

#include "support/Slots.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

// The 16 bytes that the reading slots are tried on.
inline constexpr unsigned char SLOT_BYTES[16] = {0x81, 0x02, 0x83, 0x04, 0x85, 0x06, 0x87, 0x08,
                                                 0x89, 0x0A, 0x8B, 0x0C, 0x8D, 0x0E, 0x8F, 0x10};

template <class T>
T SlotValue()
{
    T value;
    std::memcpy(&value, SLOT_BYTES, sizeof value);
    return value;
}

template <class T>
void ExpectReadSlot(IVekIOStream * stream, int slot)
{
    SCOPED_TRACE(testing::Message() << "slot " << slot);
    int const before = stream->GetPosition();
    T const expected = SlotValue<T>();
    T const peeked = CallSlot<T>(stream, slot, false);
    EXPECT_EQ(std::memcmp(&peeked, &expected, sizeof expected), 0);
    EXPECT_EQ(stream->GetPosition(), before) << "without advance";
    EXPECT_EQ(CallSlot<T>(stream, slot, true), expected);
    EXPECT_EQ(stream->GetPosition(), before + static_cast<int>(sizeof(T))) << "with advance";
    EXPECT_TRUE(stream->MovePosition(-static_cast<int>(sizeof(T))));
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
    ExpectReadSlot<char>(stream, 17);
    ExpectReadSlot<wchar_t>(stream, 18);
    ExpectReadSlot<wchar_t>(stream, 19);
    ExpectReadSlot<short>(stream, 20);
    ExpectReadSlot<int>(stream, 21);
    ExpectReadSlot<long long>(stream, 22);
    ExpectReadSlot<unsigned char>(stream, 23);
    ExpectReadSlot<unsigned short>(stream, 24);
    ExpectReadSlot<unsigned int>(stream, 25);
    ExpectReadSlot<unsigned long long>(stream, 26);
    ExpectReadSlot<float>(stream, 27);
    ExpectReadSlot<double>(stream, 28);
}

// Writes one value of every type through its slot; first without advance, so that the second writes over it.
template <class T>
void WriteSlot(IVekIOStream * stream, int slot, T value)
{
    EXPECT_TRUE(CallSlot<bool>(stream, slot, T{}, false)) << "slot " << slot;
    EXPECT_TRUE(CallSlot<bool>(stream, slot, value, true)) << "slot " << slot;
}

// The bytes that WriteSlots leaves, for equal byte orders and for different ones.
inline std::string WrittenBytes(bool reversed)
{
    std::string const values[] = {"ab",
                                  "A",
                                  std::string("\x02\x01", 2),
                                  std::string("\x04\x03", 2),
                                  std::string("\x06\x05", 2),
                                  std::string("\x04\x03\x02\x01", 4),
                                  std::string("\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8),
                                  "\xC8",
                                  std::string("\x08\x07", 2),
                                  std::string("\x0C\x0B\x0A\x89", 4),
                                  std::string("\x08\x07\x06\x05\x04\x03\x02\x81", 8),
                                  std::string("\x00\x00\x80\x3F", 4),
                                  std::string("\x00\x00\x00\x00\x00\x00\xF8\xBF", 8)};
    std::string bytes;
    for (std::size_t i = 0; i < std::size(values); ++i)
        bytes += reversed && i > 0 ? std::string(values[i].rbegin(), values[i].rend()) : values[i];
    return bytes + "w7n8";
}

inline void WriteSlots(IVekIOStream * stream)
{
    EXPECT_TRUE(CallSlot<bool>(stream, 29, static_cast<void const *>("ab"), 2u, true)) << "slot 29";
    WriteSlot<char>(stream, 30, 'A');
    WriteSlot<wchar_t>(stream, 31, 0x0102);
    WriteSlot<wchar_t>(stream, 32, 0x0304);
    WriteSlot<short>(stream, 33, 0x0506);
    WriteSlot<int>(stream, 34, 0x01020304);
    WriteSlot<int>(stream, 35, -2); // kept: 32 bits in, 64 written
    WriteSlot<unsigned char>(stream, 36, 200);
    WriteSlot<unsigned short>(stream, 37, 0x0708);
    WriteSlot<unsigned int>(stream, 38, 0x890A0B0Cu);
    WriteSlot<unsigned long long>(stream, 39, 0x8102030405060708ull);
    WriteSlot<float>(stream, 40, 1.0f);
    WriteSlot<double>(stream, 41, -1.5);
    EXPECT_TRUE(CallFormatSlot(stream, 43, "%s%d", "w", 7)) << "slot 43";
    EXPECT_TRUE(CallFormatSlot(stream, 43, "%c%d", 'n', 8)) << "slot 43";
}

inline void ExpectByteOrderSlots(IVekIOStream * stream)
{
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 10), VEK_BYTEORDER_BIG) << "the default is 1";
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 11), VEK_BYTEORDER_BIG);
    CallSlot(stream, 8, VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 10), VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 11), VEK_BYTEORDER_BIG);
    CallSlot(stream, 9, VEK_BYTEORDER_LITTLE);
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 11), VEK_BYTEORDER_LITTLE);
    CallSlot(stream, 8, VEK_BYTEORDER_BIG);
    EXPECT_EQ(CallSlot<VEK_BYTEORDER>(stream, 10), VEK_BYTEORDER_BIG);
    CallSlot(stream, 9, VEK_BYTEORDER_BIG);
}
