#pragma once

#include "VekLib.h"

#include <optional>
#include <string>
#include <vector>

namespace tool
{

/// In the world: all the digits that the file gave.
using Point = CVekVector3D<double>;
using Color = CVekRGBA<unsigned char>;

struct Segment
{
    Point from, to;
    Color color;
};

struct Triangle
{
    Point a, b, c;
    Color color;
    std::wstring name;
};

/// Where a scene wants to be seen from.
struct SceneCamera
{
    Point eye, target, up{0, 1, 0};
    double fieldOfView = 45; // in degrees, between the upper and the lower plane
    VEK_PROJECTIONMODE projection = VEK_PROJECTIONMODE_PERSPECTIVE;
    VEK_COORDSYSTEM coordSystem = VEK_COORDSYSTEM_RIGHTHANDED;
};

/// What a file describes, reduced to what can be drawn.
struct Scene
{
    std::vector<Segment> segments;
    std::vector<Triangle> triangles;
    std::optional<SceneCamera> camera;
    CVekBoundBox<double> bounds;

    /// Calls visit(point) for all that is in the scene.
    template <class Visit>
    void ForEachPoint(Visit visit) const
    {
        for (Segment const & segment : segments)
            for (Point const * point : {&segment.from, &segment.to})
                visit(*point);
        for (Triangle const & triangle : triangles)
            for (Point const * point : {&triangle.a, &triangle.b, &triangle.c})
                visit(*point);
    }

    void AddSegment(Point const & from, Point const & to, Color const & color);
    void AddTriangle(Triangle triangle);
    void AddBox(CVekBoundBox<double> const & box, Color const & color);
};

} // namespace tool
