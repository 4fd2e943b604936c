// A picture as tests look at it: which pixels have a colour, and where.
#pragma once

#include <cstdint>
#include <vector>

struct Picture
{
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels; // rows from the top, 0x00RRGGBB

    std::uint32_t At(int x, int y) const
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    bool operator==(Picture const &) const = default;
};

/// The pixels of a colour: how many, and the middle of them all.
struct Spot
{
    int count = 0;
    double x = 0, y = 0;
};

/// Finds the pixels in which each primary colour stands out as wanted: '+' for at least 100, '-' for less than 80.
/// "+--" is any red, "++-" any yellow.
inline Spot FindColor(Picture const & picture, char const * wanted)
{
    Spot spot;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
        {
            bool matches = true;
            for (unsigned int i = 0; i < 3; ++i)
            {
                std::uint32_t const primary = picture.At(x, y) >> (16 - 8 * i) & 0xFF;
                matches = matches && (wanted[i] == '+' ? primary >= 100 : primary < 80);
            }
            if (!matches)
                continue;
            ++spot.count;
            spot.x += x + 0.5;
            spot.y += y + 0.5;
        }
    if (spot.count > 0)
    {
        spot.x /= spot.count;
        spot.y /= spot.count;
    }
    return spot;
}
