#pragma once

#include "VekIO.h"

#include <bit>
#include <type_traits>

namespace vek
{

/// The unsigned type with the bits of a value that a stream stores.
template <class T>
using BitsOf =
    std::conditional_t<sizeof(T) == 1, unsigned char,
                       std::conditional_t<sizeof(T) == 2, unsigned short,
                                          std::conditional_t<sizeof(T) == 4, unsigned int, unsigned long long>>>;

/// A value's bits, reversed byte by byte if told so.
template <class T>
BitsOf<T> ToBits(T value, bool reversed) noexcept
{
    auto const bits = std::bit_cast<BitsOf<T>>(value);
    return reversed ? VekReverseBytes(bits) : bits;
}

template <class T>
T FromBits(BitsOf<T> bits, bool reversed) noexcept
{
    return std::bit_cast<T>(reversed ? VekReverseBytes(bits) : bits);
}

} // namespace vek
