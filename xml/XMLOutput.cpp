#include "xml/XMLOutput.h"

#include <emmintrin.h>
#include <string.h>

#include <algorithm>

namespace vek
{
namespace
{

constexpr size_t PAGE_BYTES = 4096;

} // namespace

XMLOutput::XMLOutput(IVekIOStream & stream, XMLEncoding encoding, NewLines newLines) noexcept
    : m_stream(stream), m_encoding(encoding), m_plainLimit(encoding == XMLEncoding::UTF8 ? 0x80 : 0x100),
      m_carriageReturns(newLines == NewLines::CARRIAGE_RETURN_FIRST),
      m_reversed(stream.GetStreamByteOrder() != stream.GetSystemByteOrder())
{
}

void XMLOutput::Text(wchar_t const * text, size_t length) noexcept
{
    while (length > 0)
    {
        char * const place = Room();
        if (!place)
            return;
        size_t const slice = std::min(length, SLICE);
        m_place = Encode(text, slice, place);
        text += slice;
        length -= slice;
    }
}

void XMLOutput::Spaces(uint64_t count) noexcept
{
    static constexpr wchar_t SPACES[] = L"                                                                ";
    constexpr uint64_t SPACES_LENGTH = sizeof SPACES / sizeof SPACES[0] - 1;
    if (m_encoding == XMLEncoding::UTF16)
    {
        for (; count > 0 && !m_failed; count -= std::min(count, SPACES_LENGTH))
            Text(SPACES, static_cast<size_t>(std::min(count, SPACES_LENGTH)));
        return;
    }
    while (count > 0)
    {
        char * const place = Room();
        if (!place)
            return;
        auto const slice = static_cast<size_t>(std::min(count, uint64_t{SLICE}));
        memset(place, ' ', PIECE);
        if (slice > PIECE)
            memset(place, ' ', slice);
        m_place += slice;
        count -= slice;
    }
}

void XMLOutput::Bytes(void const * bytes, size_t count) noexcept
{
    auto const * source = static_cast<char const *>(bytes);
    while (count > 0)
    {
        char * const place = Room();
        if (!place)
            return;
        size_t const slice = std::min(count, SLICE);
        memcpy(place, source, slice);
        m_place += slice;
        source += slice;
        count -= slice;
    }
}

bool XMLOutput::Flush() noexcept
{
    size_t const used = static_cast<size_t>(m_place - m_block.Data());
    if (used > 0 && !m_failed && !m_stream.Write(m_block.Data(), static_cast<unsigned int>(used), true))
        Fail();
    m_place = m_block.Data();
    return !m_failed;
}

bool XMLOutput::Finish() noexcept
{
    if (m_place == m_block.Data())
        return !m_failed;
    // A memory stream refuses a block that reaches its last byte, but takes a single byte there.
    char const last = *--m_place;
    if (Flush() && !m_stream.WriteChar(last, true))
        Fail();
    return !m_failed;
}

char * XMLOutput::RoomAnew() noexcept
{
    if (m_failed)
        return nullptr;
    if (!m_block.Empty())
        return Flush() ? m_place : nullptr;
    m_place = m_block.Extend(BLOCK_BYTES + PIECE);
    if (m_place)
        m_limit = m_place + BLOCK_BYTES - SLICE * UNIT_BYTES + 1;
    else
        Fail();
    return m_place;
}

char * XMLOutput::EncodeUnit(wchar_t unit, char * place) const noexcept
{
    if (m_encoding == XMLEncoding::UTF16)
    {
        *place++ = static_cast<char>(m_reversed ? unit >> 8 : unit);
        *place++ = static_cast<char>(m_reversed ? unit : unit >> 8);
        return place;
    }
    if (m_encoding != XMLEncoding::UTF8 || unit < 0x80)
    {
        auto const byte = static_cast<char>(unit);
        if (byte == '\n' && m_carriageReturns)
            *place++ = '\r';
        *place++ = byte;
        return place;
    }
    // Kept: the halves of a surrogate pair are not combined; each becomes three bytes of its own.
    if (unit < 0x800)
        *place++ = static_cast<char>(0xC0 | (unit >> 6));
    else
    {
        *place++ = static_cast<char>(0xE0 | (unit >> 12));
        *place++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
    }
    *place++ = static_cast<char>(0x80 | (unit & 0x3F));
    return place;
}

char * XMLOutput::Encode(wchar_t const * text, size_t length, char * place) const noexcept
{
    if (m_encoding == XMLEncoding::UTF16 && !m_reversed)
    {
        memcpy(place, text, length * sizeof(wchar_t));
        return place + length * sizeof(wchar_t);
    }
    __m128i const limit = _mm_set1_epi16(static_cast<short>(~(m_plainLimit - 1)));
    __m128i const newLine = _mm_set1_epi16(m_carriageReturns ? L'\n' : -1);
    auto const isPlain = [&](__m128i units)
    {
        __m128i const high = _mm_cmpeq_epi16(_mm_and_si128(units, limit), _mm_setzero_si128());
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_andnot_si128(_mm_cmpeq_epi16(units, newLine), high)));
    };
    bool const packs = m_encoding != XMLEncoding::UTF16;
    size_t i = 0;
    while (i < length)
    {
        // Eight plain units become eight bytes at once; the first other unit goes on by itself.
        for (; packs && length - i >= 8; i += 8, place += 8)
        {
            __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text + i));
            if (isPlain(units) != 0xFFFF)
                break;
            _mm_storel_epi64(reinterpret_cast<__m128i *>(place), _mm_packus_epi16(units, units));
        }
        // So do fewer at the end, with what stands behind them, which the next bytes overwrite: within a page of memory
        // any byte can be read where another is.
        size_t const rest = length - i;
        if (packs && rest > 0 && rest < 8 &&
            (reinterpret_cast<uintptr_t>(text + i) & (PAGE_BYTES - 1)) <= PAGE_BYTES - 16)
        {
            __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text + i));
            unsigned const others = ~isPlain(units);
            _mm_storel_epi64(reinterpret_cast<__m128i *>(place), _mm_packus_epi16(units, units));
            if (!(others & ((1U << (2 * rest)) - 1)))
                return place + rest;
        }
        for (size_t const end = std::min(length, i + 8); i < end; ++i)
            place = EncodeUnit(text[i], place);
    }
    return place;
}

} // namespace vek
