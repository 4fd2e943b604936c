#include "math/NurbsBezier.h"

namespace vek
{

double SquareToSegment(CVekVector3D<double> const & point, CVekVector3D<double> const & from,
                       CVekVector3D<double> const & to) noexcept
{
    CVekVector3D<double> const segment = to - from;
    CVekVector3D<double> const offset = point - from;
    double const along = offset.Dot(segment);
    double const square = segment.LengthSquared();
    if (!(along > 0))
        return offset.LengthSquared();
    return along < square ? (offset - segment * (along / square)).LengthSquared() : (point - to).LengthSquared();
}

CVekBoundBox<double> BezierPiece::Hull() const noexcept
{
    CVekVector3D<double> smallest = points[0].Projected();
    CVekVector3D<double> largest = smallest;
    for (unsigned int i = 1; i <= degree; ++i)
    {
        CVekVector3D<double> const point = points[i].Projected();
        smallest = smallest.Smallest(point);
        largest = largest.Largest(point);
    }
    return CVekBoundBox<double>(smallest, largest);
}

double BezierPiece::SquareOfDeviation() const noexcept
{
    CVekVector3D<double> const first = First();
    CVekVector3D<double> const last = Last();
    double largest = 0;
    for (unsigned int i = 1; i < degree; ++i)
    {
        double const square = SquareToSegment(points[i].Projected(), first, last);
        largest = square > largest ? square : largest;
    }
    return largest;
}

void BezierPiece::Halve(BezierPiece & first, BezierPiece & second) const noexcept
{
    double const middle = Middle();
    second.degree = degree;
    second.level = level + 1;
    second.end = end;
    second.start = middle;
    for (unsigned int i = 0; i <= degree; ++i)
        second.points[i] = points[i];
    // The row's first point after each step belongs to the first half; what remains is the second.
    first.points[0] = second.points[0];
    for (unsigned int step = 1; step <= degree; ++step)
    {
        for (unsigned int i = 0; i <= degree - step; ++i)
            second.points[i] = (second.points[i] + second.points[i + 1]) * 0.5;
        first.points[step] = second.points[0];
    }
    first.degree = degree;
    first.level = second.level;
    first.start = start;
    first.end = middle;
}

PieceDerivatives BezierPiece::DerivativesAt(double t) const noexcept
{
    Point4 row[CVekNurbsCurve<double>::MAX_DEGREE + 1];
    for (unsigned int i = 0; i <= degree; ++i)
        row[i] = points[i];
    Point4 second = {0, 0, 0, 0};
    Point4 first = {0, 0, 0, 0};
    for (unsigned int left = degree; left > 0; --left)
    {
        if (left == 2)
            second = (row[0] - row[1] - row[1] + row[2]) * (degree * (degree - 1.0));
        if (left == 1)
            first = (row[1] - row[0]) * degree;
        for (unsigned int i = 0; i < left; ++i)
            row[i] = row[i].Between(row[i + 1], t);
    }
    PieceDerivatives result;
    double const w = row[0].w;
    result.point = row[0].Projected();
    result.first = (first.Space() - result.point * first.w) / w;
    result.second = (second.Space() - result.first * (2 * first.w) - result.point * second.w) / w;
    return result;
}

void PieceStack::HalveLast(bool secondComesLast) noexcept
{
    BezierPiece & last = pieces[count - 1];
    BezierPiece & added = pieces[count];
    ++count;
    if (secondComesLast)
    {
        last.Halve(last, added);
        return;
    }
    BezierPiece second;
    last.Halve(added, second);
    last = second;
}

void SpanToBezier(unsigned int degree, double const * knots, Point4 * points) noexcept
{
    double const start = knots[degree];
    double const end = knots[degree + 1];
    // The span's start: the last point of each step stays.
    for (unsigned int step = 1; step <= degree; ++step)
        for (unsigned int i = 0; i <= degree - step; ++i)
        {
            double const lower = knots[i + step];
            points[i] = points[i].Between(points[i + 1], (start - lower) / (knots[i + degree + 1] - lower));
        }
    // The span's end: all knots up to the start are equal to it now, and the first point of each step stays.
    for (unsigned int step = 1; step <= degree; ++step)
        for (unsigned int i = degree; i >= step; --i)
            points[i] = points[i - 1].Between(points[i], (end - start) / (knots[i + degree + 1 - step] - start));
}

} // namespace vek
