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

bool CheckCounts(unsigned int degree, void const * points, unsigned int pointCount, void const * knots,
                 unsigned int knotCount)
{
    constexpr unsigned int MAX_DEGREE = CVekNurbsCurve<float>::MAX_DEGREE;
    constexpr unsigned int MAX_POINTS = CVekNurbsCurve<float>::MAX_POINTS;
    if (degree < 1 || degree > MAX_DEGREE)
        VekLogOutput(0, L"CVekNurbsCurve::Create --> Degree %u is not 1 to %u", degree, MAX_DEGREE);
    else if (!points)
        VekLogOutput(0, L"CVekNurbsCurve::Create --> Control points are NULL");
    else if (pointCount <= degree || pointCount > MAX_POINTS)
        VekLogOutput(0, L"CVekNurbsCurve::Create --> Number of control points %u is not %u to %u", pointCount,
                     degree + 1, MAX_POINTS);
    else if (!knots && knotCount)
        VekLogOutput(0, L"CVekNurbsCurve::Create --> Knots are NULL");
    else if (knots && knotCount != pointCount + degree + 1)
        VekLogOutput(0, L"CVekNurbsCurve::Create --> Number of knots %u is not %u", knotCount, pointCount + degree + 1);
    else
        return true;
    return false;
}

template <class T>
bool CheckPoints(CVekVector3D<T> const * points, T const * weights, unsigned int count)
{
    for (unsigned int i = 0; i < count; ++i)
    {
        T const weight = weights ? weights[i] : T(1);
        if (!IsWeight(weight))
        {
            VekLogOutput(0, L"CVekNurbsCurve::Create --> Weight %u is not a positive normal number", i);
            return false;
        }
        if (!IsFinite(CVekVector4D<T>(points[i], weight)) || !IsFinite(Weighted(points[i], weight)))
        {
            VekLogOutput(0, L"CVekNurbsCurve::Create --> Control point %u is not finite", i);
            return false;
        }
    }
    return true;
}

template <class T>
bool CheckKnots(T const * knots, unsigned int degree, unsigned int pointCount)
{
    unsigned int const last = pointCount + degree;
    unsigned int times = 0;
    for (unsigned int i = 0; i <= last; ++i)
    {
        if (!(knots[i] >= -LARGEST_KNOT<T> && knots[i] <= LARGEST_KNOT<T>))
        {
            VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u is not finite or too large", i);
            return false;
        }
        if (i > 0 && knots[i] < knots[i - 1])
        {
            VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u is less than the one before", i);
            return false;
        }
        times = i > 0 && knots[i] == knots[i - 1] ? times + 1 : 1;
        unsigned int const most = knots[i] == knots[0] || knots[i] == knots[last] ? degree + 1 : degree;
        if (times > most)
        {
            VekLogOutput(0, L"CVekNurbsCurve::Create --> Knot %u occurs more than %u times", i, most);
            return false;
        }
    }
    if (knots[degree] < knots[pointCount])
        return true;
    VekLogOutput(0, L"CVekNurbsCurve::Create --> The domain is empty");
    return false;
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
bool CVekNurbsCurve<T>::Create(unsigned int degree, CVekVector3D<T> const * points, T const * weights,
                               unsigned int pointCount, T const * knots, unsigned int knotCount) noexcept
{
    CVekNurbsCurve created;
    if (!CheckCounts(degree, points, pointCount, knots, knotCount) || !CheckPoints(points, weights, pointCount) ||
        (knots && !CheckKnots(knots, degree, pointCount)) || !created.Allocate(degree, pointCount))
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
