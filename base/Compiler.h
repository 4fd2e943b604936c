// What compilers spell differently, once: each construct of one of them beside its twin.
#pragma once

#if defined(_MSC_VER)

#include <math.h>

/// In front of a function that is always made part of its callers.
#define VEK_ALWAYS_INLINE __forceinline
/// In front of a function that is never made part of its callers, so that they don't pay for its frame.
#define VEK_NEVER_INLINE __declspec(noinline)
/// In front of a loop: unrolls it this many times, where the compiler does not decide that itself.
#if defined(__clang__)
#define VEK_PRAGMA(text) _Pragma(#text)
#define VEK_UNROLL(times) VEK_PRAGMA(clang loop unroll_count(times))
#else
#define VEK_UNROLL(times)
#endif
/// Tells the optimiser what is always true here.
#define VEK_ASSUME(condition) __assume(condition)
/// Silences a warning, by its name, up to the end of the file.
#define VEK_IGNORE_WARNING(name)

namespace vek
{

/// The number without its sign, in one instruction: some runtime's own function takes a detour.
inline float WithoutSign(float value) noexcept
{
    return fabsf(value);
}
inline double WithoutSign(double value) noexcept
{
    return fabs(value);
}

} // namespace vek

#else

#define VEK_PRAGMA(text) _Pragma(#text)
#define VEK_ALWAYS_INLINE [[gnu::always_inline]] inline
#define VEK_NEVER_INLINE [[gnu::noinline]]
#define VEK_UNROLL(times) VEK_PRAGMA(GCC unroll times)
#define VEK_ASSUME(condition) ((condition) ? static_cast<void>(0) : __builtin_unreachable())
#define VEK_IGNORE_WARNING(name) VEK_PRAGMA(GCC diagnostic ignored name)

namespace vek
{

inline float WithoutSign(float value) noexcept
{
    return __builtin_fabsf(value);
}
inline double WithoutSign(double value) noexcept
{
    return __builtin_fabs(value);
}

} // namespace vek

#endif
