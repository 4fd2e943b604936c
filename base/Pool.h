#pragma once

#include <stddef.h>

namespace vek
{

/// Allocates a block of the library's own: objects, string blocks and small arrays, served from size classes. Blocks
/// are aligned to 8 bytes. Null when memory is exhausted. Safe from any thread.
void * PoolAllocate(size_t size) noexcept;

/// Frees a block of PoolAllocate; null is ignored. The size is the one it was asked for or, of an object that was made
/// in a larger block, the object's: it only tells blocks above the largest class from the pool's own.
void PoolFree(void * block, size_t size) noexcept;

/// The largest block that the pool serves itself.
constexpr size_t POOL_LARGEST = 8192;

/// The bytes that the pool holds from the system, free blocks included; blocks above the largest class are not counted.
size_t PoolReservedBytes() noexcept;

} // namespace vek
