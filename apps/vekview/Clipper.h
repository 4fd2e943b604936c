#pragma once

#include "VekMath.h"

#include <cstddef>

namespace tool
{

/// Cuts what was projected down to the view volume: -w <= x <= w, -w <= y <= w, 0 <= z <= w. What is behind the eye is
/// gone before anything is divided by w.
class Clipper
{
public:
    using Vector = CVekVector4D<double>;
    static constexpr std::size_t PLANES = 6;
    static constexpr std::size_t MOST_CORNERS = 3 + PLANES; // each plane can add one

    /// Shortens the segment to what is visible; false when nothing is.
    static bool Clip(Vector & from, Vector & to);
    /// Replaces the corners of a convex polygon by those of its visible part; returns their number, 0 for none.
    static std::size_t Clip(Vector (&corners)[MOST_CORNERS], std::size_t count);
};

} // namespace tool
