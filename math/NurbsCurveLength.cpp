#include "VekNurbs.h"

#include "math/NurbsBezier.h"

#include <limits>

namespace
{

constexpr unsigned int maxLevel = 30;
/// Parts of one span; it is reached only where rounding keeps the estimates apart.
constexpr unsigned int maxParts = 4096;

/// The length between two parameters of a piece by one Gauss-Legendre rule of 8 points.
double LengthByRule(vek::BezierPiece const & piece, double from, double to)
{
    static constexpr double places[4] = {0.1834346424956498, 0.5255324099163290, 0.7966664774136267,
                                         0.9602898564975363};
    static constexpr double weights[4] = {0.3626837833783620, 0.3137066458778873, 0.2223810344533745,
                                          0.1012285362903763};
    double const middle = (from + to) / 2;
    double const half = (to - from) / 2;
    double sum = 0;
    for (unsigned int i = 0; i < 4; ++i)
        sum += weights[i] * (piece.DerivativesAt(middle - half * places[i]).first.Length() +
                             piece.DerivativesAt(middle + half * places[i]).first.Length());
    return sum * half;
}

/// The length between two parameters of a piece, within the tolerance for the whole piece.
double LengthOfPiece(vek::BezierPiece const & piece, double from, double to, double tolerance)
{
    struct Interval
    {
        double from, to, estimate;
        unsigned int level;
    };
    Interval waiting[maxLevel + 1];
    unsigned int count = 0;
    waiting[count++] = {from, to, LengthByRule(piece, from, to), 0};
    double length = 0;
    for (unsigned int parts = 0; count > 0; ++parts)
    {
        Interval const whole = waiting[--count];
        double const middle = (whole.from + whole.to) / 2;
        double const first = LengthByRule(piece, whole.from, middle);
        double const second = LengthByRule(piece, middle, whole.to);
        double const error = vek::Magnitude(first + second - whole.estimate);
        if (error > tolerance * (whole.to - whole.from) && error > 1e-14 * (first + second) && whole.level < maxLevel &&
            parts < maxParts)
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
double PlaceAtLength(vek::BezierPiece const & piece, double wanted, double total, double tolerance)
{
    double low = 0;
    double high = 1;
    double lengthAtLow = 0;
    double place = wanted / total;
    for (unsigned int i = 0; i < 64 && place > low && place < high; ++i)
    {
        double const length = lengthAtLow + LengthOfPiece(piece, low, place, tolerance);
        double const missing = wanted - length;
        if (vek::Magnitude(missing) <= tolerance)
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

} // namespace

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
    double const first = static_cast<double>(vek::ClampToDomain(*this, from < to ? from : to));
    double const last = static_cast<double>(vek::ClampToDomain(*this, from < to ? to : from));
    double const density = ToleranceDensity(*this, tolerance);
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
        length += LengthOfPiece(piece, begin, end, density * width);
    }
    return static_cast<T>(length);
}

template <class T>
T CVekNurbsCurve<T>::GetParameterAtLength(T length, T tolerance) const noexcept
{
    if (IsEmpty() || !(length > T(0)))
        return GetStart();
    double left = static_cast<double>(length);
    double const density = ToleranceDensity(*this, tolerance);
    vek::BezierPiece piece;
    for (unsigned int span = vek::FirstSpan(m_knots, m_degree, m_pointCount); span < m_pointCount;
         span = vek::NextSpan(m_knots, m_pointCount, span))
    {
        vek::LoadPiece(*this, span, piece);
        double const allowed = density * (piece.end - piece.start);
        double const whole = LengthOfPiece(piece, 0, 1, allowed);
        if (left < whole)
            return static_cast<T>(piece.ParameterAt(PlaceAtLength(piece, left, whole, allowed)));
        left -= whole;
    }
    return GetEnd();
}

template float CVekNurbsCurve<float>::GetLength(float) const noexcept;
template double CVekNurbsCurve<double>::GetLength(double) const noexcept;
template float CVekNurbsCurve<float>::GetLengthBetween(float, float, float) const noexcept;
template double CVekNurbsCurve<double>::GetLengthBetween(double, double, double) const noexcept;
template float CVekNurbsCurve<float>::GetParameterAtLength(float, float) const noexcept;
template double CVekNurbsCurve<double>::GetParameterAtLength(double, double) const noexcept;
