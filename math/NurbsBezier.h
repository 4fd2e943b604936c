// Bezier pieces of a NURBS curve in double precision: what the operations that measure are made of.
#pragma once

#include "VekNurbs.h"

#include "math/NurbsBasis.h"

namespace vek
{

/// A weighted point (w x, w y, w z, w). Unlike the vectors it is not set to 0 when it is made.
struct Point4
{
    double x, y, z, w;

    CVekVector3D<double> Space() const noexcept { return CVekVector3D<double>(x, y, z); }
    /// The point itself.
    CVekVector3D<double> Projected() const noexcept { return CVekVector3D<double>(x / w, y / w, z / w); }

    friend Point4 operator+(Point4 const & a, Point4 const & b) noexcept
    {
        return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
    }
    friend Point4 operator-(Point4 const & a, Point4 const & b) noexcept
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w};
    }
    friend Point4 operator*(Point4 const & a, double factor) noexcept
    {
        return {a.x * factor, a.y * factor, a.z * factor, a.w * factor};
    }
    Point4 Between(Point4 const & other, double t) const noexcept { return *this * (1 - t) + other * t; }
};

/// The point and two derivatives at a parameter of a piece.
struct PieceDerivatives
{
    CVekVector3D<double> point, first, second;
};

/// The square of the distance of a point to the segment between two others.
double SquareToSegment(CVekVector3D<double> const & point, CVekVector3D<double> const & from,
                       CVekVector3D<double> const & to) noexcept;

/// A rational Bezier curve over [0, 1] that stands for the part [start, end] of a curve's domain.
struct BezierPiece
{
    unsigned int degree;
    /// How often it was halved.
    unsigned int level;
    double start, end;
    Point4 points[CVekNurbsCurve<double>::MAX_DEGREE + 1];

    CVekVector3D<double> First() const noexcept { return points[0].Projected(); }
    CVekVector3D<double> Last() const noexcept { return points[degree].Projected(); }
    double ParameterAt(double t) const noexcept { return start * (1 - t) + end * t; }
    double Middle() const noexcept { return start + (end - start) / 2; }
    /// The box of the control points; the piece is inside.
    CVekBoundBox<double> Hull() const noexcept;
    /// The square of the largest distance of a control point to the chord, and so of the whole piece: the distance to a
    /// segment is a convex function.
    double SquareOfDeviation() const noexcept;
    /// Makes the two halves; first may be this piece. (De Casteljau's algorithm.)
    void Halve(BezierPiece & first, BezierPiece & second) const noexcept;
    /// By de Casteljau's algorithm, from its last three steps.
    PieceDerivatives DerivativesAt(double t) const noexcept;
};

/// Pieces that wait to be looked at, the next one last. Halving the last until a level needs one place per level.
struct PieceStack
{
    static constexpr unsigned int MAX_LEVEL = 30;

    unsigned int count = 0;
    BezierPiece pieces[MAX_LEVEL + 1];

    BezierPiece & Last() noexcept { return pieces[count - 1]; }
    /// Replaces the last piece by its halves; the first of them comes last, or the second.
    void HalveLast(bool secondComesLast) noexcept;
};

/// The degree + 1 control points that matter on a span, and the 2 degree + 2 knots around it; the span's first is
/// knots[degree].
template <class T>
void LoadSpan(CVekNurbsCurve<T> const & curve, unsigned int span, Point4 * points, double * knots) noexcept
{
    unsigned int const degree = curve.GetDegree();
    CVekVector4D<T> const * const from = curve.GetWeightedPoints() + (span - degree);
    for (unsigned int i = 0; i <= degree; ++i)
        points[i] = {from[i].x, from[i].y, from[i].z, from[i].w};
    T const * const knot = curve.GetKnots() + (span - degree);
    for (unsigned int i = 0; i <= 2 * degree + 1; ++i)
        knots[i] = knot[i];
}

/// Turns the control points of a span into those of its Bezier curve, by inserting both ends of the span until they
/// occur degree times; only means are taken.
void SpanToBezier(unsigned int degree, double const * knots, Point4 * points) noexcept;

/// The Bezier piece of a span that is not empty.
template <class T>
void LoadPiece(CVekNurbsCurve<T> const & curve, unsigned int span, BezierPiece & piece) noexcept
{
    double knots[2 * CVekNurbsCurve<T>::MAX_DEGREE + 2];
    LoadSpan(curve, span, piece.points, knots);
    piece.degree = curve.GetDegree();
    piece.level = 0;
    piece.start = knots[piece.degree];
    piece.end = knots[piece.degree + 1];
    SpanToBezier(piece.degree, knots, piece.points);
}

/// The box of some successive control points; the spans that have no others are inside.
template <class T>
CVekBoundBox<double> ControlBox(CVekNurbsCurve<T> const & curve, unsigned int first, unsigned int count) noexcept
{
    CVekBoundBox<double> box;
    for (unsigned int i = first; i < first + count; ++i)
    {
        CVekVector4D<double> const point(curve.GetWeightedPoints()[i]);
        box.Extend(point.XYZ() / point.w);
    }
    return box;
}

} // namespace vek
