/// @file
/// NURBS curves: rational B-spline curves of any degree up to 32.
///
/// @code
/// CVekVector3D<double> const points[] = {{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}};
/// CVekNurbsCurve<double> curve;
/// if (curve.CreateInterpolation(3, points, 4))
/// {
///     CVekVector3D<double> const middle = curve.GetPoint(curve.GetParameterAtLength(curve.GetLength() / 2));
///     VekLogOutput(0, L"The middle is at %g, %g.", middle.x, middle.y);
/// }
/// @endcode
#ifndef VEK_NURBS_H
#define VEK_NURBS_H

#include "VekExport.h"
#include "VekMath.h"

/// Which rule of CVekNurbsCurve::Create its input breaks.
enum VEK_NURBS_ERROR : unsigned int
{
    VEK_NURBS_ERROR_NONE = 0,
    VEK_NURBS_ERROR_DEGREE = 1,         ///< Not 1 to MAX_DEGREE.
    VEK_NURBS_ERROR_NO_POINTS = 2,      ///< Null.
    VEK_NURBS_ERROR_POINT_COUNT = 3,    ///< Not degree + 1 to MAX_POINTS.
    VEK_NURBS_ERROR_NO_KNOTS = 4,       ///< Null, but not 0 of them.
    VEK_NURBS_ERROR_KNOT_COUNT = 5,     ///< Not points + degree + 1.
    VEK_NURBS_ERROR_WEIGHT = 6,         ///< Not a positive normal number.
    VEK_NURBS_ERROR_POINT = 7,          ///< Not finite, or not when multiplied by its weight.
    VEK_NURBS_ERROR_KNOT = 8,           ///< Not finite, or too large.
    VEK_NURBS_ERROR_KNOT_ORDER = 9,     ///< Less than the one before.
    VEK_NURBS_ERROR_KNOT_REPEATED = 10, ///< Occurs too often.
    VEK_NURBS_ERROR_DOMAIN = 11         ///< knot[degree] is knot[number of control points].
};

/// What CVekNurbsCurve::Check tells.
struct VekNurbsError
{
    /// What was wrong.
    VEK_NURBS_ERROR code = VEK_NURBS_ERROR_NONE;
    /// The first point, weight or knot that breaks the rule, where one does.
    unsigned int index = 0;
};

/// A NURBS curve in space, a value: copies own their data. It is made of control points with positive weights and of
/// knots that don't decrease, as many as control points + degree + 1. The domain, over which its parameter runs, is
/// knot[degree] to knot[number of control points]; a knot within it occurs at most degree times, so that the curve has
/// no gaps. A new curve is empty: it has no points, and its operations return 0, false or nothing.
///
/// Evaluation takes any parameter: one outside the domain counts as its nearer end, NaN as its start. An operation that
/// changes the curve leaves it as it is, logs why and returns false when it fails. Operations that measure compute in
/// double precision for float curves too; coordinates up to 1e150 are safe there. A const curve may be used by many
/// threads at once.
///
/// The notation and most of the methods are those of Piegl and Tiller, The NURBS Book, 2nd edition (below: P & T).
template <class T>
class CVekNurbsCurve
{
public:
    static constexpr unsigned int MAX_DEGREE = 32; ///< The highest degree.
    /// Control points of one curve.
    static constexpr unsigned int MAX_POINTS = 1u << 20;
    /// Segments of one tessellation.
    static constexpr unsigned int MAX_SEGMENTS = 1u << 22;

    /// An empty curve.
    CVekNurbsCurve() noexcept : m_degree(0), m_pointCount(0), m_points(nullptr), m_knots(nullptr) {}
    /// A copy. When its memory can't be allocated the curve is empty.
    VEK_API CVekNurbsCurve(CVekNurbsCurve const & other) noexcept;
    VEK_API CVekNurbsCurve & operator=(CVekNurbsCurve const & other) noexcept;
    /// Takes the other curve's data over and leaves it empty.
    CVekNurbsCurve(CVekNurbsCurve && other) noexcept : CVekNurbsCurve() { Swap(other); }
    CVekNurbsCurve & operator=(CVekNurbsCurve && other) noexcept
    {
        CVekNurbsCurve taken(static_cast<CVekNurbsCurve &&>(other));
        Swap(taken);
        return *this;
    }
    VEK_API ~CVekNurbsCurve();
    /// Exchanges the two curves; nothing is copied.
    void Swap(CVekNurbsCurve & other) noexcept
    {
        Exchange(m_degree, other.m_degree);
        Exchange(m_pointCount, other.m_pointCount);
        Exchange(m_points, other.m_points);
        Exchange(m_knots, other.m_knots);
    }

    /// Makes the curve of these control points and knots, which are copied. Null for the weights makes them all 1; null
    /// and 0 for the knots makes them uniform from 0 to 1, so that the curve runs from the first point to the last.
    /// Coordinates must be finite, also when multiplied by their weights: the products are what the curve keeps, with
    /// the digits that they have (they underflow when both are very small). Weights must be positive normal numbers,
    /// knots finite and no larger than a quarter of the largest number. Only at both ends a knot may occur degree + 1
    /// times.
    VEK_API bool Create(unsigned int degree, CVekVector3D<T> const * points, T const * weights, unsigned int pointCount,
                        T const * knots = nullptr, unsigned int knotCount = 0) noexcept;
    /// What Create would refuse of these arguments; nothing is made and no message sent.
    VEK_API static VekNurbsError Check(unsigned int degree, CVekVector3D<T> const * points, T const * weights,
                                       unsigned int pointCount, T const * knots = nullptr,
                                       unsigned int knotCount = 0) noexcept;
    /// Makes a straight line from the parameter 0 to 1.
    VEK_API bool CreateLine(CVekVector3D<T> const & from, CVekVector3D<T> const & to) noexcept;
    /// Makes the Bezier curve of 2 to 33 points, from 0 to 1. The weights may be null.
    VEK_API bool CreateBezier(CVekVector3D<T> const * points, T const * weights, unsigned int pointCount) noexcept;
    /// Makes an exact arc of the ellipse centre + xAxis cos(angle) + yAxis sin(angle), from 0 to 1: a rational
    /// quadratic curve (P & T, A7.1). The axes' lengths are the radii. Angles are in radians; the sweep may be
    /// negative, is cut to a full turn and must not be 0. The parameter is not proportional to the angle.
    VEK_API bool CreateArc(CVekVector3D<T> const & centre, CVekVector3D<T> const & xAxis, CVekVector3D<T> const & yAxis,
                           T startAngle, T sweepAngle) noexcept;
    /// Makes the full circle, or ellipse, in the same way: from centre + xAxis over centre + yAxis back to the start.
    VEK_API bool CreateCircle(CVekVector3D<T> const & centre, CVekVector3D<T> const & xAxis,
                              CVekVector3D<T> const & yAxis) noexcept;
    /// Makes the curve through these points, of which no two neighbours may be equal, from 0 to 1. There must be more
    /// than degree points. Parameters are by chord length, knots by averaging (P & T, A9.1); the linear system is
    /// banded and totally positive, so that it is solved without pivoting. The higher the degree and the more unequal
    /// the points' distances are, the farther swings the curve between them, until control points in T are too coarse
    /// for it. False when it would then miss a point by more than 256 roundings of the points' extent.
    VEK_API bool CreateInterpolation(unsigned int degree, CVekVector3D<T> const * points,
                                     unsigned int pointCount) noexcept;
    /// Makes the curve empty.
    VEK_API void Destroy() noexcept;

    /// True for a curve without points.
    bool IsEmpty() const noexcept { return m_points == nullptr; }
    /// Degree, control points and knots as they are now; 0 for an empty curve.
    unsigned int GetDegree() const noexcept { return m_degree; }
    unsigned int GetPointCount() const noexcept { return m_pointCount; }
    unsigned int GetKnotCount() const noexcept { return m_points ? m_pointCount + m_degree + 1 : 0; }
    /// The control points as (w x, w y, w z, w), null for an empty curve; the curve keeps ownership.
    CVekVector4D<T> const * GetWeightedPoints() const noexcept { return m_points; }
    /// The knots, null for an empty curve; the curve keeps ownership.
    T const * GetKnots() const noexcept { return m_knots; }
    /// A control point, 0 for an index outside. The coordinates are as given but for the rounding of x w / w.
    CVekVector3D<T> GetControlPoint(unsigned int index) const noexcept
    {
        return index < m_pointCount ? CVekVector3D<T>(m_points[index].XYZ() / m_points[index].w) : CVekVector3D<T>();
    }
    /// The weight of a control point, 0 for an index outside.
    T GetWeight(unsigned int index) const noexcept { return index < m_pointCount ? m_points[index].w : T(0); }
    /// A knot, 0 for an index outside.
    T GetKnot(unsigned int index) const noexcept { return index < GetKnotCount() ? m_knots[index] : T(0); }
    /// The ends of the domain; 0 for an empty curve.
    T GetStart() const noexcept { return GetKnot(m_degree); }
    T GetEnd() const noexcept { return GetKnot(m_pointCount); }
    /// Moves a control point. False for an index outside, and for what Create refuses.
    VEK_API bool SetControlPoint(unsigned int index, CVekVector3D<T> const & point, T weight) noexcept;

    /// The point at a parameter, from the basis functions that are not 0 there (after P & T, A2.2 and A4.1). Nothing is
    /// allocated. The second form writes a point for each of count parameters, faster than one by one, with the same
    /// bits; neighbouring parameters should be near each other.
    VEK_API CVekVector3D<T> GetPoint(T parameter) const noexcept;
    VEK_API void GetPoints(T const * parameters, unsigned int count, CVekVector3D<T> * points) const noexcept;
    /// Writes the point and its derivatives by the parameter up to any order, order + 1 vectors (the control points'
    /// differences, and P & T, A4.2). At a knot they are those of the curve after it, at the domain's end before it.
    VEK_API bool GetDerivatives(T parameter, unsigned int order, CVekVector3D<T> * derivatives) const noexcept;
    /// The direction of growing parameters, of length 1. Where the first derivative is 0 the lowest one that is not 0
    /// tells; without one, 0.
    VEK_API CVekVector3D<T> GetTangent(T parameter) const noexcept;
    /// 1 / the radius of the osculating circle, |C' x C''| / |C'|^3; 0 where the first derivative is 0.
    VEK_API T GetCurvature(T parameter) const noexcept;

    /// Adds a knot of the domain so many times, without changing the curve (Boehm's algorithm). It may then occur at
    /// most degree times.
    VEK_API bool InsertKnot(T knot, unsigned int times = 1) noexcept;
    /// Makes both of the domain's ends knots that occur degree + 1 times, without changing the curve over its domain:
    /// it then runs from its first control point to its last.
    VEK_API bool ClampEnds() noexcept;
    /// Raises the degree so many times, without changing the curve; ends are clamped. By averages of refined control
    /// polygons (Prautzsch, Degree elevation of B-spline curves, CAGD 1, 1984), which extrapolate nothing.
    VEK_API bool ElevateDegree(unsigned int times = 1) noexcept;
    /// Makes the two curves before and after a parameter inside the domain, their ends clamped, over their parts of it.
    /// This curve stays as it is, unless it is one of the two itself.
    VEK_API bool Split(T parameter, CVekNurbsCurve & before, CVekNurbsCurve & after) const noexcept;
    /// Lets the curve run the other way, over the same domain. False when knots lie too close for that.
    VEK_API bool Reverse() noexcept;
    /// Transforms the curve as its points would be, by a projection too. False when a weight doesn't stay positive, as
    /// with a projection that has control points behind the viewer.
    VEK_API bool Transform(CVekMatrix4x4<T> const & transform) noexcept;

    /// Finds the parameter of the curve's point nearest to a given one, and the distance (which may be null). No point
    /// of the curve is nearer by more than one millionth of that distance: the curve is divided, and parts are left out
    /// when the box of their control points is not nearer; minima are refined by Newton's method between bounds. Of
    /// several nearest points it is any.
    VEK_API bool FindClosestPoint(CVekVector3D<T> const & point, T & parameter, T * distance = nullptr) const noexcept;
    /// The length of the curve, or of its part between two parameters in any order, within an absolute tolerance; 0 and
    /// below mean about the precision of T. By Gauss-Legendre quadrature of 8 points, halving until it holds.
    VEK_API T GetLength(T tolerance = T(0)) const noexcept;
    VEK_API T GetLengthBetween(T from, T to, T tolerance = T(0)) const noexcept;
    /// The parameter up to which the curve has a length, within the tolerance as above. Lengths outside the curve's
    /// give the ends of the domain, NaN its start. The second form writes a parameter for each of count lengths, with
    /// the same bits. Each length goes on where the one before was found, so that rising ones, as for even steps, take
    /// the curve's length once; the first form takes it up to its place each time.
    VEK_API T GetParameterAtLength(T length, T tolerance = T(0)) const noexcept;
    VEK_API void GetParametersAtLengths(T const * lengths, unsigned int count, T * parameters,
                                        T tolerance = T(0)) const noexcept;
    /// The number of points of a polyline that is nowhere farther from the curve than the tolerance, which must be
    /// positive; 0 without one. The first capacity points and their parameters are written; either array may be null.
    /// The points are on the curve, its ends and each knot's point among them. The control polygons of halved pieces
    /// decide, so that no bend is missed. A tolerance that would need more than MAX_SEGMENTS segments is not met.
    VEK_API unsigned int Tessellate(T tolerance, CVekVector3D<T> * points, T * parameters,
                                    unsigned int capacity) const noexcept;
    /// A box that contains the whole curve and is larger than the smallest one by at most a billionth of the size of
    /// the control polygon, and rounding. An empty curve has no box.
    VEK_API CVekBoundBox<T> GetBoundBox() const noexcept;

private:
    template <class V>
    static void Exchange(V & a, V & b) noexcept
    {
        V const old = a;
        a = b;
        b = old;
    }
    bool Allocate(unsigned int degree, unsigned int pointCount) noexcept;
    bool Refine(T const * inserted, unsigned int count, CVekNurbsCurve & result) const noexcept;
    bool Clamped(CVekNurbsCurve & result) const noexcept;
    bool Elevated(CVekNurbsCurve & result) const noexcept;
    bool Part(unsigned int firstPoint, unsigned int count, CVekNurbsCurve & result) const noexcept;

    unsigned int m_degree;
    unsigned int m_pointCount;
    CVekVector4D<T> * m_points;
    T * m_knots;
};

#endif
