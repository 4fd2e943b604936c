// The members of CVekNurbsCurve that make the usual curves; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "VekCore.h"
#include "base/Buffer.h"
#include "math/NurbsBasis.h"

#include <limits>

#include <math.h>

namespace vek
{

constexpr double FULL_TURN = 6.283185307179586476925;
/// An interpolation may miss its points by so many roundings of their extent.
constexpr double ROUNDINGS = 256;

/// Parameters of the points by chord length; false when two neighbours are equal or the length is not finite.
template <class T>
bool ChordParameters(CVekVector3D<T> const * points, unsigned int count, double * parameters)
{
    parameters[0] = 0;
    for (unsigned int i = 1; i < count; ++i)
    {
        double const chord = CVekVector3D<double>(points[i]).DistanceTo(CVekVector3D<double>(points[i - 1]));
        parameters[i] = parameters[i - 1] + chord;
        if (!(parameters[i] > parameters[i - 1]) || !(parameters[i] - parameters[i] == 0))
        {
            VekLogOutput(
                0, L"CVekNurbsCurve::CreateInterpolation --> Point %u is the same as the one before or too far", i);
            return false;
        }
    }
    for (unsigned int i = 1; i < count; ++i)
        parameters[i] /= parameters[count - 1];
    parameters[count - 1] = 1;
    return true;
}

/// Each knot inside is the mean of `degree` parameters; sums over a window don't add up errors in double precision.
template <class T>
void AverageKnots(double const * parameters, unsigned int degree, unsigned int count, T * knots)
{
    for (unsigned int i = 0; i <= degree; ++i)
    {
        knots[i] = T(0);
        knots[count + i] = T(1);
    }
    for (unsigned int i = 1; i < count - degree; ++i)
    {
        double sum = 0;
        for (unsigned int j = i; j < i + degree; ++j)
            sum += parameters[j];
        knots[i + degree] = static_cast<T>(sum / degree);
    }
}

/// The equations whose solution are the control points of an interpolation. A row of the matrix has the degree + 1
/// basis functions of its parameter, from the column firsts[row] on.
struct InterpolationSystem
{
    unsigned int degree;
    unsigned int count;
    Buffer<double> parameters;
    Buffer<double> rows;
    Buffer<unsigned int> firsts;
    Buffer<CVekVector3D<double>> points;

    bool Allocate()
    {
        return parameters.Extend(count) && rows.Extend(static_cast<size_t>(count) * (degree + 1)) &&
               firsts.Extend(count) && points.Extend(count);
    }
    double * Row(unsigned int row) { return rows.Data() + static_cast<size_t>(row) * (degree + 1); }

    /// Returns the row's first column.
    template <class T>
    unsigned int FillRow(T const * knots, unsigned int i, double * row) const
    {
        double near[2 * CVekNurbsCurve<T>::MAX_DEGREE + 2];
        unsigned int const span = FindSpan(knots, degree, count, static_cast<T>(parameters[i]));
        for (unsigned int j = 0; j <= 2 * degree + 1; ++j)
            near[j] = knots[span - degree + j];
        BasisFunctions(near + degree, degree, parameters[i], row);
        return span - degree;
    }
    /// False when a diagonal element is outside the band: then the parameters are too close for T.
    template <class T>
    bool Fill(CVekVector3D<T> const * given, T const * knots)
    {
        for (unsigned int i = 0; i < count; ++i)
        {
            firsts[i] = FillRow(knots, i, Row(i));
            points[i] = CVekVector3D<double>(given[i]);
            if (firsts[i] > i || i - firsts[i] > degree)
                return false;
        }
        return true;
    }
    /// The control points come in the points' place.
    void Solve()
    {
        for (unsigned int pivot = 0; pivot < count; ++pivot)
        {
            double const * const pivotRow = Row(pivot);
            unsigned int const offset = pivot - firsts[pivot];
            for (unsigned int row = pivot + 1; row < count && firsts[row] <= pivot; ++row)
            {
                double * const values = Row(row) + (pivot - firsts[row]);
                double const factor = values[0] / pivotRow[offset];
                for (unsigned int i = offset; i <= degree; ++i)
                    values[i - offset] -= factor * pivotRow[i];
                points[row] -= points[pivot] * factor;
            }
        }
        for (unsigned int row = count; row-- > 0;)
        {
            unsigned int const offset = row - firsts[row];
            for (unsigned int i = offset + 1; i <= degree; ++i)
                points[row] -= points[row + i - offset] * Row(row)[i];
            points[row] /= Row(row)[offset];
        }
    }
    /// The first of the given points that the solution's curve misses by more than some roundings, its control points
    /// rounded to T; the count when there is none.
    template <class T>
    unsigned int FirstMissed(CVekVector3D<T> const * given, T const * knots) const
    {
        CVekBoundBox<double> box;
        for (unsigned int i = 0; i < count; ++i)
            box.Extend(CVekVector3D<double>(given[i]));
        double const size = box.minimum.Length() + box.maximum.Length() + ROUNDINGS * box.Size().Length();
        double row[CVekNurbsCurve<T>::MAX_DEGREE + 1];
        for (unsigned int i = 0; i < count; ++i)
        {
            unsigned int const first = FillRow(knots, i, row);
            CVekVector3D<double> missing(given[i]);
            for (unsigned int j = 0; j <= degree; ++j)
                missing -= CVekVector3D<double>(CVekVector3D<T>(points[first + j])) * row[j];
            if (!(missing.Length() <= size * static_cast<double>(std::numeric_limits<T>::epsilon())))
                return i;
        }
        return count;
    }
};

} // namespace vek

template <class T>
bool CVekNurbsCurve<T>::CreateLine(CVekVector3D<T> const & from, CVekVector3D<T> const & to) noexcept
{
    CVekVector3D<T> const points[2] = {from, to};
    return Create(1, points, nullptr, 2);
}

template <class T>
bool CVekNurbsCurve<T>::CreateBezier(CVekVector3D<T> const * points, T const * weights,
                                     unsigned int pointCount) noexcept
{
    if (pointCount < 2 || pointCount > MAX_DEGREE + 1)
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateBezier --> Number of control points %u is not 2 to %u", pointCount,
                     MAX_DEGREE + 1);
        return false;
    }
    return Create(pointCount - 1, points, weights, pointCount);
}

template <class T>
bool CVekNurbsCurve<T>::CreateArc(CVekVector3D<T> const & centre, CVekVector3D<T> const & xAxis,
                                  CVekVector3D<T> const & yAxis, T startAngle, T sweepAngle) noexcept
{
    double const start = static_cast<double>(startAngle);
    double const wanted = static_cast<double>(sweepAngle);
    if (wanted == 0 || !(wanted - wanted == 0) || !(start - start == 0))
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateArc --> Angles are not finite or the sweep is 0");
        return false;
    }
    // A full turn in float is a little off the double's: within the type's rounding it closes.
    bool const full = !(static_cast<T>(fabs(wanted)) < static_cast<T>(vek::FULL_TURN));
    double const sweep = full ? (wanted < 0 ? -vek::FULL_TURN : vek::FULL_TURN) : wanted;
    unsigned int const quarters = static_cast<unsigned int>(fabs(sweep) / (vek::FULL_TURN / 4) * (1 - 1e-6)) + 1;
    unsigned int const last = 2 * (quarters < 4 ? quarters : 4);
    double const step = sweep / last;
    CVekVector3D<T> points[9];
    T weights[9];
    T knots[12] = {};
    for (unsigned int i = 0; i <= last; ++i)
    {
        double const weight = i % 2 == 1 ? cos(step) : 1;
        double const angle = start + step * i;
        points[i] = CVekVector3D<T>(CVekVector3D<double>(centre) + CVekVector3D<double>(xAxis) * (cos(angle) / weight) +
                                    CVekVector3D<double>(yAxis) * (sin(angle) / weight));
        weights[i] = static_cast<T>(weight);
    }
    if (full)
        points[last] = points[0];
    knots[last + 1] = knots[last + 2] = knots[last + 3] = T(1);
    for (unsigned int i = 1; i < last / 2; ++i)
        // NOLINTNEXTLINE(bugprone-integer-division): last is even
        knots[2 * i + 1] = knots[2 * i + 2] = static_cast<T>(i) / static_cast<T>(last / 2);
    return Create(2, points, weights, last + 1, knots, last + 4);
}

template <class T>
bool CVekNurbsCurve<T>::CreateCircle(CVekVector3D<T> const & centre, CVekVector3D<T> const & xAxis,
                                     CVekVector3D<T> const & yAxis) noexcept
{
    return CreateArc(centre, xAxis, yAxis, T(0), static_cast<T>(vek::FULL_TURN));
}

template <class T>
bool CVekNurbsCurve<T>::CreateInterpolation(unsigned int degree, CVekVector3D<T> const * points,
                                            unsigned int pointCount) noexcept
{
    CVekNurbsCurve created;
    if (!created.Create(degree, points, nullptr, pointCount))
        return false;
    vek::InterpolationSystem system = {degree, pointCount, {}, {}, {}, {}};
    if (!system.Allocate())
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Failed to allocate memory");
        return false;
    }
    if (!vek::ChordParameters(points, pointCount, system.parameters.Data()))
        return false;
    vek::AverageKnots(system.parameters.Data(), degree, pointCount, created.m_knots);
    if (!system.Fill(points, created.m_knots))
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Points are too close together");
        return false;
    }
    system.Solve();
    unsigned int const missed = system.FirstMissed(points, created.m_knots);
    if (missed < pointCount)
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Point %u is missed: distances differ too much",
                     missed);
        return false;
    }
    vek::Buffer<CVekVector3D<T>> controls;
    if (!controls.Extend(pointCount))
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Failed to allocate memory");
        return false;
    }
    for (unsigned int i = 0; i < pointCount; ++i)
        controls[i] = CVekVector3D<T>(system.points[i]);
    // Looks at the knots too: neighbouring ones may have become equal in T.
    return Create(degree, controls.Data(), nullptr, pointCount, created.m_knots, created.GetKnotCount());
}
