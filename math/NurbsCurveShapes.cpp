#include "VekNurbs.h"

#include "VekCore.h"
#include "base/Buffer.h"
#include "math/NurbsBasis.h"

#include <math.h>

namespace
{

constexpr double fullTurn = 6.283185307179586476925;

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
    vek::Buffer<double> parameters;
    vek::Buffer<double> rows;
    vek::Buffer<unsigned int> firsts;
    vek::Buffer<CVekVector3D<double>> points;

    bool Allocate()
    {
        return parameters.Extend(count) && rows.Extend(static_cast<size_t>(count) * (degree + 1)) &&
               firsts.Extend(count) && points.Extend(count);
    }
    double * Row(unsigned int row) { return rows.Data() + static_cast<size_t>(row) * (degree + 1); }

    /// False when a diagonal element is outside the band: then the parameters are too close for T.
    template <class T>
    bool Fill(CVekVector3D<T> const * given, T const * knots)
    {
        double near[2 * CVekNurbsCurve<T>::MAX_DEGREE + 2];
        for (unsigned int i = 0; i < count; ++i)
        {
            unsigned int const span = vek::FindSpan(knots, degree, count, static_cast<T>(parameters[i]));
            for (unsigned int j = 0; j <= 2 * degree + 1; ++j)
                near[j] = knots[span - degree + j];
            vek::BasisFunctions(near + degree, degree, parameters[i], Row(i));
            firsts[i] = span - degree;
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
};

} // namespace

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
    bool const full = !(static_cast<T>(fabs(wanted)) < static_cast<T>(fullTurn));
    double const sweep = full ? (wanted < 0 ? -fullTurn : fullTurn) : wanted;
    unsigned int const quarters = static_cast<unsigned int>(fabs(sweep) / (fullTurn / 4) * (1 - 1e-6)) + 1;
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
    return CreateArc(centre, xAxis, yAxis, T(0), static_cast<T>(fullTurn));
}

template <class T>
bool CVekNurbsCurve<T>::CreateInterpolation(unsigned int degree, CVekVector3D<T> const * points,
                                            unsigned int pointCount) noexcept
{
    CVekNurbsCurve created;
    if (!created.Create(degree, points, nullptr, pointCount))
        return false;
    InterpolationSystem system = {degree, pointCount, {}, {}, {}, {}};
    if (!system.Allocate())
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Failed to allocate memory");
        return false;
    }
    if (!ChordParameters(points, pointCount, system.parameters.Data()))
        return false;
    AverageKnots(system.parameters.Data(), degree, pointCount, created.m_knots);
    if (!system.Fill(points, created.m_knots))
    {
        VekLogOutput(0, L"CVekNurbsCurve::CreateInterpolation --> Points are too close together");
        return false;
    }
    system.Solve();
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

template bool CVekNurbsCurve<float>::CreateLine(CVekVector3D<float> const &, CVekVector3D<float> const &) noexcept;
template bool CVekNurbsCurve<double>::CreateLine(CVekVector3D<double> const &, CVekVector3D<double> const &) noexcept;
template bool CVekNurbsCurve<float>::CreateBezier(CVekVector3D<float> const *, float const *, unsigned int) noexcept;
template bool CVekNurbsCurve<double>::CreateBezier(CVekVector3D<double> const *, double const *, unsigned int) noexcept;
template bool CVekNurbsCurve<float>::CreateArc(CVekVector3D<float> const &, CVekVector3D<float> const &,
                                               CVekVector3D<float> const &, float, float) noexcept;
template bool CVekNurbsCurve<double>::CreateArc(CVekVector3D<double> const &, CVekVector3D<double> const &,
                                                CVekVector3D<double> const &, double, double) noexcept;
template bool CVekNurbsCurve<float>::CreateCircle(CVekVector3D<float> const &, CVekVector3D<float> const &,
                                                  CVekVector3D<float> const &) noexcept;
template bool CVekNurbsCurve<double>::CreateCircle(CVekVector3D<double> const &, CVekVector3D<double> const &,
                                                   CVekVector3D<double> const &) noexcept;
template bool CVekNurbsCurve<float>::CreateInterpolation(unsigned int, CVekVector3D<float> const *,
                                                         unsigned int) noexcept;
template bool CVekNurbsCurve<double>::CreateInterpolation(unsigned int, CVekVector3D<double> const *,
                                                          unsigned int) noexcept;
