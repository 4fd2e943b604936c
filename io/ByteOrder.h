#pragma once

namespace vek
{

inline unsigned char ReverseBytes(unsigned char value) noexcept
{
    return value;
}
inline unsigned short ReverseBytes(unsigned short value) noexcept
{
    return __builtin_bswap16(value);
}
inline unsigned int ReverseBytes(unsigned int value) noexcept
{
    return __builtin_bswap32(value);
}
inline unsigned long long ReverseBytes(unsigned long long value) noexcept
{
    return __builtin_bswap64(value);
}

} // namespace vek
