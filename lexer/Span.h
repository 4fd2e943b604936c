// Where tokens end: shared by the lexer and by the tokenizer, which is told only where they begin.
#pragma once

#include "lexer/CharClass.h"

#include <emmintrin.h>
#include <stddef.h>

#include <bit>

namespace vek
{

// Longer words, numbers and runs are cut, and the rest is scanned as another token.
constexpr size_t LONGEST_WORD = 1024;
constexpr size_t LONGEST_STRING = 2048;

inline size_t Available(wchar_t const * at, wchar_t const * end, size_t limit) noexcept
{
    size_t const rest = static_cast<size_t>(end - at);
    return rest < limit ? rest : limit;
}

/// The first place of either unit, or the end.
inline wchar_t const * FindEither(wchar_t const * at, wchar_t const * end, wchar_t first, wchar_t second) noexcept
{
    __m128i const firsts = _mm_set1_epi16(static_cast<short>(first));
    __m128i const seconds = _mm_set1_epi16(static_cast<short>(second));
    for (; end - at >= 8; at += 8)
    {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(at));
        int const hits =
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi16(units, firsts), _mm_cmpeq_epi16(units, seconds)));
        if (hits != 0)
            return at + std::countr_zero(static_cast<unsigned int>(hits)) / 2;
    }
    while (at != end && *at != first && *at != second)
        ++at;
    return at;
}

/// A number: its characters, and whether it has a point and a letter right behind that spoils it.
struct NumberSpan
{
    size_t length;
    bool hasPoint;
    bool isSpoilt;
};

/// The number that begins with the minus sign or digit at the place.
inline NumberSpan MeasureNumber(wchar_t const * at, wchar_t const * end) noexcept
{
    size_t const limit = Available(at, end, LONGEST_WORD);
    NumberSpan span = {1, false, false};
    for (; span.length < limit; ++span.length)
    {
        wchar_t const unit = at[span.length];
        uint8_t const unitClass = ClassOf(unit);
        if (unitClass == CLASS_DIGIT)
            continue;
        if (unit == L'.' && !span.hasPoint)
        {
            span.hasPoint = true;
            continue;
        }
        // Kept: "0x" is no prefix. It would be one only for a lone 0 with a point, which can't be; so the x spoils.
        span.isSpoilt = unitClass == CLASS_WORD;
        break;
    }
    return span;
}

/// The characters of the run of operators at the place.
inline size_t MeasureRun(wchar_t const * at, wchar_t const * end) noexcept
{
    size_t const limit = Available(at, end, LONGEST_WORD);
    size_t length = 0;
    while (length < limit && !(ClassOf(at[length]) & CLASS_ENDS_RUN))
        ++length;
    return length;
}

/// The characters of a string whose opening quote stands before the place. A closing one behind the longest string
/// is not its own.
inline size_t MeasureString(wchar_t const * at, wchar_t const * end) noexcept
{
    return static_cast<size_t>(FindEither(at, at + Available(at, end, LONGEST_STRING), L'"', L'"') - at);
}

} // namespace vek
