#pragma once

#include "text/CharTraits.h"
#include "text/Fold.h"

#include <stdint.h>

#include <bit>

namespace vek
{

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

/// Walks two terminated texts together over at most limit characters: -1, 0 or 1.
template <bool caseSensitive, class T>
int WalkTexts(T const * first, T const * second, size_t limit) noexcept
{
    for (size_t i = 0; i < limit; ++i)
    {
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
