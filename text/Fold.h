#pragma once

#include <emmintrin.h>

namespace vek
{

/// Folds the letters a-z to upper case and nothing else.
template <class T>
constexpr T FoldAscii(T unit) noexcept
{
    return unit >= T('a') && unit <= T('z') ? static_cast<T>(unit - ('a' - 'A')) : unit;
}

/// The same for 8 wide or 16 narrow characters: the letters are the lowest numbers when their first one is the lowest.
inline __m128i FoldAscii(__m128i units) noexcept
{
    __m128i const ranks = _mm_add_epi16(units, _mm_set1_epi16(static_cast<short>(0x8000 - 'a')));
    __m128i const letters = _mm_cmplt_epi16(ranks, _mm_set1_epi16(static_cast<short>(-0x8000 + 26)));
    return _mm_sub_epi16(units, _mm_and_si128(letters, _mm_set1_epi16('a' - 'A')));
}
inline __m128i FoldAsciiBytes(__m128i units) noexcept
{
    __m128i const ranks = _mm_add_epi8(units, _mm_set1_epi8(static_cast<char>(0x80 - 'a')));
    __m128i const letters = _mm_cmplt_epi8(ranks, _mm_set1_epi8(static_cast<char>(-0x80 + 26)));
    return _mm_sub_epi8(units, _mm_and_si128(letters, _mm_set1_epi8('a' - 'A')));
}

/// Whether two pieces of the same length are equal when the letters a-z are folded.
inline bool EqualsNoCase(char const * a, char const * b, int length) noexcept
{
    for (int i = 0; i < length; ++i)
        if (FoldAscii(a[i]) != FoldAscii(b[i]))
            return false;
    return true;
}
inline bool EqualsNoCase(wchar_t const * a, wchar_t const * b, int length) noexcept
{
    int i = 0;
    for (; i <= length - 8; i += 8)
    {
        __m128i const x = _mm_loadu_si128(reinterpret_cast<__m128i const *>(a + i));
        __m128i const y = _mm_loadu_si128(reinterpret_cast<__m128i const *>(b + i));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(FoldAscii(x), FoldAscii(y))) != 0xFFFF)
            return false;
    }
    for (; i < length; ++i)
        if (FoldAscii(a[i]) != FoldAscii(b[i]))
            return false;
    return true;
}

/// Whether two texts of known lengths are equal when the letters a-z are folded: for look-ups by name.
inline bool EqualsNoCase(wchar_t const * a, int lengthA, wchar_t const * b, int lengthB) noexcept
{
    if (lengthA != lengthB)
        return false;
    return lengthA <= 0 || (FoldAscii(a[0]) == FoldAscii(b[0]) && EqualsNoCase(a, b, lengthA));
}

} // namespace vek
