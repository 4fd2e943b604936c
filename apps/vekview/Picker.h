#pragma once

#include "SceneView.h"

namespace tool
{

/// The triangle that a ray meets first.
struct Pick
{
    int triangle = -1; // its index, or -1 for none
    Point point;

    Point const * Hit() const { return triangle < 0 ? nullptr : &point; }
};

Pick PickTriangle(Scene const & scene, SceneView::Ray const & ray);

} // namespace tool
