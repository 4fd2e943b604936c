#include "Clipper.h"

#include <algorithm>
#include <cmath>

namespace tool
{

namespace
{

using Vector = Clipper::Vector;

/// How far a point is on the inner side of a plane, negative outside.
double Inside(Vector const & p, std::size_t plane)
{
    switch (plane)
    {
    case 0:
        return p.z;
    case 1:
        return p.w - p.z;
    case 2:
        return p.w + p.x;
    case 3:
        return p.w - p.x;
    case 4:
        return p.w + p.y;
    default:
        return p.w - p.y;
    }
}

bool IsFinite(Vector const & p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z) && std::isfinite(p.w);
}

/// Where the line between points on different sides of a plane meets it.
Vector Meet(Vector const & a, double insideA, Vector const & b, double insideB)
{
    return a + (b - a) * (insideA / (insideA - insideB));
}

} // namespace

bool Clipper::Clip(Vector & from, Vector & to)
{
    if (!IsFinite(from) || !IsFinite(to))
        return false;
    for (std::size_t plane = 0; plane < PLANES; ++plane)
    {
        double const a = Inside(from, plane), b = Inside(to, plane);
        if (a < 0 && b < 0)
            return false;
        if (a < 0)
            from = Meet(from, a, to, b);
        else if (b < 0)
            to = Meet(from, a, to, b);
    }
    return from.w > 0 && to.w > 0;
}

std::size_t Clipper::Clip(Vector (&corners)[MOST_CORNERS], std::size_t count)
{
    if (!std::all_of(corners, corners + count, IsFinite))
        return 0;
    Vector kept[MOST_CORNERS];
    for (std::size_t plane = 0; plane < PLANES; ++plane)
    {
        std::size_t keptCount = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            Vector const & here = corners[i];
            Vector const & next = corners[(i + 1) % count];
            double const a = Inside(here, plane), b = Inside(next, plane);
            if (a >= 0 && keptCount < MOST_CORNERS)
                kept[keptCount++] = here;
            if ((a < 0) != (b < 0) && keptCount < MOST_CORNERS)
                kept[keptCount++] = Meet(here, a, next, b);
        }
        count = keptCount;
        std::copy(kept, kept + count, corners);
    }
    bool const visible = std::all_of(corners, corners + count, [](Vector const & p) { return p.w > 0; });
    return count >= 3 && visible ? count : 0;
}

} // namespace tool
