#pragma once

#include "base/Compiler.h"
#include "math/Pack.h"

#include <stddef.h>
#include <string.h>

namespace vek
{

/// Doolittle's elimination with partial pivoting through an order table, of elements of type T with a determinant of
/// type D. Every element undergoes the operations of the plain loop over k, i, j in the plain loop's order:
///     a[i][j] = a[i][j] - a[k][j] * a[i][k], for k = 0, 1, 2 ...
/// one rounded product and one rounded difference each, so that blocking and packs change no bit of the result. A
/// block of columns is factored first; then its steps are applied to the columns on its right, for which the elements
/// of a tile stay in registers over all the block's steps.
template <class T, class D>
class LUDecomposition
{
public:
    LUDecomposition(T * elements, unsigned int * order, size_t size) noexcept
        : m_elements(elements), m_order(order), m_size(size), m_determinant(1)
    {
    }

    /// The determinant, or 0 at a pivot of 0. The size is not 0.
    D Run() noexcept
    {
        if (m_size == 3)
            return RunSmall<3>();
        if (m_size == 4)
            return RunSmall<4>();
        for (size_t i = 0; i < m_size; ++i)
            m_order[i] = static_cast<unsigned int>(i);
        // Kept: the last diagonal element is no pivot and never compared with 0.
        size_t const pivots = m_size - 1;
        if (FactorBlocks<LEVELS>(0, pivots, m_size) < pivots)
            return 0;
        return static_cast<D>(Row(pivots)[pivots]) * m_determinant;
    }

private:
    using P = Pack<T>;
    static constexpr size_t LANES = P::LANES;
    // The widths of the blocks of each level, and the bytes of their pivots' rows that are worked with at once: they
    // and the factors of some other rows stay in the first cache.
    static constexpr int LEVELS = 3;
    static constexpr size_t WIDTHS[LEVELS + 1] = {1, 8, 32, 128};
    static constexpr size_t STRIP_BYTES = 16384;
    // The tile: as many packs as the registers hold beside a row's packs and their product.
    static constexpr size_t TILE_ROWS = 4, TILE_PACKS = sizeof(void *) == 4 ? 1 : 2;
    static constexpr size_t TILE_COLUMNS = TILE_PACKS * LANES;

    // The sizes of transforms, unrolled.
    template <size_t N>
    D RunSmall() noexcept
    {
        SmallState<N> state;
        bool const regular = SmallSteps<N, 0>(state);
        for (size_t i = 0; i < N; ++i)
            m_order[i] = static_cast<unsigned int>(state.rows[i] / N);
        if (!regular)
            return 0;
        constexpr D SIGNS[] = {1, -1};
        return static_cast<D>(m_elements[state.rows[N - 1] + N - 1]) * m_determinant * SIGNS[state.negative];
    }

    template <size_t N>
    struct SmallState
    {
        SmallState() noexcept
        {
            for (size_t i = 0; i < N; ++i)
                rows[i] = i * N;
        }
        size_t rows[N]; // the index of each row's first element
        bool negative = false;
    };

    template <size_t N, size_t K>
    VEK_ALWAYS_INLINE bool SmallSteps(SmallState<N> & state) noexcept
    {
        if constexpr (K + 1 < N)
        {
            FindSmallPivot<N, K>(state);
            T const * const pivotRow = m_elements + state.rows[K];
            T pivots[N];
            VEK_UNROLL(4)
            for (size_t j = K; j < N; ++j)
                pivots[j] = pivotRow[j];
            if (pivots[K] == T(0))
                return false;
            m_determinant = m_determinant * static_cast<D>(pivots[K]);
            VEK_UNROLL(4)
            for (size_t i = K + 1; i < N; ++i)
            {
                T * const row = m_elements + state.rows[i];
                T const factor = row[K] = row[K] / pivots[K];
                VEK_UNROLL(4)
                for (size_t j = K + 1; j < N; ++j)
                    row[j] = row[j] - pivots[j] * factor;
            }
            return SmallSteps<N, K + 1>(state);
        }
        return true;
    }

    // Chooses instead of jumping: no processor foresees these jumps.
    template <size_t N, size_t K>
    VEK_ALWAYS_INLINE void FindSmallPivot(SmallState<N> & state) const noexcept
    {
        T largest = WithoutSign(m_elements[state.rows[K] + K]);
        VEK_UNROLL(4)
        for (size_t i = K + 1; i < N; ++i)
        {
            size_t const upper = state.rows[K], lower = state.rows[i];
            T const magnitude = WithoutSign(m_elements[lower + K]);
            bool const larger = magnitude > largest;
            size_t const exchange = (upper ^ lower) & (size_t{0} - static_cast<size_t>(larger));
            largest = larger ? magnitude : largest;
            state.rows[K] = upper ^ exchange;
            state.rows[i] = lower ^ exchange;
            state.negative ^= larger;
        }
    }

    T * Row(size_t i) const noexcept { return m_elements + static_cast<size_t>(m_order[i]) * m_size; }

    // Each larger element below becomes the pivot at once, so that the order table is as a plain search leaves it.
    void FindPivot(size_t k) noexcept
    {
        T largest = WithoutSign(Row(k)[k]);
        for (size_t i = k + 1; i < m_size; ++i)
        {
            T const magnitude = WithoutSign(Row(i)[k]);
            if (!(magnitude > largest))
                continue;
            unsigned int const row = m_order[i];
            m_order[i] = m_order[k];
            m_order[k] = row;
            m_determinant = -m_determinant;
            largest = magnitude;
        }
    }

    // The plain loop for the pivots first to last - 1, on the columns up to end. Returns the first pivot not done.
    size_t FactorColumns(size_t first, size_t last, size_t end) noexcept
    {
        for (size_t k = first; k < last; ++k)
        {
            FindPivot(k);
            T const * const pivotRow = Row(k);
            T const pivot = pivotRow[k];
            if (pivot == T(0))
                return k;
            m_determinant = m_determinant * static_cast<D>(pivot);
            for (size_t i = k + 1; i < m_size; ++i)
            {
                T * const row = Row(i);
                T const factor = row[k] = row[k] / pivot;
                size_t j = k + 1;
                for (P const factors = Splat(factor); j + LANES <= end; j += LANES)
                    StorePack(row + j, LoadPack(row + j) - LoadPack(pivotRow + j) * factors);
                for (; j < end; ++j)
                    row[j] = row[j] - pivotRow[j] * factor;
            }
        }
        return last;
    }

    // The same by blocks. Level 3 has the largest ones, each factored by the blocks of level 2, and so on.
    template <int Level>
    size_t FactorBlocks(size_t first, size_t last, size_t end) noexcept
    {
        if constexpr (Level == 0)
            return FactorColumns(first, last, end);
        else
        {
            for (size_t begin = first, next; begin < last; begin = next)
            {
                next = last - begin < WIDTHS[Level] ? last : begin + WIDTHS[Level];
                size_t const own = end - next < LANES ? end : next; // a few columns more don't pay for a block
                size_t const done = FactorBlocks<Level - 1>(begin, next, own);
                // A pivot of 0 ends it: all columns are left at the same step.
                if (done > begin && own < end)
                    ApplySteps<Level>(begin, done, own, end, m_size);
                if (done < next)
                    return done;
            }
            return last;
        }
    }

    // Applies the steps of the pivots first to last - 1, a block of that level, to the columns begin to end - 1 of the
    // rows below the first up to rowEnd. The pivots' own rows come first, those of a large block by smaller ones.
    template <int Level>
    void ApplySteps(size_t first, size_t last, size_t begin, size_t end, size_t rowEnd) noexcept
    {
        constexpr bool LARGE = Level == LEVELS;
        if constexpr (LARGE)
            for (size_t block = first; block < last; block += WIDTHS[Level - 1])
                ApplySteps<Level - 1>(block, last - block < WIDTHS[Level - 1] ? last : block + WIDTHS[Level - 1], begin,
                                      end, last);
        constexpr size_t CHUNK = STRIP_BYTES / sizeof(T) / WIDTHS[Level];
        static_assert(CHUNK % TILE_COLUMNS == 0);
        alignas(16) T strip[WIDTHS[Level] * CHUNK];
        size_t const depth = last - first;
        for (size_t column = begin, width; column < end; column += width)
        {
            width = end - column < CHUNK ? end - column : CHUNK;
            size_t const padded = (width + TILE_COLUMNS - 1) / TILE_COLUMNS * TILE_COLUMNS;
            for (size_t k = 0; k < depth; ++k)
            {
                if constexpr (!LARGE)
                    Subtract<1, Level>(strip, padded, first + k, first, k, column, width);
                T * const copy = strip + k * padded;
                memcpy(copy, Row(first + k) + column, width * sizeof(T));
                for (size_t j = width; j < padded; ++j)
                    copy[j] = 0;
            }
            size_t i = last;
            for (; i + TILE_ROWS <= rowEnd; i += TILE_ROWS)
                Subtract<TILE_ROWS, Level>(strip, padded, i, first, depth, column, width);
            for (; i < rowEnd; ++i)
                Subtract<1, Level>(strip, padded, i, first, depth, column, width);
        }
    }

    // For R rows from row on: subtracts the first depth of the pivot rows, times the rows' factors in the columns from
    // first on.
    template <size_t R, int Level>
    void Subtract(T const * pivotRows, size_t stride, size_t row, size_t first, size_t depth, size_t column,
                  size_t width) noexcept
    {
        if (depth == 0)
            return;
        T * rows[R];
        P factors[WIDTHS[Level] * R];
        for (size_t r = 0; r < R; ++r)
        {
            T * const whole = Row(row + r);
            rows[r] = whole + column;
            for (size_t k = 0; k < depth; ++k)
                factors[k * R + r] = Splat(whole[first + k]);
        }
        size_t j = 0;
        for (; j + TILE_COLUMNS <= width; j += TILE_COLUMNS)
        {
            SubtractTile<R>(rows, pivotRows + j, stride, factors, depth);
            for (size_t r = 0; r < R; ++r)
                rows[r] += TILE_COLUMNS;
        }
        if (j == width)
            return;
        // The columns that are left, through a tile of their own.
        T rest[R][TILE_COLUMNS] = {};
        T * restRows[R];
        for (size_t r = 0; r < R; ++r)
            memcpy(restRows[r] = rest[r], rows[r], (width - j) * sizeof(T));
        SubtractTile<R>(restRows, pivotRows + j, stride, factors, depth);
        for (size_t r = 0; r < R; ++r)
            memcpy(rows[r], rest[r], (width - j) * sizeof(T));
    }

    template <size_t R>
    static void SubtractTile(T * const * rows, T const * pivotRows, size_t stride, P const * factors,
                             size_t depth) noexcept
    {
        P tile[R][TILE_PACKS];
        VEK_UNROLL(8)
        for (size_t r = 0; r < R; ++r)
        {
            VEK_UNROLL(8)
            for (size_t c = 0; c < TILE_PACKS; ++c)
                tile[r][c] = LoadPack(rows[r] + c * LANES);
        }
        for (size_t k = 0; k < depth; ++k, pivotRows += stride, factors += R)
        {
            P pivots[TILE_PACKS];
            VEK_UNROLL(8)
            for (size_t c = 0; c < TILE_PACKS; ++c)
                pivots[c] = LoadAlignedPack(pivotRows + c * LANES);
            VEK_UNROLL(8)
            for (size_t r = 0; r < R; ++r)
            {
                VEK_UNROLL(8)
                for (size_t c = 0; c < TILE_PACKS; ++c)
                    tile[r][c] = tile[r][c] - pivots[c] * factors[r];
            }
        }
        VEK_UNROLL(8)
        for (size_t r = 0; r < R; ++r)
        {
            VEK_UNROLL(8)
            for (size_t c = 0; c < TILE_PACKS; ++c)
                StorePack(rows[r] + c * LANES, tile[r][c]);
        }
    }

    T * m_elements;
    unsigned int * m_order;
    size_t m_size;
    D m_determinant;
};

} // namespace vek
