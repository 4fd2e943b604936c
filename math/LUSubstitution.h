#pragma once

#include "base/Compiler.h"

#include <stddef.h>
#include <stdint.h>

#include <new>

namespace vek
{

/// Forward and back substitution with the factors of LUDecomposition: elements of type T, vectors of type V. Each sum
/// starts at 0 and takes its terms from low to high indices, as plain loops do.
template <class T, class V>
class LUSubstitution
{
public:
    LUSubstitution(T const * elements, unsigned int const * order, size_t size) noexcept
        : m_elements(elements), m_order(order), m_size(size)
    {
    }

    /// result may be src. Nothing happens without memory or with an order table that names other rows.
    VEK_ALWAYS_INLINE void Run(V const * src, V * result) const noexcept
    {
        for (size_t i = 0; i < m_size; ++i)
            if (m_order[i] >= m_size)
                return;
        if (m_size == 3)
            return SolveSmall<3>(src, result);
        if (m_size == 4)
            return SolveSmall<4>(src, result);
        if (m_size <= SMALL_SIZE)
            return SolveOnStack(src, result);
        V * const y = m_size <= PTRDIFF_MAX / sizeof(V) ? new (std::nothrow) V[m_size] : nullptr;
        if (y)
            Solve(src, y, result);
        delete[] y;
    }

private:
    static constexpr size_t SMALL_SIZE = 64, GROUP = 4;

    T const * Row(size_t i) const noexcept { return m_elements + static_cast<size_t>(m_order[i]) * m_size; }

    VEK_NEVER_INLINE void SolveOnStack(V const * src, V * result) const noexcept
    {
        V small[SMALL_SIZE];
        Solve(src, small, result);
    }

    void Solve(V const * src, V * y, V * result) const noexcept
    {
        size_t i = 0;
        for (; i + GROUP <= m_size; i += GROUP)
            ForwardGroup(i, src, y);
        for (; i < m_size; ++i)
            y[i] = src[m_order[i]] - Sum(Row(i), 0, i, V(0), y);
        while (i-- > 0)
        {
            T const * const row = Row(i);
            result[i] = (y[i] - Sum(row, i + 1, m_size, V(0), result)) / static_cast<V>(row[i]);
        }
    }

    // The sizes of transforms, unrolled.
    template <size_t N>
    void SolveSmall(V const * src, V * result) const noexcept
    {
        V y[N], x[N];
        VEK_UNROLL(4)
        for (size_t i = 0; i < N; ++i)
        {
            T const * const row = m_elements + m_order[i] * N;
            V sum = 0;
            VEK_UNROLL(4)
            for (size_t j = 0; j < i; ++j)
                sum += static_cast<V>(row[j]) * y[j];
            y[i] = src[m_order[i]] - sum;
        }
        VEK_UNROLL(4)
        for (size_t done = 0; done < N; ++done)
        {
            size_t const i = N - 1 - done;
            T const * const row = m_elements + m_order[i] * N;
            V sum = 0;
            VEK_UNROLL(4)
            for (size_t j = i + 1; j < N; ++j)
                sum += static_cast<V>(row[j]) * x[j];
            result[i] = x[i] = (y[i] - sum) / static_cast<V>(row[i]);
        }
    }

    // Four sums at a time: one alone would wait for each of its additions.
    void ForwardGroup(size_t i, V const * src, V * y) const noexcept
    {
        T const * const rows[GROUP] = {Row(i), Row(i + 1), Row(i + 2), Row(i + 3)};
        V sums[GROUP] = {};
        for (size_t j = 0; j < i; ++j)
        {
            VEK_UNROLL(4)
            for (size_t r = 0; r < GROUP; ++r)
                sums[r] += static_cast<V>(rows[r][j]) * y[j];
        }
        V own[GROUP];
        VEK_UNROLL(4)
        for (size_t r = 0; r < GROUP; ++r)
        {
            y[i + r] = own[r] = src[m_order[i + r]] - sums[r];
            VEK_UNROLL(4)
            for (size_t below = r + 1; below < GROUP; ++below)
                sums[below] += static_cast<V>(rows[below][i + r]) * own[r];
        }
    }

    static V Sum(T const * row, size_t begin, size_t end, V sum, V const * values) noexcept
    {
        for (size_t j = begin; j < end; ++j)
            sum += static_cast<V>(row[j]) * values[j];
        return sum;
    }

    T const * m_elements;
    unsigned int const * m_order;
    size_t m_size;
};

} // namespace vek
