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

/// Frees many blocks of PoolAllocate, none of them null or above the largest class.
void PoolFreeMany(void * const * blocks, size_t count) noexcept;

/// Frees a block of PoolAllocate or of malloc, whichever it is; null is ignored.
void PoolFreeAny(void * block) noexcept;

/// Whether the address is within memory that the pool holds, in a block or not. Any address will do.
bool PoolHas(void const * address) noexcept;

#if defined(VEKLIB_GUARD)
/// The guarded build puts every block beside a page of its own.
constexpr size_t POOL_LARGEST = 0;
#else
/// The largest block that the pool serves itself.
constexpr size_t POOL_LARGEST = 8192;
#endif

/// Allocates blocks as PoolAllocate does, several at a time, for one thread that makes many objects of few sizes. What
/// it did not hand out it gives back at its end.
class PoolSpares
{
public:
    PoolSpares() noexcept = default;
    PoolSpares(PoolSpares const &) = delete;
    PoolSpares & operator=(PoolSpares const &) = delete;
    ~PoolSpares();

    void * Allocate(size_t size) noexcept;

private:
    static constexpr size_t SIZES = 8;
    static constexpr size_t MOST = 15;

    struct
    {
        size_t classIndex = 0;
        size_t count = 0;
        void * blocks[MOST];
    } m_spares[SIZES] = {};
};

/// Blocks in chunks of their own, so that an address tells whether it is where one of them begins. They have one owner,
/// whose lock guards all of this.
struct PoolApart
{
    /// A block of 1 to POOL_LARGEST bytes, aligned to 8 bytes, or to 16 when its size is a multiple of that. Null when
    /// memory is exhausted.
    static void * Allocate(size_t size) noexcept;
    /// Frees a block, which is not null.
    static void Free(void * block) noexcept;
    /// Whether a block begins at the address, which may be any: one that is in use, or one that was.
    static bool IsBlock(void const * address) noexcept;
};

/// The bytes that the pool holds from the system, free blocks included; blocks above the largest class are not counted.
size_t PoolReservedBytes() noexcept;

} // namespace vek
