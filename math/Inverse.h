#pragma once

#include "math/Pack.h"

#include <emmintrin.h>

namespace vek
{

/// The inverse of a 4 x 4 matrix by its cofactors, made of the 2 x 2 minors of its upper and its lower half (Laplace's
/// expansion), in double precision: for matrices that are far from singular, which are nearly all. The others are left
/// to elimination, which tells a singular matrix from one that is none, and loses fewer digits there.
template <class T>
class CofactorInverse
{
public:
    /// Writes the inverse, over the matrix if they are the same, or returns false and writes nothing.
    static bool Run(T const * matrix, T * inverse) noexcept
    {
        __m128d const smallest = SmallestDeterminant(matrix);
        Half const lower(matrix + 8), upper(matrix);
        __m128d determinant;
        if (!Determinant(upper, lower, smallest, determinant))
            return false;
        // The signs of a cofactor's row: + - in the first, - + in the next.
        __m128d const even = _mm_div_pd(_mm_set_pd(-1, 1), determinant), odd = Swap(even);
        __m128d left[4], right[4];
        Columns(upper, lower, even, odd, left);
        Columns(lower, upper, even, odd, right);
        for (int row = 0; row < 4; ++row)
            Store(inverse + row * 4, left[row], right[row]);
        return true;
    }

private:
    // By shuffles of whole numbers, which unlike those of doubles don't overwrite what they take.
    template <int Order>
    static __m128d Shuffled(__m128d pack) noexcept
    {
        return _mm_castsi128_pd(_mm_shuffle_epi32(_mm_castpd_si128(pack), Order));
    }
    static __m128d Low(__m128d pack) noexcept { return Shuffled<0x44>(pack); }
    static __m128d High(__m128d pack) noexcept { return Shuffled<0xEE>(pack); }
    static __m128d Swap(__m128d pack) noexcept { return Shuffled<0x4E>(pack); }

    static __m128 WithoutSign(__m128 pack) noexcept
    {
        return _mm_and_ps(pack, _mm_castsi128_ps(_mm_set1_epi32(0x7FFFFFFF)));
    }
    static __m128d WithoutSign(__m128d pack) noexcept
    {
        return _mm_and_pd(pack, _mm_castsi128_pd(_mm_set_epi32(0x7FFFFFFF, -1, 0x7FFFFFFF, -1)));
    }

    static void Load(float const * row, __m128d & low, __m128d & high) noexcept
    {
        __m128 const whole = _mm_loadu_ps(row);
        low = _mm_cvtps_pd(whole);
        high = _mm_cvtps_pd(_mm_movehl_ps(whole, whole));
    }
    static void Load(double const * row, __m128d & low, __m128d & high) noexcept
    {
        low = _mm_loadu_pd(row);
        high = _mm_loadu_pd(row + 2);
    }
    // Two rows of the matrix: the minors, by the columns that they are of, and the columns, the lower element first.
    struct Half
    {
        explicit Half(T const * rows) noexcept
        {
            __m128d a, b, c, d;
            Load(rows, a, b);
            Load(rows + 4, c, d);
            p02p13 = _mm_mul_pd(a, d);
            p03p12 = _mm_mul_pd(a, Swap(d));
            p01p23 = _mm_mul_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(c, d));
            m02m13 = _mm_sub_pd(p02p13, _mm_mul_pd(b, c));
            m03m12 = _mm_sub_pd(p03p12, _mm_mul_pd(Swap(b), c));
            m01m23 = _mm_sub_pd(p01p23, _mm_mul_pd(_mm_unpackhi_pd(a, b), _mm_unpacklo_pd(c, d)));
            c0 = _mm_unpacklo_pd(c, a);
            c1 = _mm_unpackhi_pd(c, a);
            c2 = _mm_unpacklo_pd(d, b);
            c3 = _mm_unpackhi_pd(d, b);
        }
        __m128d m01m23, m02m13, m03m12, c0, c1, c2, c3;
        __m128d p01p23, p02p13, p03p12; // what the minors were before the difference
    };

    // Two columns of the inverse, from the columns of one half and the minors of the other; each minor is done with
    // at once.
    static void Columns(Half const & own, Half const & other, __m128d even, __m128d odd, __m128d * result) noexcept
    {
        __m128d minor = High(other.m01m23);
        __m128d row0 = _mm_mul_pd(own.c1, minor), row1 = _mm_mul_pd(own.c0, minor);
        minor = High(other.m02m13);
        row0 = _mm_sub_pd(row0, _mm_mul_pd(own.c2, minor));
        __m128d row2 = _mm_mul_pd(own.c0, minor);
        minor = High(other.m03m12);
        row0 = _mm_add_pd(row0, _mm_mul_pd(own.c3, minor));
        __m128d row3 = _mm_mul_pd(own.c0, minor);
        result[0] = _mm_mul_pd(row0, even);
        minor = Low(other.m03m12);
        row1 = _mm_sub_pd(row1, _mm_mul_pd(own.c2, minor));
        row2 = _mm_sub_pd(row2, _mm_mul_pd(own.c1, minor));
        minor = Low(other.m02m13);
        row1 = _mm_add_pd(row1, _mm_mul_pd(own.c3, minor));
        row3 = _mm_sub_pd(row3, _mm_mul_pd(own.c1, minor));
        result[1] = _mm_mul_pd(row1, odd);
        minor = Low(other.m01m23);
        row2 = _mm_add_pd(row2, _mm_mul_pd(own.c3, minor));
        row3 = _mm_add_pd(row3, _mm_mul_pd(own.c2, minor));
        result[2] = _mm_mul_pd(row2, even);
        result[3] = _mm_mul_pd(row3, odd);
    }

    // The determinant in both lanes. False where it has lost more digits than T can spare, or is no larger than
    // smallest.
    static bool Determinant(Half const & u, Half const & l, __m128d smallest, __m128d & determinant) noexcept
    {
        __m128d const a = _mm_mul_pd(u.m01m23, Swap(l.m01m23)), b = _mm_mul_pd(u.m02m13, Swap(l.m02m13)),
                      c = _mm_mul_pd(u.m03m12, Swap(l.m03m12));
        __m128d const sums = _mm_add_pd(_mm_sub_pd(a, b), c);
        determinant = _mm_add_pd(sums, Swap(sums));
        __m128d magnitudes = _mm_add_pd(_mm_add_pd(WithoutSign(a), WithoutSign(b)), WithoutSign(c));
        // Products of two floats are exact.
        if constexpr (sizeof(T) == sizeof(double))
        {
            __m128d const minors = _mm_add_pd(_mm_add_pd(WithoutSign(_mm_mul_pd(u.p01p23, Swap(l.p01p23))),
                                                         WithoutSign(_mm_mul_pd(u.p02p13, Swap(l.p02p13)))),
                                              WithoutSign(_mm_mul_pd(u.p03p12, Swap(l.p03p12))));
            magnitudes = _mm_add_pd(magnitudes, minors);
        }
        __m128d const lost = _mm_mul_sd(_mm_add_sd(magnitudes, Swap(magnitudes)),
                                        _mm_set_sd(sizeof(T) == sizeof(float) ? 0x1p-20 : 0x1p-8));
        return _mm_cvtsd_f64(_mm_max_sd(lost, smallest)) < _mm_cvtsd_f64(WithoutSign(determinant));
    }

    // The sum with 0 turns zeros that a sign of the cofactors made negative.
    static void Store(float * row, __m128d low, __m128d high) noexcept
    {
        __m128 const whole = _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
        _mm_storeu_ps(row, _mm_add_ps(whole, _mm_setzero_ps()));
    }
    static void Store(double * row, __m128d low, __m128d high) noexcept
    {
        _mm_storeu_pd(row, _mm_add_pd(low, _mm_setzero_pd()));
        _mm_storeu_pd(row + 2, _mm_add_pd(high, _mm_setzero_pd()));
    }

    // Elimination never refuses a matrix whose determinant is this large beside the product of its columns' largest
    // elements. Returns that product times 2^-40, in the lower lane. It is infinite where elements are too large, and
    // not small where they are too small for this to tell.
    static __m128d SmallestDeterminant(float const * matrix) noexcept
    {
        auto const row = [&](int index) { return WithoutSign(_mm_loadu_ps(matrix + index * 4)); };
        __m128 const largest =
            _mm_max_ps(_mm_max_ps(_mm_max_ps(row(0), row(1)), _mm_max_ps(row(2), row(3))), _mm_set1_ps(0x1p-30f));
        __m128 const pairs = _mm_mul_ps(largest, _mm_movehl_ps(largest, largest));
        __m128 const product = _mm_mul_ss(pairs, _mm_shuffle_ps(pairs, pairs, 1));
        return _mm_mul_sd(_mm_cvtss_sd(_mm_setzero_pd(), product), _mm_set_sd(0x1p-40));
    }
    static __m128d SmallestDeterminant(double const * matrix) noexcept
    {
        __m128d const smallest = _mm_set1_pd(0x1p-100);
        auto const half = [&](int index) { return WithoutSign(_mm_loadu_pd(matrix + index)); };
        auto const largest = [&](int index)
        {
            return _mm_max_pd(
                _mm_max_pd(_mm_max_pd(half(index), half(index + 4)), _mm_max_pd(half(index + 8), half(index + 12))),
                smallest);
        };
        // Overflows early, so that no sum of three elements' products does.
        __m128d const pairs = _mm_mul_pd(_mm_mul_pd(largest(0), _mm_set1_pd(0x1p200)), largest(2));
        return _mm_mul_sd(_mm_mul_sd(pairs, Swap(pairs)), _mm_set_sd(0x1p-440));
    }
};

} // namespace vek
