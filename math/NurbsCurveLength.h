// The members of CVekNurbsCurve that measure along it; for NurbsCurve.cpp alone, which instantiates them.
#pragma once

#include "VekNurbs.h"

#include "math/NurbsBezier.h"

#include <limits>

namespace vek
{

constexpr unsigned int MAX_LENGTH_LEVEL = 30;
/// Parts of one span; it is reached only where rounding keeps the estimates apart.
constexpr unsigned int MAX_LENGTH_PARTS = 4096;

/// The length between two parameters of a piece by one Gauss-Legendre rule of 8 points.
inline double LengthByRule(BezierPiece const & piece, double from, double to)
{
    static constexpr double PLACES[4] = {0.1834346424956498, 0.5255324099163290, 0.7966664774136267,
                                         0.9602898564975363};
    static constexpr double WEIGHTS[4] = {0.3626837833783620, 0.3137066458778873, 0.2223810344533745,
                                          0.1012285362903763};
    double const middle = (from + to) / 2;
    double const half = (to - from) / 2;
    double sum = 0;
    for (unsigned int i = 0; i < 4; ++i)
        sum += WEIGHTS[i] * (piece.DerivativesAt(middle - half * PLACES[i]).first.Length() +
                             piece.DerivativesAt(middle + half * PLACES[i]).first.Length());
    return sum * half;
}

/// The length between two parameters of a piece, within the tolerance for the whole piece.
inline double LengthOfPiece(BezierPiece const & piece, double from, double to, double tolerance)
{
    struct Interval
    {
        double from, to, estimate;
        unsigned int level;
    };
    Interval waiting[MAX_LENGTH_LEVEL + 1];
    unsigned int count = 0;
    waiting[count++] = {from, to, LengthByRule(piece, from, to), 0};
    double length = 0;
    for (unsigned int parts = 0; count > 0; ++parts)
    {
        Interval const whole = waiting[--count];
        double const middle = (whole.from + whole.to) / 2;
        double const first = LengthByRule(piece, whole.from, middle);
        double const second = LengthByRule(piece, middle, whole.to);
        double const error = Magnitude(first + second - whole.estimate);
        if (error > tolerance * (whole.to - whole.from) && error > 1e-14 * (first + second) &&
            whole.level < MAX_LENGTH_LEVEL && parts < MAX_LENGTH_PARTS)
        {
            waiting[count++] = {middle, whole.to, second, whole.level + 1};
            waiting[count++] = {whole.from, middle, first, whole.level + 1};
        }
        else
            length += first + second;
    }
    return length;
}

/// The tolerance per unit of the domain.
template <class T>
double ToleranceDensity(CVekNurbsCurve<T> const & curve, T tolerance)
{
    double total = static_cast<double>(tolerance);
    if (!(total > 0))
    {
        double polygon = 0;
        CVekVector3D<double> last;
        for (unsigned int i = 0; i < curve.GetPointCount(); ++i)
        {
            CVekVector4D<double> const weighted(curve.GetWeightedPoints()[i]);
            CVekVector3D<double> const point = weighted.XYZ() / weighted.w;
            polygon += i > 0 ? point.DistanceTo(last) : 0;
            last = point;
        }
        total = polygon * std::numeric_limits<T>::epsilon();
    }
    return total / (static_cast<double>(curve.GetEnd()) - static_cast<double>(curve.GetStart()));
}

/// The place in a piece up to which it has a length, by Newton's method between bounds.
inline double PlaceAtLength(BezierPiece const & piece, double wanted, double total, double tolerance)
{
    double low = 0;
    double high = 1;
    double lengthAtLow = 0;
    double place = wanted / total;
    for (unsigned int i = 0; i < 64 && place > low && place < high; ++i)
    {
        double const length = lengthAtLow + LengthOfPiece(piece, low, place, tolerance);
        double const missing = wanted - length;
        if (Magnitude(missing) <= tolerance)
            break;
        if (missing > 0)
        {
            low = place;
            lengthAtLow = length;
        }
        else
            high = place;
        place += missing / piece.DerivativesAt(place).first.Length();
        if (!(place > low && place < high))
            place = low + (high - low) / 2;
    }
    return place;
}

/// Finds parameters by lengths, going from span to span. It starts anew for a length that is less than those of the
/// spans it has left behind, so that results don't depend on the order.
template <class T>
class LengthWalk
{
public:
    LengthWalk(CVekNurbsCurve<T> const & curve, T tolerance)
        : m_curve(curve), m_density(ToleranceDensity(curve, tolerance))
    {
        Start();
    }

    T ParameterAt(T length)
    {
        if (!(length > T(0)))
            return m_curve.GetStart();
        double const wanted = static_cast<double>(length);
        if (!(wanted >= m_before))
            Start();
        while (m_span < m_curve.GetPointCount() && !(wanted - m_before < m_whole))
        {
            m_before += m_whole;
            Enter(NextSpan(m_curve.GetKnots(), m_curve.GetPointCount(), m_span));
        }
        if (m_span == m_curve.GetPointCount())
            return m_curve.GetEnd();
        return static_cast<T>(m_piece.ParameterAt(PlaceAtLength(m_piece, wanted - m_before, m_whole, m_allowed)));
    }

private:
    void Start()
    {
        m_before = 0;
        Enter(FirstSpan(m_curve.GetKnots(), m_curve.GetDegree(), m_curve.GetPointCount()));
    }
    void Enter(unsigned int span)
    {
        m_span = span;
        if (span == m_curve.GetPointCount())
            return;
        LoadPiece(m_curve, span, m_piece);
        m_allowed = m_density * (m_piece.end - m_piece.start);
        m_whole = LengthOfPiece(m_piece, 0, 1, m_allowed);
    }

    CVekNurbsCurve<T> const & m_curve;
    double const m_density;
    double m_before = 0; // the length of all spans before
    unsigned int m_span = 0;
    BezierPiece m_piece{};
    double m_allowed = 0;
    double m_whole = 0; // the span's length
};

} // namespace vek

template <class T>
T CVekNurbsCurve<T>::GetLength(T tolerance) const noexcept
{
    return GetLengthBetween(GetStart(), GetEnd(), tolerance);
}

template <class T>
T CVekNurbsCurve<T>::GetLengthBetween(T from, T to, T tolerance) const noexcept
{
    if (IsEmpty())
        return T(0);
    double const one = static_cast<double>(vek::ClampToDomain(*this, from));
    double const other = static_cast<double>(vek::ClampToDomain(*this, to));
    double const first = one < other ? one : other;
    double const last = one < other ? other : one;
    double const density = vek::ToleranceDensity(*this, tolerance);
    double length = 0;
    vek::BezierPiece piece;
    unsigned int span = vek::FindSpan(m_knots, m_degree, m_pointCount, static_cast<T>(first));
    for (; span < m_pointCount && static_cast<double>(m_knots[span]) < last;
         span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        vek::LoadPiece(*this, span, piece);
        double const width = piece.end - piece.start;
        double const begin = first > piece.start ? (first - piece.start) / width : 0;
        double const end = last < piece.end ? (last - piece.start) / width : 1;
        length += vek::LengthOfPiece(piece, begin, end, density * width);
    }
    return static_cast<T>(length);
}

template <class T>
T CVekNurbsCurve<T>::GetParameterAtLength(T length, T tolerance) const noexcept
{
    T parameter;
    GetParametersAtLengths(&length, 1, &parameter, tolerance);
    return parameter;
}

template <class T>
void CVekNurbsCurve<T>::GetParametersAtLengths(T const * lengths, unsigned int count, T * parameters,
                                               T tolerance) const noexcept
{
    if (IsEmpty())
    {
        for (unsigned int i = 0; i < count; ++i)
            parameters[i] = T(0);
        return;
    }
    vek::LengthWalk<T> walk(*this, tolerance);
    for (unsigned int i = 0; i < count; ++i)
        parameters[i] = walk.ParameterAt(lengths[i]);
}
