#include "Scene.h"

#include <utility>

namespace tool
{

void Scene::AddSegment(Point const & from, Point const & to, Color const & color)
{
    segments.push_back({from, to, color});
    bounds.Extend(from);
    bounds.Extend(to);
}

void Scene::AddTriangle(Triangle triangle)
{
    for (Point const & corner : {triangle.a, triangle.b, triangle.c})
        bounds.Extend(corner);
    triangles.push_back(std::move(triangle));
}

void Scene::AddBox(CVekBoundBox<double> const & box, Color const & color)
{
    // From each corner along each axis on which it has the minimum.
    for (unsigned int corner = 0; corner < 8; ++corner)
        for (unsigned int axis = 1; axis < 8; axis *= 2)
            if (!(corner & axis))
                AddSegment(box.Corner(corner), box.Corner(corner | axis), color);
}

} // namespace tool
