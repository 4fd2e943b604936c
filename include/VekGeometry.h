/// @file
/// Linear systems, barycentric coordinates, and the intersections of rays, in both precisions.
///
/// @code
/// CVekVector3D<double> const eye(0, 0, -5), behindPointer(0.2, 0.1, -4);
/// CVekVector3D<double> const a(-1, -1, 0), b(1, -1, 0), c(0, 1, 0);
/// CVekVector3D<double> hit;
/// double t = 0;
/// bool const isHit = CVekMath64::RayTriangleIntersection(eye, behindPointer, a, b, c, (b - a).Cross(c - a),
///                                                        VEK_RT_BOTH_FACES, t, hit, nullptr);
/// @endcode
#ifndef VEK_GEOMETRY_H
#define VEK_GEOMETRY_H

#include "VekExport.h"
#include "VekMath.h"

/// Which triangles RayTriangleIntersection leaves out; the front of a triangle is where its normal points.
enum VEK_RAYTRIANGLE_FLAGS
{
    VEK_RT_BOTH_FACES = 0,
    VEK_RT_SKIP_BACK_FACES = 1,
    VEK_RT_SKIP_FRONT_FACES = 2
};

/// The numeric routines in single precision. A division by zero is avoided by exact comparison with 0; that is no
/// error and is not logged. Invalid arguments are logged.
class VEK_API CVekMath32
{
public:
    /// Decomposes a square matrix in place by Doolittle's elimination with partial pivoting and returns its
    /// determinant, or 0 when a pivot is 0: matrix and order are left as far as they were worked then. Row k of the
    /// result is the matrix's row order[k], no row is moved; below the diagonal is L (its own diagonal is 1), on it and
    /// above is U. The order table has one entry for each row. Each element is worked in one fixed order of operations,
    /// so that the result has the same bits on every machine.
    static float LUDecompose(CVekMatrix<float> & a, unsigned int * order) noexcept;
    /// Solves A x = src with a decomposed matrix and its order table; result may be src. Sums run from low to high
    /// indices. Leaves result as it is when an argument is missing, the order table names rows that the matrix has not,
    /// or there is no memory.
    static void LUSubstitution(CVekMatrix<float> const & a, unsigned int const * order, float const * src,
                               float * result) noexcept;
    /// Makes the scaling and translation that map box B onto box A; with uniform, all axes are scaled by the smallest
    /// of the three factors, and the centres match. False when B has no extent along an axis: m is the identity then.
    static bool BoxToBoxTransform(CVekMatrix4x4<float> & m, CVekBoundBox<float> const & boxA,
                                  CVekBoundBox<float> const & boxB, bool uniform) noexcept;
    /// The weights of a, b and c that give the point p, as x, y and z of out. False when the three lie on one line: out
    /// is left as it is then.
    static bool FindBaryCentric(CVekVector2D<float> const & p, CVekVector2D<float> const & a,
                                CVekVector2D<float> const & b, CVekVector2D<float> const & c,
                                CVekVector3D<float> & out) noexcept;
    /// Where the line from p0 through p1 meets a plane: hit = p0 + (p1 - p0) t, for any t, behind p0 and beyond p1 too.
    /// False when it is parallel: t and hit are left as they are then.
    static bool RayPlaneIntersection(CVekVector3D<float> const & p0, CVekVector3D<float> const & p1,
                                     CVekPlane<float> const & plane, float & t, CVekVector3D<float> & hit) noexcept;
    /// Where the line from p0 through p1 meets the triangle a, b, c with that normal, which need not have length 1;
    /// flags are of VEK_RAYTRIANGLE_FLAGS. t and hit tell the point on the triangle's plane, weights (may be null) the
    /// barycentric weights of a, b and c there; a point belongs to the triangle when each is within [-threshold, 1 +
    /// threshold]. Outputs are written as far as the computation came, for points outside too.
    /// Always false in single precision, for a hit too: look at the weights.
    static bool RayTriangleIntersection(CVekVector3D<float> const & p0, CVekVector3D<float> const & p1,
                                        CVekVector3D<float> const & a, CVekVector3D<float> const & b,
                                        CVekVector3D<float> const & c, CVekVector3D<float> const & normal,
                                        unsigned int flags, float & t, CVekVector3D<float> & hit,
                                        CVekVector3D<float> * weights) noexcept;

    /// The process-wide tolerance of barycentric weights, 0.0001 at the start. It is not guarded by a lock.
    static void SetErrorThreshold(float threshold) noexcept;
    static float GetErrorThreshold() noexcept;
};

/// The numeric routines in double precision, as in CVekMath32 unless they say otherwise.
class VEK_API CVekMath64
{
public:
    /// Of a float matrix only the determinant is accumulated in double precision, the elements are worked as floats.
    static double LUDecompose(CVekMatrix<float> & a, unsigned int * order) noexcept;
    static double LUDecompose(CVekMatrix<double> & a, unsigned int * order) noexcept;
    /// As in CVekMath32.
    static void LUSubstitution(CVekMatrix<float> const & a, unsigned int const * order, double const * src,
                               double * result) noexcept;
    static void LUSubstitution(CVekMatrix<double> const & a, unsigned int const * order, double const * src,
                               double * result) noexcept;
    static bool BoxToBoxTransform(CVekMatrix4x4<double> & m, CVekBoundBox<double> const & boxA,
                                  CVekBoundBox<double> const & boxB, bool uniform) noexcept;
    static bool FindBaryCentric(CVekVector2D<double> const & p, CVekVector2D<double> const & a,
                                CVekVector2D<double> const & b, CVekVector2D<double> const & c,
                                CVekVector3D<double> & out) noexcept;
    static bool RayPlaneIntersection(CVekVector3D<double> const & p0, CVekVector3D<double> const & p1,
                                     CVekPlane<double> const & plane, double & t, CVekVector3D<double> & hit) noexcept;
    /// True for a hit.
    static bool RayTriangleIntersection(CVekVector3D<double> const & p0, CVekVector3D<double> const & p1,
                                        CVekVector3D<double> const & a, CVekVector3D<double> const & b,
                                        CVekVector3D<double> const & c, CVekVector3D<double> const & normal,
                                        unsigned int flags, double & t, CVekVector3D<double> & hit,
                                        CVekVector3D<double> * weights) noexcept;

    /// As in CVekMath32, a tolerance of its own.
    static void SetErrorThreshold(double threshold) noexcept;
    static double GetErrorThreshold() noexcept;
};

/// Sets the threshold of CVekMath32 for a scope, for all threads, and puts the earlier one back at its end.
class CVekSetMath32ErrorThreshHold
{
public:
    /// Remembers the earlier threshold and sets this one.
    explicit CVekSetMath32ErrorThreshHold(float threshold) noexcept
        : m_previousThreshold(CVekMath32::GetErrorThreshold())
    {
        CVekMath32::SetErrorThreshold(threshold);
    }
    ~CVekSetMath32ErrorThreshHold() { CVekMath32::SetErrorThreshold(m_previousThreshold); }
    CVekSetMath32ErrorThreshHold(CVekSetMath32ErrorThreshHold const &) = default;
    CVekSetMath32ErrorThreshHold & operator=(CVekSetMath32ErrorThreshHold const &) = default;

private:
    float m_previousThreshold;
};

/// The same for CVekMath64.
class CVekSetMath64ErrorThreshHold
{
public:
    /// Remembers the earlier threshold and sets this one.
    explicit CVekSetMath64ErrorThreshHold(double threshold) noexcept
        : m_previousThreshold(CVekMath64::GetErrorThreshold())
    {
        CVekMath64::SetErrorThreshold(threshold);
    }
    ~CVekSetMath64ErrorThreshHold() { CVekMath64::SetErrorThreshold(m_previousThreshold); }
    CVekSetMath64ErrorThreshHold(CVekSetMath64ErrorThreshHold const &) = default;
    CVekSetMath64ErrorThreshHold & operator=(CVekSetMath64ErrorThreshHold const &) = default;

private:
    double m_previousThreshold;
};

#endif
