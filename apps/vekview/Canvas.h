#pragma once

#include <cstdint>
#include <vector>

namespace tool
{

/// A picture that knows how near each pixel is. Everything is drawn here, pixel by pixel, so that a window and a file
/// show the same.
class Canvas
{
public:
    /// Where something is drawn: x and y in pixels from the upper left corner. What is nearer has the larger nearness,
    /// from 0 to about 1, which changes linearly over the picture.
    struct Place
    {
        double x, y, nearness;
    };

    void Resize(int width, int height);
    void Clear(std::uint32_t color);
    /// What lies outside the picture is left out; what is nearer hides what is farther.
    void DrawLine(Place const & from, Place const & to, std::uint32_t color);
    void FillTriangle(Place const & a, Place const & b, Place const & c, std::uint32_t color);

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    /// The rows from the top, each pixel 0x00RRGGBB.
    std::uint32_t const * Pixels() const { return m_pixels.data(); }

private:
    void Set(int x, int y, double nearness, std::uint32_t color);

    int m_width = 0;
    int m_height = 0;
    std::vector<std::uint32_t> m_pixels;
    std::vector<float> m_nearness;
};

} // namespace tool
