#include "Picker.h"

namespace tool
{

Pick PickTriangle(Scene const & scene, SceneView::Ray const & ray)
{
    using Vector = CVekVector3D<double>;
    Pick pick;
    double nearest = 1; // where the ray ends
    for (std::size_t i = 0; i < scene.triangles.size(); ++i)
    {
        Triangle const & triangle = scene.triangles[i];
        Vector const a(triangle.a), b(triangle.b), c(triangle.c);
        double t = 0;
        Vector hit;
        if (!CVekMath64::RayTriangleIntersection(ray.from, ray.to, a, b, c, (b - a).Cross(c - a), VEK_RT_BOTH_FACES, t,
                                                 hit, nullptr) ||
            !(t >= 0 && t <= nearest))
            continue;
        nearest = t;
        pick.triangle = static_cast<int>(i);
        pick.point = Point(hit);
    }
    return pick;
}

} // namespace tool
