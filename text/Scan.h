#pragma once

#include "text/CharTraits.h"
#include "text/Fold.h"

#include <stdint.h>

#include <algorithm>
#include <bit>

namespace vek
{

// What is read within a page together with a character that may be read is there, whoever it belongs to. No system has
// smaller pages.
constexpr size_t SMALLEST_PAGE = 4096;

/// The number of characters before the terminator, or max when none stands before that.
template <class T>
size_t BoundedLength(T const * text, size_t max) noexcept
{
    size_t length = 0;
    // Aligned loads never cross into a page that the text has no part in.
    while (length < max && reinterpret_cast<uintptr_t>(text + length) % sizeof(__m128i) != 0)
    {
        if (!text[length])
            return length;
        // A text at an odd address never gets aligned: this loop reads all of it.
        ++length;
    }
    __m128i const zero = _mm_setzero_si128();
    for (; length < max; length += sizeof(__m128i) / sizeof(T))
    {
        __m128i const units = _mm_load_si128(reinterpret_cast<__m128i const *>(text + length));
        int const ends = _mm_movemask_epi8(CharTraits<T>::Equal(units, zero));
        if (ends != 0)
        {
            length += static_cast<size_t>(std::countr_zero(static_cast<unsigned int>(ends))) / sizeof(T);
            break;
        }
    }
    return length < max ? length : max;
}

/// The number of characters before the terminator.
template <class T>
size_t TextLength(T const * text) noexcept
{
    return BoundedLength(text, PTRDIFF_MAX / sizeof(T));
}

/// How many blocks of 16 bytes can be read from the place within its page.
template <class T>
size_t BlocksInPage(T const * place) noexcept
{
    return (SMALLEST_PAGE - reinterpret_cast<uintptr_t>(place) % SMALLEST_PAGE) / sizeof(__m128i);
}

/// A count of leading characters that are the same in both texts, without a terminator among them: all of them, or as
/// many as whole blocks of 16 bytes have up to the end of a page.
template <bool caseSensitive, class T>
size_t EqualBeginning(T const * first, T const * second, size_t limit) noexcept
{
    constexpr size_t LANES = sizeof(__m128i) / sizeof(T);
    size_t const blocks = std::min({limit / LANES, BlocksInPage(first), BlocksInPage(second)});
    size_t same = 0;
    for (; same < blocks * LANES; same += LANES)
    {
        __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(first + same));
        __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(second + same));
        __m128i const equal =
            caseSensitive ? _mm_cmpeq_epi8(a, b) : _mm_cmpeq_epi8(CharTraits<T>::Fold(a), CharTraits<T>::Fold(b));
        __m128i const ends = CharTraits<T>::Equal(a, _mm_setzero_si128());
        int const others = _mm_movemask_epi8(_mm_andnot_si128(ends, equal)) ^ 0xFFFF;
        if (others != 0)
            return same + static_cast<size_t>(std::countr_zero(static_cast<unsigned int>(others))) / sizeof(T);
    }
    return same;
}

/// Walks two terminated texts together over at most limit characters: -1, 0 or 1.
template <bool caseSensitive, class T>
int WalkTexts(T const * first, T const * second, size_t limit) noexcept
{
    constexpr size_t LANES = sizeof(__m128i) / sizeof(T);
    for (size_t i = 0; i < limit; ++i)
    {
        // Most texts differ in their first characters. Later blocks are tried again behind each border of pages.
        if (i % LANES == 1)
        {
            i += EqualBeginning<caseSensitive>(first + i, second + i, limit - i);
            if (i == limit)
                return 0;
        }
        T const a = caseSensitive ? first[i] : FoldAscii(first[i]);
        T const b = caseSensitive ? second[i] : FoldAscii(second[i]);
        if (a == b)
        {
            if (a == 0)
                return 0;
            continue;
        }
        // A text that ends sorts first, also before the negative narrow characters.
        if (a == 0 || b == 0)
            return a == 0 ? -1 : 1;
        return CharTraits<T>::Order(a) < CharTraits<T>::Order(b) ? -1 : 1;
    }
    return 0;
}

template <class T>
int CompareTexts(T const * first, T const * second, size_t limit, bool caseSensitive) noexcept
{
    return caseSensitive ? WalkTexts<true>(first, second, limit) : WalkTexts<false>(first, second, limit);
}

/// A count of leading characters that are the same in both texts of at least that length: whole blocks of 16 bytes.
template <class T>
size_t EqualBlocks(T const * first, T const * second, size_t length) noexcept
{
    constexpr size_t LANES = sizeof(__m128i) / sizeof(T);
    size_t same = 0;
    for (; same + LANES <= length; same += LANES)
    {
        __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(first + same));
        __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(second + same));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)) != 0xFFFF)
            break;
    }
    return same;
}

/// Copies at most max characters (-1: all; other negatives: none) and terminates. The arrays may overlap.
template <class T>
void CopyBounded(T * target, T const * source, int max) noexcept
{
    size_t const length = max == -1 ? TextLength(source)
                          : max > 0 ? BoundedLength(source, static_cast<size_t>(max))
                                    : 0;
    memmove(target, source, length * sizeof(T));
    target[length] = 0;
}

} // namespace vek
