#pragma once

#include <limits.h>

namespace vek
{

/// Whether a host's stream that answers so doesn't know its size. The library's own always know it.
inline bool TellsNoSize(unsigned int size) noexcept
{
    return size == 0 || size == UINT_MAX;
}

} // namespace vek
