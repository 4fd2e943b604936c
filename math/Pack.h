#pragma once

#include <string.h>

namespace vek
{

/// 16 bytes of numbers that one instruction works on; + - * / work lane by lane with the rounding of single ones.
template <class T>
struct PackOf
{
    typedef T Type __attribute__((vector_size(16)));
    static constexpr size_t LANES = 16 / sizeof(T);
};
template <class T>
using Pack = typename PackOf<T>::Type;

/// From and to any address.
template <class T>
inline Pack<T> LoadPack(T const * source) noexcept
{
    Pack<T> pack;
    memcpy(&pack, source, sizeof pack);
    return pack;
}
template <class T>
inline void StorePack(T * target, Pack<T> const & pack) noexcept
{
    memcpy(target, &pack, sizeof pack);
}

inline Pack<float> Splat(float value) noexcept
{
    return Pack<float>{value, value, value, value};
}
inline Pack<double> Splat(double value) noexcept
{
    return Pack<double>{value, value};
}

} // namespace vek
