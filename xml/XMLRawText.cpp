#include "xml/XMLRawText.h"

#include "xml/XMLMarkup.h"

#include <emmintrin.h>
#include <string.h>

#include <algorithm>
#include <bit>

namespace vek
{
namespace
{

constexpr size_t BLOCK = sizeof(__m128i);
static_assert(BLOCK == RAW_TEXT_ROOM);

wchar_t * WriteCharacter(wchar_t * place, unsigned int character) noexcept
{
    if (character >= 0x10000)
    {
        *place++ = static_cast<wchar_t>(0xD7C0 + (character >> 10));
        character = 0xDC00 + (character & 0x3FF);
    }
    *place++ = static_cast<wchar_t>(character);
    return place;
}

class Reader
{
public:
    Reader(XMLRawText const & raw, wchar_t * place) noexcept
        : m_at(raw.bytes), m_end(raw.bytes + raw.length), m_readableEnd(raw.bytes + raw.readable), m_place(place)
    {
    }

    wchar_t * Run(bool hasReferences) noexcept
    {
        // Within a section an ampersand is looked at, too.
        for (SkipPlain(); m_at < m_end; SkipPlain())
        {
            if (*m_at >= 0x80)
                ReadLong();
            else if (*m_at == '\r')
                ReadLineEnd();
            else if (hasReferences)
                ReadReference();
            else
                *m_place++ = *m_at++;
        }
        return m_place;
    }

private:
    // Whole blocks are written; what follows is written over them.
    void SkipPlain() noexcept
    {
        while (m_at < m_end)
        {
            auto const left = static_cast<size_t>(m_end - m_at);
            __m128i const bytes = Load(left);
            __m128i const stops = _mm_or_si128(_mm_or_si128(bytes, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'))),
                                               _mm_cmpeq_epi8(bytes, _mm_set1_epi8('&'))); // the highest bits
            unsigned const mask = static_cast<unsigned>(_mm_movemask_epi8(stops)) | 1U << BLOCK;
            size_t const plain = std::min(left, static_cast<size_t>(std::countr_zero(mask)));
            auto * const target = reinterpret_cast<__m128i *>(m_place);
            _mm_storeu_si128(target, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
            _mm_storeu_si128(target + 1, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
            m_at += plain;
            m_place += plain;
            if (plain < BLOCK)
                return;
        }
    }

    __m128i Load(size_t left) const noexcept
    {
        if (static_cast<size_t>(m_readableEnd - m_at) >= BLOCK)
            return _mm_loadu_si128(reinterpret_cast<__m128i const *>(m_at));
        alignas(BLOCK) unsigned char last[BLOCK] = {};
        memcpy(last, m_at, std::min(left, BLOCK));
        return _mm_load_si128(reinterpret_cast<__m128i const *>(last));
    }

    // Characters beyond ASCII, as many as follow each other.
    void ReadLong() noexcept
    {
        do
        {
            unsigned const first = m_at[0];
            int const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
            if (m_end - m_at < length)
            {
                m_at = m_end; // not well-formed
                return;
            }
            unsigned const two = m_at[1] & 0x3FU;
            if (length == 2)
                *m_place++ = static_cast<wchar_t>((first & 0x1F) << 6 | two);
            else if (length == 3)
                *m_place++ = static_cast<wchar_t>((first & 0xF) << 12 | two << 6 | (m_at[2] & 0x3FU));
            else
                m_place =
                    WriteCharacter(m_place, (first & 7) << 18 | two << 12 | (m_at[2] & 0x3FU) << 6 | (m_at[3] & 0x3FU));
            m_at += length;
            // Words end in single blanks.
            if (m_end - m_at >= 2 && *m_at == ' ' && m_at[1] >= 0x80)
                *m_place++ = *m_at++;
        } while (m_at < m_end && *m_at >= 0x80);
    }

    void ReadLineEnd() noexcept
    {
        ++m_at;
        if (m_at == m_end || *m_at != '\n')
            *m_place++ = L'\n';
    }

    void ReadReference() noexcept
    {
        // Its own characters stand where the one that it tells goes: there is room for all of them.
        size_t length = 0;
        do
            m_place[length++] = *m_at++;
        while (m_at < m_end && m_at[-1] != ';');
        unsigned int character = 0;
        if (vek::ReadReference(m_place, length, character))
            m_place = WriteCharacter(m_place, character);
        else
            m_place += length;
    }

    unsigned char const * m_at;
    unsigned char const * m_end;
    unsigned char const * m_readableEnd;
    wchar_t * m_place;
};

} // namespace

size_t ReadRawText(XMLRawText const & raw, bool hasReferences, wchar_t * place) noexcept
{
    return static_cast<size_t>(Reader(raw, place).Run(hasReferences) - place);
}

} // namespace vek
