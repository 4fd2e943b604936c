// The knots of a NURBS curve: finding the span of a parameter, and the basis functions on it.
#pragma once

#include "VekNurbs.h"

#include "base/Compiler.h"

namespace vek
{

/// The index of the knot span of a parameter of the domain: knots[span] <= parameter < knots[span + 1], or the last
/// span that is not empty for the domain's end. (After P & T, A2.1.)
template <class T>
unsigned int FindSpan(T const * knots, unsigned int degree, unsigned int pointCount, T parameter) noexcept
{
    unsigned int high = pointCount;
    if (!(parameter < knots[high]))
    {
        while (knots[high - 1] == knots[pointCount])
            --high;
        return high - 1;
    }
    // No branch depends on the parameter: scattered ones would be mispredicted half of the time.
    T const * low = knots + degree;
    for (unsigned int width = high - degree; width > 1;)
    {
        unsigned int const half = width / 2;
        low = parameter < low[half] ? low : low + half;
        width -= half;
    }
    return static_cast<unsigned int>(low - knots);
}

/// The next span after this one that is not empty; the number of points when there is none.
template <class T>
unsigned int NextSpan(T const * knots, unsigned int pointCount, unsigned int span) noexcept
{
    do
        ++span;
    while (span < pointCount && knots[span] == knots[span + 1]);
    return span;
}

/// The first span of the domain.
template <class T>
unsigned int FirstSpan(T const * knots, unsigned int degree, unsigned int pointCount) noexcept
{
    return NextSpan(knots, pointCount, degree - 1);
}

/// The parameter, or the nearer end of the domain; its start for NaN.
template <class T>
T ClampToDomain(CVekNurbsCurve<T> const & curve, T parameter) noexcept
{
    T const start = curve.GetStart();
    T const end = curve.GetEnd();
    return parameter > start ? (parameter < end ? parameter : end) : start;
}

/// The degree + 1 basis functions that are not 0 on a span; knots points at the span's first knot. The ratios of knot
/// differences can't overflow, however short a span is. The loops are unrolled where the degree is a constant. (After
/// P & T, A2.2.)
template <class T>
inline void BasisFunctions(T const * knots, unsigned int degree, T parameter, T * basis) noexcept
{
    basis[0] = T(1);
    VEK_UNROLL(6)
    for (unsigned int j = 1; j <= degree; ++j)
    {
        T const * const lower = knots + 1 - j;
        T saved = T(0);
        VEK_UNROLL(6)
        for (unsigned int r = 0; r < j; ++r)
        {
            T const ratio = (parameter - lower[r]) / (knots[r + 1] - lower[r]);
            T const value = basis[r];
            basis[r] = saved + value * (T(1) - ratio);
            saved = value * ratio;
        }
        basis[j] = saved;
    }
}

} // namespace vek
