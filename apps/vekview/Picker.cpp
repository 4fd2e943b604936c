#include "Picker.h"

namespace tool
{

Pick PickTriangle(Scene const & scene, SceneView::Ray const & ray)
{
    Pick pick;
    double nearest = 1; // where the ray ends
    for (std::size_t i = 0; i < scene.triangles.size(); ++i)
    {
        Triangle const & triangle = scene.triangles[i];
        Point const a = triangle.a - ray.origin, b = triangle.b - ray.origin, c = triangle.c - ray.origin;
        double t = 0;
        Point hit;
        if (!CVekMath64::RayTriangleIntersection(ray.from, ray.to, a, b, c, (b - a).Cross(c - a), VEK_RT_BOTH_FACES, t,
                                                 hit, nullptr) ||
            !(t >= 0 && t <= nearest))
            continue;
        nearest = t;
        pick.triangle = static_cast<int>(i);
        pick.point = ray.origin + hit;
    }
    return pick;
}

} // namespace tool
