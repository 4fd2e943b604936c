#include "lexer/StreamText.h"

#include "base/AsOwn.h"
#include "base/StreamSize.h"

#include <limits.h>
#include <stdint.h>

namespace vek
{
namespace
{

constexpr unsigned int PIECE = 64 * 1024;
constexpr uint32_t REPLACEMENT = 0xFFFD;

bool IsHosts(IVekIOStream & stream) noexcept
{
    return !AsOwn<CVekFileIOStream>(stream) && !AsOwn<CVekMemoryIOStream>(stream);
}

// Byte by byte: only a block's result tells the end, and what a larger one that fails has taken is not known.
StreamReading ReadToEnd(IVekIOStream & stream, Buffer<uint8_t> & bytes) noexcept
{
    uint8_t byte = 0;
    while (stream.Read(&byte, 1, true))
    {
        if (bytes.Size() >= UINT_MAX || !bytes.Append(byte))
            return StreamReading::NoMemory;
    }
    return StreamReading::Done;
}

// Piece by piece: what a stream says about its size is believed only as far as there are bytes.
StreamReading ReadBytes(IVekIOStream & stream, Buffer<uint8_t> & bytes) noexcept
{
    int const position = stream.GetPosition();
    unsigned int const size = stream.GetSize();
    if (TellsNoSize(size) && IsHosts(stream))
        return ReadToEnd(stream, bytes);
    unsigned int rest =
        position >= 0 && static_cast<unsigned int>(position) < size ? size - static_cast<unsigned int>(position) : 0;
    while (rest > 0)
    {
        // The last byte alone: a memory stream refuses a block that reaches it.
        unsigned int const count = rest == 1 ? 1 : rest - 1 < PIECE ? rest - 1 : PIECE;
        uint8_t * const place = bytes.Extend(count);
        if (!place)
            return StreamReading::NoMemory;
        if (rest == 1)
            *place = stream.ReadByte(true);
        else if (!stream.Read(place, count, true))
            return StreamReading::Failed;
        rest -= count;
    }
    return StreamReading::Done;
}

// The character that begins at the place, which is moved behind it; one byte of what is none.
uint32_t TakeCharacter(uint8_t const *& at, uint8_t const * end) noexcept
{
    uint32_t const first = *at++;
    if (first < 0x80)
        return first;
    int const more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || end - at < more)
        return REPLACEMENT;
    uint32_t character = first & (0x3FU >> more);
    for (int i = 0; i < more; ++i)
    {
        if ((at[i] & 0xC0) != 0x80)
            return REPLACEMENT;
        character = character << 6 | (at[i] & 0x3FU);
    }
    constexpr uint32_t LOWEST[4] = {0, 0x80, 0x800, 0x10000};
    if (character < LOWEST[more] || character > 0x10FFFF || (character & 0xFFFFF800U) == 0xD800)
        return REPLACEMENT;
    at += more;
    return character;
}

void DecodeUtf8(uint8_t const * at, uint8_t const * end, Buffer<wchar_t> & text) noexcept
{
    // There is room: a character takes at least as many bytes as units.
    while (at != end)
    {
        uint32_t const character = TakeCharacter(at, end);
        if (character >= 0x10000)
            text.Append(static_cast<wchar_t>(0xD7C0 + (character >> 10)));
        text.Append(static_cast<wchar_t>(character < 0x10000 ? character : 0xDC00 + (character & 0x3FF)));
    }
}

void DecodeUtf16(uint8_t const * at, uint8_t const * end, int lowByte, Buffer<wchar_t> & text) noexcept
{
    for (; end - at >= 2; at += 2)
        text.Append(static_cast<wchar_t>(at[lowByte] | at[1 - lowByte] << 8));
    if (at != end)
        text.Append(static_cast<wchar_t>(REPLACEMENT));
}

} // namespace

StreamReading ReadStreamText(IVekIOStream & stream, Buffer<wchar_t> & text) noexcept
{
    Buffer<uint8_t> bytes;
    StreamReading const reading = ReadBytes(stream, bytes);
    if (reading != StreamReading::Done)
        return reading;
    size_t const size = bytes.Size();
    if (!text.Reserve(size + 1))
        return StreamReading::NoMemory;
    uint8_t const * const begin = bytes.Data();
    uint8_t const * const end = begin + size;
    if (size >= 2 && begin[0] + begin[1] == 0xFF + 0xFE)
        DecodeUtf16(begin + 2, end, begin[0] == 0xFF ? 0 : 1, text);
    else
        DecodeUtf8(size >= 3 && begin[0] == 0xEF && begin[1] == 0xBB && begin[2] == 0xBF ? begin + 3 : begin, end,
                   text);
    return StreamReading::Done;
}

} // namespace vek
