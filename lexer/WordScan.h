#pragma once

#include "base/Compiler.h"
#include "lexer/CharClass.h"

#include <emmintrin.h>
#include <stddef.h>
#include <stdint.h>

#include <bit>

namespace vek
{

/// The first of 8 characters, and zeros.
inline __m128i KeepFirst(__m128i units, size_t count) noexcept
{
    static uint16_t const keep[16] = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
    return _mm_and_si128(units, _mm_loadu_si128(reinterpret_cast<__m128i const *>(keep + 8 - count)));
}

/// Hashes texts without regard to the case of ASCII letters, 8 characters at a time. Each text is given in whole blocks
/// and a last one, which may be empty.
class WordHash
{
public:
    void Add(__m128i units) noexcept
    {
        __m128i const folded = _mm_or_si128(units, _mm_set1_epi16(0x20));
        __m128i const weights = _mm_setr_epi16(0x6A09, 0x3C6F, 0x510F, 0x1F83, 0x5BE1, 0x2B7F, 0x7127, 0x4E35);
        __m128i const turned = _mm_or_si128(_mm_slli_epi32(m_sums, 7), _mm_srli_epi32(m_sums, 25));
        m_sums = _mm_add_epi32(turned, _mm_madd_epi16(folded, weights));
    }
    void AddLast(__m128i units, size_t count) noexcept { Add(KeepFirst(units, count)); }
    uint32_t Get() const noexcept
    {
        __m128i const halves = _mm_add_epi32(m_sums, _mm_shuffle_epi32(m_sums, _MM_SHUFFLE(1, 0, 3, 2)));
        __m128i const sum = _mm_add_epi32(halves, _mm_shuffle_epi32(halves, _MM_SHUFFLE(2, 3, 0, 1)));
        uint32_t const hash = static_cast<uint32_t>(_mm_cvtsi128_si32(sum)) * 0x9E3779B1U;
        return hash ^ hash >> 15;
    }

private:
    __m128i m_sums = _mm_setzero_si128();
};

/// So many characters, fewer than 8, the others 0. Rare: a text's last ones.
__m128i LoadPart(wchar_t const * text, size_t count) noexcept;

inline uint32_t HashOf(wchar_t const * text, size_t length) noexcept
{
    WordHash hash;
    for (; length >= 8; text += 8, length -= 8)
        hash.Add(_mm_loadu_si128(reinterpret_cast<__m128i const *>(text)));
    hash.AddLast(LoadPart(text, length), length);
    return hash.Get();
}
/// The same for a text that stands in whole blocks of 8 characters.
inline uint32_t HashOfBlocks(wchar_t const * text, size_t length) noexcept
{
    WordHash hash;
    for (; length >= 8; text += 8, length -= 8)
        hash.Add(_mm_loadu_si128(reinterpret_cast<__m128i const *>(text)));
    hash.AddLast(_mm_loadu_si128(reinterpret_cast<__m128i const *>(text)), length);
    return hash.Get();
}

/// The leading letters, digits and underscores among 8 characters.
inline size_t CountWordUnits(__m128i units) noexcept
{
    // The characters from first on are the lowest numbers when that is the lowest.
    auto const isAmong = [](__m128i unit, char first, int count)
    {
        __m128i const ranks = _mm_add_epi16(unit, _mm_set1_epi16(static_cast<short>(0x8000 - first)));
        return _mm_cmplt_epi16(ranks, _mm_set1_epi16(static_cast<short>(-0x8000 + count)));
    };
    __m128i const letters = isAmong(_mm_or_si128(units, _mm_set1_epi16(0x20)), 'a', 26);
    __m128i const digits = isAmong(units, '0', 10);
    __m128i const underscores = _mm_cmpeq_epi16(units, _mm_set1_epi16('_'));
    int const inWord = _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(letters, digits), underscores));
    unsigned int const others = ~static_cast<unsigned int>(inWord);
    VEK_ASSUME(others != 0); // there are but 16 bits
    return static_cast<size_t>(std::countr_zero(others)) / 2;
}

// What a scanned word's copy needs behind it: whole blocks are stored.
constexpr size_t WORD_SLACK = 8;

/// Copies the word at the place, at most that many characters of it, and terminates it. Returns its length.
inline size_t ScanWord(wchar_t const * text, size_t available, wchar_t * copy) noexcept
{
    size_t length = 0;
    size_t units = 8;
    while (units == 8)
    {
        size_t const rest = available - length;
        bool const isWhole = rest >= 8;
        __m128i const block =
            isWhole ? _mm_loadu_si128(reinterpret_cast<__m128i const *>(text + length)) : LoadPart(text + length, rest);
        units = CountWordUnits(block);
        // The terminator goes with them: whoever loads the whole block next need not wait for two stores.
        _mm_storeu_si128(reinterpret_cast<__m128i *>(copy + length), KeepFirst(block, units));
        length += units;
    }
    return length;
}

} // namespace vek
