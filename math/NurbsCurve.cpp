#include "VekNurbs.h"

#include "VekCore.h"
#include "math/NurbsCurveBounds.h"
#include "math/NurbsCurveEdit.h"
#include "math/NurbsCurveEvaluate.h"
#include "math/NurbsCurveLength.h"
#include "math/NurbsCurveShapes.h"
#include "math/NurbsCurveTessellate.h"

#include <limits>
#include <new>

namespace
{

template <class T>
constexpr T LARGEST_KNOT = std::numeric_limits<T>::max() / 4;

template <class T>
bool IsFinite(T value)
{
    return value - value == T(0);
}

template <class T>
bool IsFinite(CVekVector4D<T> const & v)
{
    return IsFinite(v.x) && IsFinite(v.y) && IsFinite(v.z) && IsFinite(v.w);
}

/// A smaller weight would lose digits whenever it is multiplied.
template <class T>
bool IsWeight(T value)
{
    return value >= std::numeric_limits<T>::min() && IsFinite(value);
}

template <class T>
CVekVector4D<T> Weighted(CVekVector3D<T> const & point, T weight)
{
    return CVekVector4D<T>(point.x * weight, point.y * weight, point.z * weight, weight);
}

VEK_NURBS_ERROR CheckCounts(unsigned int degree, void const * points, unsigned int pointCount, void const * knots,
                            unsigned int knotCount)
{
    if (degree < 1 || degree > CVekNurbsCurve<float>::MAX_DEGREE)
        return VEK_NURBS_ERROR_DEGREE;
    if (!points)
        return VEK_NURBS_ERROR_NO_POINTS;
    if (pointCount <= degree || pointCount > CVekNurbsCurve<float>::MAX_POINTS)
        return VEK_NURBS_ERROR_POINT_COUNT;
    if (!knots)
        return knotCount ? VEK_NURBS_ERROR_NO_KNOTS : VEK_NURBS_ERROR_NONE;
    return knotCount != pointCount + degree + 1 ? VEK_NURBS_ERROR_KNOT_COUNT : VEK_NURBS_ERROR_NONE;
}

template <class T>
VekNurbsError CheckPoints(CVekVector3D<T> const * points, T const * weights, unsigned int count)
{
    for (unsigned int i = 0; i < count; ++i)
    {
        T const weight = weights ? weights[i] : T(1);
        if (!IsWeight(weight))
            return {VEK_NURBS_ERROR_WEIGHT, i};
        if (!IsFinite(CVekVector4D<T>(points[i], weight)) || !IsFinite(Weighted(points[i], weight)))
            return {VEK_NURBS_ERROR_POINT, i};
    }
    return {};
}

/// How often a knot may occur.
template <class T>
unsigned int MostTimes(T const * knots, unsigned int index, unsigned int degree, unsigned int pointCount)
{
    bool const isAtEnd = knots[index] == knots[0] || knots[index] == knots[pointCount + degree];
    return isAtEnd ? degree + 1 : degree;
}

template <class T>
VekNurbsError CheckKnots(T const * knots, unsigned int degree, unsigned int pointCount)
{
    unsigned int times = 0;
    for (unsigned int i = 0; i <= pointCount + degree; ++i)
    {
        if (!(knots[i] >= -LARGEST_KNOT<T> && knots[i] <= LARGEST_KNOT<T>))
            return {VEK_NURBS_ERROR_KNOT, i};
        if (i > 0 && knots[i] < knots[i - 1])
            return {VEK_NURBS_ERROR_KNOT_ORDER, i};
        times = i > 0 && knots[i] == knots[i - 1] ? times + 1 : 1;
        if (times > MostTimes(knots, i, degree, pointCount))
            return {VEK_NURBS_ERROR_KNOT_REPEATED, i};
    }
    return {knots[degree] < knots[pointCount] ? VEK_NURBS_ERROR_NONE : VEK_NURBS_ERROR_DOMAIN, 0};
}

template <class T>
void LogError(VekNurbsError const & error, unsigned int degree, unsigned int pointCount, T const * knots,
              unsigned int knotCount)
{
    constexpr unsigned int MAX_DEGREE = CVekNurbsCurve<T>::MAX_DEGREE;
    constexpr unsigned int MAX_POINTS = CVekNurbsCurve<T>::MAX_POINTS;
    unsigned int const i = error.index;
    switch (error.code)
    {
    case VEK_NURBS_ERROR_NONE:
        break;
    case VEK_NURBS_ERROR_DEGREE:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Degree %u is not 1 to %u", degree, MAX_DEGREE);
    case VEK_NURBS_ERROR_NO_POINTS:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Control points are NULL");
    case VEK_NURBS_ERROR_POINT_COUNT:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Number of control points %u is not %u to %u", pointCount,
                            degree + 1, MAX_POINTS);
    case VEK_NURBS_ERROR_NO_KNOTS:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Knots are NULL");
    case VEK_NURBS_ERROR_KNOT_COUNT:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Number of knots %u is not %u", knotCount,
                            pointCount + degree + 1);
    case VEK_NURBS_ERROR_WEIGHT:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Weight %u is not a positive normal number", i);
    case VEK_NURBS_ERROR_POINT:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Control point %u is not finite", i);
    case VEK_NURBS_ERROR_KNOT:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u is not finite or too large", i);
    case VEK_NURBS_ERROR_KNOT_ORDER:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u is less than the one before", i);
    case VEK_NURBS_ERROR_KNOT_REPEATED:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u occurs more than %u times", i,
                            MostTimes(knots, i, degree, pointCount));
    case VEK_NURBS_ERROR_DOMAIN:
        return VekLogOutput(0, L"CVekNurbsCurve::Create --> The domain is empty");
    }
}

template <class T>
void SetUniformKnots(T * knots, unsigned int degree, unsigned int pointCount)
{
    unsigned int const spans = pointCount - degree;
    for (unsigned int i = 0; i <= pointCount + degree; ++i)
        knots[i] = i <= degree ? T(0) : i >= pointCount ? T(1) : static_cast<T>(i - degree) / static_cast<T>(spans);
}

} // namespace

template <class T>
CVekNurbsCurve<T>::CVekNurbsCurve(CVekNurbsCurve const & other) noexcept : CVekNurbsCurve()
{
    if (other.IsEmpty() || !Allocate(other.m_degree, other.m_pointCount))
        return;
    for (unsigned int i = 0; i < m_pointCount; ++i)
        m_points[i] = other.m_points[i];
    for (unsigned int i = 0; i < GetKnotCount(); ++i)
        m_knots[i] = other.m_knots[i];
}

template <class T>
CVekNurbsCurve<T> & CVekNurbsCurve<T>::operator=(CVekNurbsCurve const & other) noexcept
{
    if (this == &other)
        return *this;
    CVekNurbsCurve copy(other);
    Swap(copy);
    return *this;
}

template <class T>
CVekNurbsCurve<T>::~CVekNurbsCurve()
{
    Destroy();
}

template <class T>
void CVekNurbsCurve<T>::Destroy() noexcept
{
    delete[] m_points;
    delete[] m_knots;
    m_points = nullptr;
    m_knots = nullptr;
    m_degree = m_pointCount = 0;
}

/// Makes room for a curve in an empty one.
template <class T>
bool CVekNurbsCurve<T>::Allocate(unsigned int degree, unsigned int pointCount) noexcept
{
    if (pointCount > MAX_POINTS)
    {
        VekLogOutput(0, L"CVekNurbsCurve::Allocate --> %u control points are more than %u", pointCount, MAX_POINTS);
        return false;
    }
    Destroy();
    m_points = new (std::nothrow) CVekVector4D<T>[pointCount];
    m_knots = new (std::nothrow) T[pointCount + degree + 1];
    if (!m_points || !m_knots)
    {
        Destroy();
        VekLogOutput(0, L"CVekNurbsCurve::Allocate --> Failed to allocate memory");
        return false;
    }
    m_degree = degree;
    m_pointCount = pointCount;
    return true;
}

template <class T>
VekNurbsError CVekNurbsCurve<T>::Check(unsigned int degree, CVekVector3D<T> const * points, T const * weights,
                                       unsigned int pointCount, T const * knots, unsigned int knotCount) noexcept
{
    VekNurbsError error{CheckCounts(degree, points, pointCount, knots, knotCount), 0};
    if (error.code == VEK_NURBS_ERROR_NONE)
        error = CheckPoints(points, weights, pointCount);
    if (error.code == VEK_NURBS_ERROR_NONE && knots)
        error = CheckKnots(knots, degree, pointCount);
    return error;
}

template <class T>
bool CVekNurbsCurve<T>::Create(unsigned int degree, CVekVector3D<T> const * points, T const * weights,
                               unsigned int pointCount, T const * knots, unsigned int knotCount) noexcept
{
    CVekNurbsCurve created;
    VekNurbsError const error = Check(degree, points, weights, pointCount, knots, knotCount);
    LogError(error, degree, pointCount, knots, knotCount);
    if (error.code != VEK_NURBS_ERROR_NONE || !created.Allocate(degree, pointCount))
        return false;
    for (unsigned int i = 0; i < pointCount; ++i)
        created.m_points[i] = Weighted(points[i], weights ? weights[i] : T(1));
    if (!knots)
        SetUniformKnots(created.m_knots, degree, pointCount);
    for (unsigned int i = 0; knots && i < knotCount; ++i)
        created.m_knots[i] = knots[i];
    Swap(created);
    return true;
}

template <class T>
bool CVekNurbsCurve<T>::SetControlPoint(unsigned int index, CVekVector3D<T> const & point, T weight) noexcept
{
    CVekVector4D<T> const weighted = Weighted(point, weight);
    if (IsEmpty())
        return false;
    if (index >= m_pointCount)
        VekLogOutput(0, L"CVekNurbsCurve::SetControlPoint --> Index %u is not less than %u", index, m_pointCount);
    else if (!IsWeight(weight) || !IsFinite(weighted))
        VekLogOutput(0, L"CVekNurbsCurve::SetControlPoint --> Control point %u or its weight is not valid", index);
    else
    {
        m_points[index] = weighted;
        return true;
    }
    return false;
}

template <class T>
bool CVekNurbsCurve<T>::Transform(CVekMatrix4x4<T> const & transform) noexcept
{
    CVekNurbsCurve transformed(*this);
    if (transformed.IsEmpty())
        return false;
    for (unsigned int i = 0; i < m_pointCount; ++i)
    {
        CVekVector4D<T> & point = transformed.m_points[i];
        point = transform.Transform(point);
        if (!IsWeight(point.w) || !IsFinite(point))
        {
            VekLogOutput(
                0, L"CVekNurbsCurve::Transform --> Control point %u becomes not finite or its weight not positive", i);
            return false;
        }
    }
    Swap(transformed);
    return true;
}

template <class T>
bool CVekNurbsCurve<T>::Reverse() noexcept
{
    CVekNurbsCurve reversed(*this);
    if (reversed.IsEmpty())
        return false;
    unsigned int const last = m_pointCount + m_degree;
    T const start = GetStart();
    T const end = GetEnd();
    for (unsigned int i = 0; i < m_pointCount; ++i)
        reversed.m_points[i] = m_points[m_pointCount - 1 - i];
    for (unsigned int i = 0; i <= last; ++i)
    {
        T const knot = m_knots[last - i];
        reversed.m_knots[i] = knot == end ? start : knot == start ? end : start + (end - knot);
        if (i > 0 && (reversed.m_knots[i] == reversed.m_knots[i - 1]) != (knot == m_knots[last - i + 1]))
        {
            VekLogOutput(0, L"CVekNurbsCurve::Reverse --> Knot %u is too close to the next one", last - i);
            return false;
        }
    }
    Swap(reversed);
    return true;
}

template class CVekNurbsCurve<float>;
template class CVekNurbsCurve<double>;
