#pragma once

#include "VekLib.h"

#include <optional>
#include <string>
#include <vector>

namespace tool
{

using Point = CVekVector3D<float>;
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
    float fieldOfView = 45; // in degrees, between the upper and the lower plane
    VEK_PROJECTIONMODE projection = VEK_PROJECTIONMODE_PERSPECTIVE;
    VEK_COORDSYSTEM coordSystem = VEK_COORDSYSTEM_RIGHTHANDED;
};

/// What a file describes, reduced to what can be drawn.
struct Scene
{
    std::vector<Segment> segments;
    std::vector<Triangle> triangles;
    std::optional<SceneCamera> camera;
    CVekBoundBox<float> bounds;

    void AddSegment(Point const & from, Point const & to, Color const & color);
    void AddTriangle(Triangle triangle);
    void AddBox(CVekBoundBox<float> const & box, Color const & color);
};

} // namespace tool
