#pragma once

#include "text/Scan.h"

#include <limits.h>

#include <bit>

namespace vek
{

/// Finds a pattern in a text by the first and the last character of the pattern, 16 bytes of positions at once.
template <class T>
class PatternSearch
{
public:
    /// The pattern must not be empty.
    PatternSearch(T const * pattern, int length, bool caseSensitive) noexcept
        : m_pattern(pattern), m_length(length), m_caseSensitive(caseSensitive),
          m_firstBit(CharTraits<T>::Splat(CaseBit(pattern[0]))),
          m_lastBit(CharTraits<T>::Splat(CaseBit(pattern[length - 1]))),
          m_first(_mm_or_si128(CharTraits<T>::Splat(pattern[0]), m_firstBit)),
          m_last(_mm_or_si128(CharTraits<T>::Splat(pattern[length - 1]), m_lastBit))
    {
    }

    /// The first match at or after start in a text of known length, or -1.
    int FindIn(T const * text, int length, int start) const noexcept
    {
        int const end = length - m_length + 1;
        int position = start;
        for (; position <= end - 2 * LANES; position += 2 * LANES)
        {
            unsigned int const hits = Candidates(text + position) | Candidates(text + position + LANES) << 16;
            if (hits != 0)
                if (int const found = FirstMatch(text, position, hits); found >= 0)
                    return found;
        }
        for (; position <= end - LANES; position += LANES)
            if (int const found = FirstMatch(text, position, Candidates(text + position)); found >= 0)
                return found;
        for (; position < end; ++position)
            if (MatchesAt(text + position))
                return position;
        return -1;
    }

    bool MatchesAt(T const * place) const noexcept
    {
        return m_caseSensitive ? place[0] == m_pattern[0] && EqualsPattern(place)
                               : FoldAscii(place[0]) == FoldAscii(m_pattern[0]) && EqualsPattern(place);
    }

private:
    static constexpr int LANES = static_cast<int>(sizeof(__m128i) / sizeof(T));

    // The bit that makes both cases of a letter equal; no other character becomes that letter by it.
    T CaseBit(T unit) const noexcept
    {
        T const folded = FoldAscii(unit);
        return !m_caseSensitive && folded >= T('A') && folded <= T('Z') ? T('a' - 'A') : T(0);
    }
    static __m128i Load(T const * place) noexcept { return _mm_loadu_si128(reinterpret_cast<__m128i const *>(place)); }

    unsigned int Candidates(T const * place) const noexcept
    {
        __m128i const first = CharTraits<T>::Equal(_mm_or_si128(Load(place), m_firstBit), m_first);
        __m128i const last = CharTraits<T>::Equal(_mm_or_si128(Load(place + m_length - 1), m_lastBit), m_last);
        return static_cast<unsigned int>(_mm_movemask_epi8(_mm_and_si128(first, last)));
    }
    int FirstMatch(T const * text, int position, unsigned int hits) const noexcept
    {
        constexpr unsigned int LANE = (1U << sizeof(T)) - 1;
        while (hits != 0)
        {
            int const bit = std::countr_zero(hits);
            int const candidate = position + bit / static_cast<int>(sizeof(T));
            if (EqualsPattern(text + candidate))
                return candidate;
            hits &= ~(LANE << bit);
        }
        return -1;
    }
    bool EqualsPattern(T const * place) const noexcept
    {
        return m_caseSensitive ? memcmp(place, m_pattern, static_cast<size_t>(m_length) * sizeof(T)) == 0
                               : EqualsNoCase(place, m_pattern, m_length);
    }

    T const * m_pattern;
    int m_length;
    bool m_caseSensitive;
    __m128i m_firstBit;
    __m128i m_lastBit;
    __m128i m_first;
    __m128i m_last;
};

} // namespace vek
