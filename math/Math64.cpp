#include "math/Geometry.h"

namespace
{

constexpr vek::Geometry<double> GEOMETRY(L"CVekMath64");

double g_errorThreshold = 0.0001;

} // namespace

double CVekMath64::LUDecompose(CVekMatrix<float> & a, unsigned int * order) noexcept
{
    return GEOMETRY.LUDecompose(a, order);
}

double CVekMath64::LUDecompose(CVekMatrix<double> & a, unsigned int * order) noexcept
{
    return GEOMETRY.LUDecompose(a, order);
}

void CVekMath64::LUSubstitution(CVekMatrix<float> const & a, unsigned int const * order, double const * src,
                                double * result) noexcept
{
    GEOMETRY.LUSubstitution(a, order, src, result);
}

void CVekMath64::LUSubstitution(CVekMatrix<double> const & a, unsigned int const * order, double const * src,
                                double * result) noexcept
{
    GEOMETRY.LUSubstitution(a, order, src, result);
}

bool CVekMath64::BoxToBoxTransform(CVekMatrix4x4<double> & m, CVekBoundBox<double> const & boxA,
                                   CVekBoundBox<double> const & boxB, bool uniform) noexcept
{
    return GEOMETRY.BoxToBoxTransform(m, boxA, boxB, uniform);
}

bool CVekMath64::FindBaryCentric(CVekVector2D<double> const & p, CVekVector2D<double> const & a,
                                 CVekVector2D<double> const & b, CVekVector2D<double> const & c,
                                 CVekVector3D<double> & out) noexcept
{
    return GEOMETRY.FindBaryCentric(p, a, b, c, out);
}

bool CVekMath64::RayPlaneIntersection(CVekVector3D<double> const & p0, CVekVector3D<double> const & p1,
                                      CVekPlane<double> const & plane, double & t, CVekVector3D<double> & hit) noexcept
{
    return GEOMETRY.RayPlaneIntersection(p0, p1, plane, t, hit);
}

bool CVekMath64::RayTriangleIntersection(CVekVector3D<double> const & p0, CVekVector3D<double> const & p1,
                                         CVekVector3D<double> const & a, CVekVector3D<double> const & b,
                                         CVekVector3D<double> const & c, CVekVector3D<double> const & normal,
                                         unsigned int flags, double & t, CVekVector3D<double> & hit,
                                         CVekVector3D<double> * weights) noexcept
{
    return GEOMETRY.RayTriangleIntersection(p0, p1, a, b, c, normal, flags, g_errorThreshold, t, hit, weights);
}

void CVekMath64::SetErrorThreshold(double threshold) noexcept
{
    g_errorThreshold = threshold;
}

double CVekMath64::GetErrorThreshold() noexcept
{
    return g_errorThreshold;
}
