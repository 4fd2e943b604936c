#pragma once

#include <emmintrin.h>
#include <stddef.h>

namespace vek
{

/// 16 bytes of numbers that one instruction works on; + - * work lane by lane with the rounding of single ones.
template <class T>
struct Pack;

template <>
struct Pack<float>
{
    static constexpr size_t LANES = 4;
    __m128 value;
};

template <>
struct Pack<double>
{
    static constexpr size_t LANES = 2;
    __m128d value;
};

inline Pack<float> operator+(Pack<float> a, Pack<float> b) noexcept
{
    return {_mm_add_ps(a.value, b.value)};
}
inline Pack<double> operator+(Pack<double> a, Pack<double> b) noexcept
{
    return {_mm_add_pd(a.value, b.value)};
}
inline Pack<float> operator-(Pack<float> a, Pack<float> b) noexcept
{
    return {_mm_sub_ps(a.value, b.value)};
}
inline Pack<double> operator-(Pack<double> a, Pack<double> b) noexcept
{
    return {_mm_sub_pd(a.value, b.value)};
}
inline Pack<float> operator*(Pack<float> a, Pack<float> b) noexcept
{
    return {_mm_mul_ps(a.value, b.value)};
}
inline Pack<double> operator*(Pack<double> a, Pack<double> b) noexcept
{
    return {_mm_mul_pd(a.value, b.value)};
}

/// From and to any address.
inline Pack<float> LoadPack(float const * source) noexcept
{
    return {_mm_loadu_ps(source)};
}
inline Pack<double> LoadPack(double const * source) noexcept
{
    return {_mm_loadu_pd(source)};
}
inline void StorePack(float * target, Pack<float> pack) noexcept
{
    _mm_storeu_ps(target, pack.value);
}
inline void StorePack(double * target, Pack<double> pack) noexcept
{
    _mm_storeu_pd(target, pack.value);
}

/// From an address that is a multiple of 16.
inline Pack<float> LoadAlignedPack(float const * source) noexcept
{
    return {_mm_load_ps(source)};
}
inline Pack<double> LoadAlignedPack(double const * source) noexcept
{
    return {_mm_load_pd(source)};
}

inline Pack<float> Splat(float value) noexcept
{
    return {_mm_set1_ps(value)};
}
inline Pack<double> Splat(double value) noexcept
{
    return {_mm_set1_pd(value)};
}

} // namespace vek
