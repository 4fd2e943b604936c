#include "Canvas.h"

#include <algorithm>
#include <cmath>

namespace tool
{

namespace
{

/// Twice the area of the triangle a, b, p, negative when they run the other way.
double Side(Canvas::Place const & a, Canvas::Place const & b, double x, double y)
{
    return (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
}

/// The pixels from the lowest to the highest of three coordinates, within [0, size).
void Range(double a, double b, double c, int size, int & first, int & last)
{
    first = static_cast<int>(std::max(0.0, std::floor(std::min({a, b, c}))));
    last = static_cast<int>(std::min(size - 1.0, std::floor(std::max({a, b, c}))));
}

} // namespace

void Canvas::Resize(int width, int height)
{
    std::size_t const size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    m_pixels.resize(size);
    m_nearness.resize(size);
    m_width = width;
    m_height = height;
}

void Canvas::Clear(std::uint32_t color)
{
    std::fill(m_pixels.begin(), m_pixels.end(), color);
    std::fill(m_nearness.begin(), m_nearness.end(), -1.0f);
}

void Canvas::Set(int x, int y, double nearness, std::uint32_t color)
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height)
        return;
    std::size_t const i = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    float const rounded = static_cast<float>(nearness);
    if (rounded < m_nearness[i])
        return;
    m_nearness[i] = rounded;
    m_pixels[i] = color;
}

void Canvas::DrawLine(Place const & from, Place const & to, std::uint32_t color)
{
    double const length = std::max(std::fabs(to.x - from.x), std::fabs(to.y - from.y));
    if (!(length <= 4.0 * (m_width + m_height))) // no number, or not clipped
        return;
    int const steps = static_cast<int>(std::ceil(length));
    double const part = steps == 0 ? 0.0 : 1.0 / steps;
    double const dx = (to.x - from.x) * part, dy = (to.y - from.y) * part, dn = (to.nearness - from.nearness) * part;
    // What was clipped is not negative, or so little that cutting it off is right: no rounding down is needed.
    for (int i = 0; i <= steps; ++i)
        Set(static_cast<int>(from.x + dx * i), static_cast<int>(from.y + dy * i), from.nearness + dn * i, color);
}

void Canvas::FillTriangle(Place const & a, Place const & b, Place const & c, std::uint32_t color)
{
    double const area = Side(a, b, c.x, c.y);
    if (!(std::fabs(area) > 1e-9) || !(std::fabs(area) < 1e18)) // an edge, no number, or not clipped
        return;
    int left, right, top, bottom;
    Range(a.x, b.x, c.x, m_width, left, right);
    Range(a.y, b.y, c.y, m_height, top, bottom);
    double const stepA = (b.y - c.y) / area, stepB = (c.y - a.y) / area; // of the weights, for each pixel
    // A line goes through a pixel up to half a pixel beside its middle: so much farther, lines on a slope are seen.
    double const across = stepA * (a.nearness - c.nearness) + stepB * (b.nearness - c.nearness);
    double const down = ((c.x - b.x) * (a.nearness - c.nearness) + (a.x - c.x) * (b.nearness - c.nearness)) / area;
    double const lowering = (std::fabs(across) + std::fabs(down)) / 2;
    double const least = std::min({a.nearness, b.nearness, c.nearness});
    for (int y = top; y <= bottom; ++y)
    {
        double const weightA = Side(b, c, left + 0.5, y + 0.5) / area, weightB = Side(c, a, left + 0.5, y + 0.5) / area;
        for (int x = left; x <= right; ++x)
        {
            double const wa = weightA + stepA * (x - left), wb = weightB + stepB * (x - left), wc = 1.0 - wa - wb;
            if (wa >= 0 && wb >= 0 && wc >= 0)
                Set(x, y, std::max(wa * a.nearness + wb * b.nearness + wc * c.nearness - lowering, least), color);
        }
    }
}

} // namespace tool
