// The members of CVekNurbsCurve that edit it: knots, degree, parts; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "VekCore.h"
#include "base/Buffer.h"
#include "math/NurbsBasis.h"

namespace vek
{

/// How often a knot occurs.
template <class T>
unsigned int CountOf(T const * knots, unsigned int count, T knot)
{
    unsigned int times = 0;
    for (unsigned int i = 0; i < count; ++i)
        times += knots[i] == knot;
    return times;
}

/// Inserts knots into a curve in place, the largest first. The arrays have a gap, as wide as knots are still to come:
/// what lies behind it is in its final place, so that each value is moved once, however many knots are inserted.
template <class T>
class KnotInserter
{
public:
    KnotInserter(CVekVector4D<T> * points, T * knots, unsigned int degree, unsigned int pointCount, unsigned int gap)
        : m_points(points), m_knots(knots), m_degree(degree), m_lowPoints(pointCount),
          m_lowKnots(pointCount + degree + 1), m_gap(gap), m_highEqual(0)
    {
    }

    void Insert(T knot)
    {
        MoveLargerKnots(knot);
        unsigned int times = m_highEqual;
        for (unsigned int i = m_lowKnots; i > 0 && m_knots[i - 1] == knot; --i)
            ++times;
        // As the formula has it: knots[k] <= knot < knots[k + 1], of which `times` are equal to it.
        unsigned int const k = m_lowKnots + m_highEqual - 1;
        while (m_lowPoints > k - times)
        {
            --m_lowPoints;
            m_points[m_lowPoints + m_gap] = m_points[m_lowPoints];
        }
        CVekVector4D<T> next = m_points[m_lowPoints + m_gap];
        for (unsigned int i = k - times; i + m_degree > k; --i)
        {
            T const ratio = (knot - m_knots[i]) / (m_knots[i + m_degree + m_gap] - m_knots[i]);
            CVekVector4D<T> const old = m_points[i - 1];
            m_points[i] = old.Lerp(next, ratio);
            next = old;
        }
        ++m_lowPoints;
        --m_gap;
        m_knots[m_lowKnots + m_gap] = knot;
        ++m_highEqual;
    }

private:
    void MoveLargerKnots(T knot)
    {
        if (m_highEqual > 0 && m_knots[m_lowKnots + m_gap] != knot)
            m_highEqual = 0;
        while (m_knots[m_lowKnots - 1] > knot)
        {
            --m_lowKnots;
            m_knots[m_lowKnots + m_gap] = m_knots[m_lowKnots];
        }
    }

    CVekVector4D<T> * const m_points;
    T * const m_knots;
    unsigned int const m_degree;
    unsigned int m_lowPoints; // before the gap
    unsigned int m_lowKnots;
    unsigned int m_gap;
    unsigned int m_highEqual; // knots at the gap's end that are equal to the last one inserted
};

template <class T>
void CopyEachKnotOnceMore(T const * knots, unsigned int count, T * copy)
{
    for (unsigned int i = 0; i < count; ++i)
    {
        *copy++ = knots[i];
        if (i + 1 == count || knots[i + 1] != knots[i])
            *copy++ = knots[i];
    }
}

/// For each run of equal knots inside that has none of the positions left, left + period, ...: its knot. The runs are
/// no longer than a period. There must be room for all.
template <class T>
void CollectMissing(T const * knots, unsigned int count, unsigned int period, unsigned int left, Buffer<T> & missing)
{
    unsigned int const end = count - period - 1;
    for (unsigned int begin = period + 1, next = begin; begin < end; begin = next)
    {
        bool hit = false;
        for (; next < end && knots[next] == knots[begin]; ++next)
            hit = hit || next % period == left;
        if (!hit)
            missing.Append(knots[begin]);
    }
}

} // namespace vek

/// Makes this curve with knots inserted, which don't decrease, lie in the domain and occur at most degree times in all.
template <class T>
bool CVekNurbsCurve<T>::Refine(T const * inserted, unsigned int count, CVekNurbsCurve & result) const noexcept
{
    CVekNurbsCurve refined;
    if (count > MAX_POINTS || !refined.Allocate(m_degree, m_pointCount + count))
        return false;
    for (unsigned int i = 0; i < m_pointCount; ++i)
        refined.m_points[i] = m_points[i];
    for (unsigned int i = 0; i < GetKnotCount(); ++i)
        refined.m_knots[i] = m_knots[i];
    vek::KnotInserter<T> inserter(refined.m_points, refined.m_knots, m_degree, m_pointCount, count);
    for (unsigned int i = count; i > 0; --i)
        inserter.Insert(inserted[i - 1]);
    result.Swap(refined);
    return true;
}

/// The curve of some successive control points between knots that occur degree times, with one knot more at each end.
template <class T>
bool CVekNurbsCurve<T>::Part(unsigned int firstPoint, unsigned int count, CVekNurbsCurve & result) const noexcept
{
    CVekNurbsCurve part;
    if (!part.Allocate(m_degree, count))
        return false;
    for (unsigned int i = 0; i < count; ++i)
        part.m_points[i] = m_points[firstPoint + i];
    unsigned int const last = part.GetKnotCount() - 1;
    for (unsigned int i = 1; i < last; ++i)
        part.m_knots[i] = m_knots[firstPoint + i];
    part.m_knots[0] = part.m_knots[1];
    part.m_knots[last] = part.m_knots[last - 1];
    result.Swap(part);
    return true;
}

template <class T>
bool CVekNurbsCurve<T>::InsertKnot(T knot, unsigned int times) noexcept
{
    if (IsEmpty())
        return false;
    if (!(knot >= GetStart() && knot <= GetEnd()))
    {
        VekLogOutput(0, L"CVekNurbsCurve::InsertKnot --> Knot is outside the domain");
        return false;
    }
    unsigned int const present = vek::CountOf(m_knots, GetKnotCount(), knot);
    if (times > 0 && (times > m_degree || present + times > m_degree))
    {
        VekLogOutput(0, L"CVekNurbsCurve::InsertKnot --> Knot would occur more than %u times", m_degree);
        return false;
    }
    T knots[MAX_DEGREE];
    for (unsigned int i = 0; i < times; ++i)
        knots[i] = knot;
    return times == 0 || Refine(knots, times, *this);
}

/// Makes this curve with clamped ends.
template <class T>
bool CVekNurbsCurve<T>::Clamped(CVekNurbsCurve & result) const noexcept
{
    T knots[2 * MAX_DEGREE];
    unsigned int count = 0;
    T const start = GetStart();
    T const end = GetEnd();
    for (unsigned int i = vek::CountOf(m_knots, GetKnotCount(), start); i < m_degree; ++i)
        knots[count++] = start;
    for (unsigned int i = vek::CountOf(m_knots, GetKnotCount(), end); i < m_degree; ++i)
        knots[count++] = end;
    CVekNurbsCurve refined;
    if (!Refine(knots, count, refined))
        return false;
    unsigned int const knotCount = refined.GetKnotCount();
    unsigned int first = 0;
    while (refined.m_knots[first] < start)
        ++first;
    unsigned int last = knotCount - 1;
    while (refined.m_knots[last] > end)
        --last;
    // The point before the first of `degree` equal knots is the curve's own; an end that was clamped has it in place.
    unsigned int const firstPoint = first == 0 ? 0 : first - 1;
    unsigned int const endPoint = last == knotCount - 1 ? refined.m_pointCount : last - m_degree + 1;
    return refined.Part(firstPoint, endPoint - firstPoint, result);
}

template <class T>
bool CVekNurbsCurve<T>::ClampEnds() noexcept
{
    return !IsEmpty() && Clamped(*this);
}

template <class T>
bool CVekNurbsCurve<T>::Split(T parameter, CVekNurbsCurve & before, CVekNurbsCurve & after) const noexcept
{
    if (IsEmpty())
        return false;
    if (!(parameter > GetStart() && parameter < GetEnd()))
    {
        VekLogOutput(0, L"CVekNurbsCurve::Split --> Parameter is not inside the domain");
        return false;
    }
    CVekNurbsCurve whole;
    CVekNurbsCurve parts[2];
    if (!Clamped(whole) ||
        !whole.InsertKnot(parameter, m_degree - vek::CountOf(whole.m_knots, whole.GetKnotCount(), parameter)))
        return false;
    unsigned int const span = vek::FindSpan(whole.m_knots, m_degree, whole.m_pointCount, parameter);
    unsigned int const common = span - m_degree; // the point of the curve itself
    if (!whole.Part(0, common + 1, parts[0]) || !whole.Part(common, whole.m_pointCount - common, parts[1]))
        return false;
    before.Swap(parts[0]);
    after.Swap(parts[1]);
    return true;
}

template <class T>
bool CVekNurbsCurve<T>::ElevateDegree(unsigned int times) noexcept
{
    if (IsEmpty())
        return false;
    if (times > MAX_DEGREE - m_degree)
    {
        VekLogOutput(0, L"CVekNurbsCurve::ElevateDegree --> Degree would be more than %u", MAX_DEGREE);
        return false;
    }
    CVekNurbsCurve elevated;
    if (!Clamped(elevated))
        return false;
    for (unsigned int i = 0; i < times; ++i)
        if (!elevated.Elevated(elevated))
            return false;
    Swap(elevated);
    return true;
}

/// Makes this curve, whose ends are clamped, of a degree higher by one. Every knot then occurs once more. A control
/// point is the mean of the curve's polar form at degree + 1 sets of knots: of degree + 1 successive ones, one is left
/// out each time. Leaving out every (degree + 1)-th knot gives a refinement of the old knots, whose control points are
/// the values wanted: one refinement for each first knot that is left out.
template <class T>
bool CVekNurbsCurve<T>::Elevated(CVekNurbsCurve & result) const noexcept
{
    unsigned int const period = m_degree + 1;
    unsigned int spans = 0;
    for (unsigned int i = m_degree; i < m_pointCount; ++i)
        spans += m_knots[i] != m_knots[i + 1];
    CVekNurbsCurve elevated;
    CVekNurbsCurve refined;
    vek::Buffer<T> inserted;
    if (!elevated.Allocate(m_degree + 1, m_pointCount + spans) || !inserted.Reserve(spans))
        return false;
    vek::CopyEachKnotOnceMore(m_knots, GetKnotCount(), elevated.m_knots);
    for (unsigned int left = 0; left < period; ++left)
    {
        inserted.Clear();
        vek::CollectMissing(elevated.m_knots, elevated.GetKnotCount(), period, left, inserted);
        if (!Refine(inserted.Data(), static_cast<unsigned int>(inserted.Size()), refined))
            return false;
        // Knots left out so far shift the place; at the start one more was there than a refinement has.
        for (unsigned int i = 0; i < elevated.m_pointCount; ++i)
            elevated.m_points[i] += refined.m_points[i - (i + period - left) / period + (left == 0)];
    }
    for (unsigned int i = 0; i < elevated.m_pointCount; ++i)
        elevated.m_points[i] /= static_cast<T>(period);
    result.Swap(elevated);
    return true;
}
