#pragma once

#include <stddef.h>

namespace vek
{

/// Allocates a block above the pool's largest. A few that were freed lately are kept for the next one of their size:
/// the system clears the pages of a fresh one, which costs more than what is written there. Null when memory is
/// exhausted.
void * LargeAllocate(size_t size) noexcept;

/// Frees a block of LargeAllocate; the size is the one it was asked for. Safe from any thread, as the other.
void LargeFree(void * block, size_t size) noexcept;

} // namespace vek
