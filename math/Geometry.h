#pragma once

#include "VekCore.h"
#include "VekGeometry.h"

#include "base/Compiler.h"
#include "math/LUDecomposition.h"
#include "math/LUSubstitution.h"

namespace vek
{

/// The routines of CVekMath32 and CVekMath64, which differ in the precision T and in the class name of messages.
template <class T>
class Geometry
{
public:
    explicit constexpr Geometry(wchar_t const * className) noexcept : m_className(className) {}

    template <class Element>
    VEK_ALWAYS_INLINE T LUDecompose(CVekMatrix<Element> & a, unsigned int * order) const noexcept
    {
        if (a.GetRows() != a.GetColumns())
        {
            VekLogOutput(0, L"%s::LUDecompose --> matrix must be square ( eg, 3x3, 4x4 )", m_className);
            return 0;
        }
        if (!order)
        {
            // Kept: the substitution's name in the decomposition's message.
            VekLogOutput(0, L"%s::LUSubstitution --> pOrderTable must not be NULL", m_className);
            return 0;
        }
        if (a.GetRows() == 0 || !a.GetElements())
            return 0;
        return LUDecomposition<Element, T>(a.GetElements(), order, a.GetRows()).Run();
    }

    template <class Element>
    VEK_ALWAYS_INLINE void LUSubstitution(CVekMatrix<Element> const & a, unsigned int const * order, T const * src,
                                          T * result) const noexcept
    {
        if (a.GetRows() != a.GetColumns())
            VekLogOutput(0, L"%s::LUSubstitution --> matrix must be square ( eg, 3x3, 4x4 )", m_className);
        else if (!order)
            VekLogOutput(0, L"%s::LUSubstitution --> pOrderTable must not be NULL", m_className);
        else if (!src)
            VekLogOutput(0, L"%s::LUSubstitution --> src must not be NULL", m_className);
        else if (!result)
            VekLogOutput(0, L"%s::LUSubstitution --> result must not be NULL", m_className);
        else if (a.GetRows() != 0 && a.GetElements())
            vek::LUSubstitution<Element, T>(a.GetElements(), order, a.GetRows()).Run(src, result);
    }

    static bool BoxToBoxTransform(CVekMatrix4x4<T> & m, CVekBoundBox<T> const & boxA, CVekBoundBox<T> const & boxB,
                                  bool uniform) noexcept
    {
        m.SetIdentity();
        CVekVector3D<T> const sizeA = boxA.Size(), sizeB = boxB.Size();
        if (sizeB.x == T(0) || sizeB.y == T(0) || sizeB.z == T(0))
            return false;
        CVekVector3D<T> scale(sizeA.x / sizeB.x, sizeA.y / sizeB.y, sizeA.z / sizeB.z);
        if (uniform)
        {
            T const xy = scale.y < scale.x ? scale.y : scale.x;
            T const smallest = scale.z < xy ? scale.z : xy;
            scale = CVekVector3D<T>(smallest, smallest, smallest);
        }
        m.Scale(scale.x, scale.y, scale.z);
        CVekVector3D<T> const a = boxA.Centre(), b = boxB.Centre();
        m.SetTranslation(CVekVector3D<T>(a.x - b.x * scale.x, a.y - b.y * scale.y, a.z - b.z * scale.z));
        return true;
    }

    static bool FindBaryCentric(CVekVector2D<T> const & p, CVekVector2D<T> const & a, CVekVector2D<T> const & b,
                                CVekVector2D<T> const & c, CVekVector3D<T> & out) noexcept
    {
        T const denominator = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        if (denominator == T(0))
            return false;
        out = CVekVector3D<T>(((c.y - p.y) * (b.x - p.x) - (b.y - p.y) * (c.x - p.x)) / denominator,
                              ((c.x - p.x) * (a.y - p.y) - (a.x - p.x) * (c.y - p.y)) / denominator,
                              ((b.y - p.y) * (a.x - p.x) - (a.y - p.y) * (b.x - p.x)) / denominator);
        return true;
    }

    static bool RayPlaneIntersection(CVekVector3D<T> const & p0, CVekVector3D<T> const & p1, CVekPlane<T> const & plane,
                                     T & t, CVekVector3D<T> & hit) noexcept
    {
        CVekVector3D<T> const direction = p1 - p0, normal = plane.Normal();
        T const denominator = normal.Dot(direction);
        if (denominator == T(0))
            return false;
        // Outputs last: they may be parts of the inputs.
        T const at = -(normal.Dot(p0) + plane.d) / denominator;
        hit = p0 + direction * at;
        t = at;
        return true;
    }

    VEK_ALWAYS_INLINE static bool RayTriangleIntersection(CVekVector3D<T> const & p0, CVekVector3D<T> const & p1,
                                                          CVekVector3D<T> const & a, CVekVector3D<T> const & b,
                                                          CVekVector3D<T> const & c, CVekVector3D<T> const & normal,
                                                          unsigned int flags, T threshold, T & t, CVekVector3D<T> & hit,
                                                          CVekVector3D<T> * weights) noexcept
    {
        T const facing = normal.Dot(p1 - p0);
        if (((flags & VEK_RT_SKIP_BACK_FACES) && facing > T(0)) || ((flags & VEK_RT_SKIP_FRONT_FACES) && facing < T(0)))
            return false;
        // Dropping the axis along which the triangle is seen largest loses the fewest digits.
        unsigned int const dropped = normal.LargestAxis(), u = dropped == 2 ? 0 : dropped + 1, v = u == 2 ? 0 : u + 1;
        CVekVector2D<T> const flatA(a[u], a[v]), flatB(b[u], b[v]), flatC(c[u], c[v]);
        if (!RayPlaneIntersection(p0, p1, CVekPlane<T>(normal, a), t, hit))
            return false;
        CVekVector3D<T> at;
        if (!FindBaryCentric(CVekVector2D<T>(hit[u], hit[v]), flatA, flatB, flatC, at))
            return false;
        if (weights)
            *weights = at;
        auto const inside = [threshold](T weight) { return weight >= -threshold && weight <= T(1) + threshold; };
        return inside(at.x) && inside(at.y) && inside(at.z);
    }

private:
    wchar_t const * m_className;
};

} // namespace vek
