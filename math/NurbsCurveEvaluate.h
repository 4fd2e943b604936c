// The members of CVekNurbsCurve that evaluate it; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "base/Compiler.h"
#include "math/NurbsBasis.h"
#include "math/NurbsBezier.h"

#include <type_traits>

namespace vek
{

constexpr unsigned int MAX_ORDER = CVekNurbsCurve<float>::MAX_DEGREE + 1;

/// A point on a span. DEGREE is the curve's degree where it is known to the compiler, else 0.
template <unsigned int DEGREE, class T>
inline CVekVector3D<T> PointOnSpan(CVekVector4D<T> const * points, T const * knots, unsigned int degree, T parameter)
{
    T basis[DEGREE ? DEGREE + 1 : MAX_ORDER];
    BasisFunctions(knots, DEGREE ? DEGREE : degree, parameter, basis);
    T x = points[0].x * basis[0];
    T y = points[0].y * basis[0];
    T z = points[0].z * basis[0];
    T w = points[0].w * basis[0];
    VEK_UNROLL(6)
    for (unsigned int i = 1; i <= (DEGREE ? DEGREE : degree); ++i)
    {
        x += points[i].x * basis[i];
        y += points[i].y * basis[i];
        z += points[i].z * basis[i];
        w += points[i].w * basis[i];
    }
    return CVekVector3D<T>(x / w, y / w, z / w);
}

template <unsigned int DEGREE, class T>
void PointsOnCurve(CVekNurbsCurve<T> const & curve, T const * parameters, unsigned int count, CVekVector3D<T> * results)
{
    unsigned int const degree = curve.GetDegree();
    unsigned int const pointCount = curve.GetPointCount();
    CVekVector4D<T> const * const points = curve.GetWeightedPoints();
    T const * const knots = curve.GetKnots();
    unsigned int span = degree;
    for (unsigned int i = 0; i < count; ++i)
    {
        T const parameter = ClampToDomain(curve, parameters[i]);
        if (!(knots[span] <= parameter && parameter < knots[span + 1]))
            span = FindSpan(knots, degree, pointCount, parameter);
        results[i] = PointOnSpan<DEGREE>(points + (span - degree), knots + span, degree, parameter);
    }
}

/// Calls work with the degree as a constant, or 0 for the higher ones.
template <class Work>
auto WithDegree(unsigned int degree, Work const & work)
{
    switch (degree)
    {
    case 1:
        return work(std::integral_constant<unsigned int, 1>());
    case 2:
        return work(std::integral_constant<unsigned int, 2>());
    case 3:
        return work(std::integral_constant<unsigned int, 3>());
    case 4:
        return work(std::integral_constant<unsigned int, 4>());
    case 5:
        return work(std::integral_constant<unsigned int, 5>());
    default:
        return work(std::integral_constant<unsigned int, 0>());
    }
}

/// The weighted point and its derivatives up to the degree: differences of the span's control points, then the basis
/// functions of the lower degree.
template <class T>
void WeightedDerivatives(CVekNurbsCurve<T> const & curve, T parameter, unsigned int order, Point4 * derivatives)
{
    unsigned int const degree = curve.GetDegree();
    unsigned int const span = FindSpan(curve.GetKnots(), degree, curve.GetPointCount(), parameter);
    Point4 points[MAX_ORDER];
    double knots[2 * MAX_ORDER];
    LoadSpan(curve, span, points, knots);
    double basis[MAX_ORDER];
    for (unsigned int k = 0; k <= order; ++k)
    {
        unsigned int const left = degree - k;
        BasisFunctions(knots + degree, left, static_cast<double>(parameter), basis);
        derivatives[k] = points[0] * basis[0];
        for (unsigned int i = 1; i <= left; ++i)
            derivatives[k] = derivatives[k] + points[i] * basis[i];
        for (unsigned int i = 0; i < left; ++i)
            points[i] = (points[i + 1] - points[i]) * (left / (knots[i + degree + 1] - knots[i + k + 1]));
    }
}

/// Calls use(k, k-th derivative) for each order, in double precision.
template <class T, class Use>
void ForDerivatives(CVekNurbsCurve<T> const & curve, T anyParameter, unsigned int order, Use const & use)
{
    unsigned int const highest = order < curve.GetDegree() ? order : curve.GetDegree();
    Point4 weighted[MAX_ORDER];
    WeightedDerivatives(curve, ClampToDomain(curve, anyParameter), highest, weighted);
    CVekVector3D<double> recent[MAX_ORDER]; // the quotient rule goes back by at most the degree
    for (unsigned int k = 0;; ++k)
    {
        CVekVector3D<double> sum;
        if (k <= highest)
            sum = weighted[k].Space();
        double binomial = 1;
        for (unsigned int i = 1; i <= k && i <= highest; ++i)
        {
            binomial = binomial * (static_cast<double>(k - i) + 1) / i;
            sum -= recent[(k - i) % MAX_ORDER] * (binomial * weighted[i].w);
        }
        recent[k % MAX_ORDER] = sum / weighted[0].w;
        use(k, recent[k % MAX_ORDER]);
        if (k == order)
            return;
    }
}

} // namespace vek

template <class T>
CVekVector3D<T> CVekNurbsCurve<T>::GetPoint(T parameter) const noexcept
{
    if (IsEmpty())
        return CVekVector3D<T>();
    return vek::WithDegree(m_degree,
                           [this, parameter](auto degree)
                           {
                               T const inside = vek::ClampToDomain(*this, parameter);
                               unsigned int const span = vek::FindSpan(m_knots, m_degree, m_pointCount, inside);
                               return vek::PointOnSpan<degree()>(m_points + (span - m_degree), m_knots + span, m_degree,
                                                                 inside);
                           });
}

template <class T>
void CVekNurbsCurve<T>::GetPoints(T const * parameters, unsigned int count, CVekVector3D<T> * points) const noexcept
{
    if (IsEmpty())
    {
        for (unsigned int i = 0; i < count; ++i)
            points[i] = CVekVector3D<T>();
        return;
    }
    vek::WithDegree(m_degree,
                    [=, this](auto degree) { vek::PointsOnCurve<degree()>(*this, parameters, count, points); });
}

template <class T>
bool CVekNurbsCurve<T>::GetDerivatives(T parameter, unsigned int order, CVekVector3D<T> * derivatives) const noexcept
{
    if (IsEmpty() || !derivatives)
        return false;
    vek::ForDerivatives(*this, parameter, order,
                        [derivatives](unsigned int k, CVekVector3D<double> const & derivative)
                        { derivatives[k] = CVekVector3D<T>(derivative); });
    return true;
}

template <class T>
CVekVector3D<T> CVekNurbsCurve<T>::GetTangent(T parameter) const noexcept
{
    CVekVector3D<double> tangent;
    if (IsEmpty())
        return CVekVector3D<T>();
    // At the end the curve arrives from before: a lowest derivative of even order points backwards there.
    double const even = parameter >= GetEnd() ? -1 : 1;
    vek::ForDerivatives(*this, parameter, m_degree,
                        [&](unsigned int k, CVekVector3D<double> const & derivative)
                        {
                            if (k > 0 && tangent == CVekVector3D<double>())
                                tangent = (k % 2 == 0 ? even : 1.0) * derivative.Normalised();
                        });
    return CVekVector3D<T>(tangent);
}

template <class T>
T CVekNurbsCurve<T>::GetCurvature(T parameter) const noexcept
{
    CVekVector3D<double> derivatives[3];
    if (IsEmpty())
        return T(0);
    vek::ForDerivatives(*this, parameter, 2,
                        [&](unsigned int k, CVekVector3D<double> const & derivative) { derivatives[k] = derivative; });
    double const speed = derivatives[1].Length();
    return speed > 0 ? static_cast<T>((derivatives[1] / speed).Cross(derivatives[2] / speed).Length() / speed) : T(0);
}
