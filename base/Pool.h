#pragma once

#include <stddef.h>
#include <stdint.h>

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

/// The memory of a stretch: so large, at an address that is a multiple of it.
constexpr size_t POOL_STRETCH = 64 * 1024;

/// Blocks of any size, one behind the other without gaps, for many objects that are made at once and mostly end
/// together. Each is freed by PoolFree, as any other; the memory of a stretch of them is used again when all are. Used
/// by one thread at a time; the blocks are freed by any.
class PoolRow
{
public:
    PoolRow() noexcept = default;
    PoolRow(PoolRow const &) = delete;
    PoolRow & operator=(PoolRow const &) = delete;
    ~PoolRow() { End(); }

    /// The largest block.
    static constexpr size_t LARGEST = 4096;

    /// Makes room for the next block, of at most so many bytes; false when memory is exhausted.
    bool Fit(size_t bytes) noexcept
    {
        return bytes + ALIGNMENT <= static_cast<size_t>(m_end - m_place) || FitAnew(bytes);
    }
    /// The block that room was made for, aligned as pointers are. Null only in the guarded build.
    void * Allocate(size_t size) noexcept
    {
#if defined(VEKLIB_GUARD)
        return PoolAllocate(size);
#else
        char * const block = m_place;
        m_place += (size + ALIGNMENT - 1) & ~(ALIGNMENT - 1);
        ++m_taken;
        return block;
#endif
    }
    /// The number of the stretch, never 0: a block's bytes, once written, stay until the last block of its stretch is
    /// freed. In the guarded build, where each block ends on its own, every block is a stretch.
    uint32_t Stretch() const noexcept
    {
        return m_stretch;
    }
    /// Hands over what is left to the next row.
    void End() noexcept;

private:
    static constexpr size_t ALIGNMENT = sizeof(void *);

    bool FitAnew(size_t bytes) noexcept;

    char * m_place = nullptr;
    char * m_end = nullptr;
    uint32_t m_taken = 0; // blocks
    uint32_t m_stretch = 0;
};

/// Frees many blocks: those that follow each other in a row, all at once.
class PoolBatch
{
public:
    PoolBatch() noexcept = default;
    PoolBatch(PoolBatch const &) = delete;
    PoolBatch & operator=(PoolBatch const &) = delete;
    ~PoolBatch() { Flush(); }

    /// As PoolFree, now or later.
    void Free(void * block, size_t size) noexcept
    {
        if (size - 1 < POOL_LARGEST && m_count > 0 && reinterpret_cast<uintptr_t>(block) / POOL_STRETCH == m_stretch)
            ++m_count;
        else
            FreeAnother(block, size);
    }

private:
    void FreeAnother(void * block, size_t size) noexcept;
    void Flush() noexcept;

    uintptr_t m_stretch = 0; // its address in units of its size
    uint32_t m_count = 0;    // its blocks that are still to be freed
};

/// Keeps none of the chunks that the calling thread's blocks came from, as far as they are free: a program whose
/// threads come and go would have kept some for each of them.
void PoolLeaveThread() noexcept;

/// The bytes that the pool holds from the system, free blocks included; blocks above the largest class are not counted.
size_t PoolReservedBytes() noexcept;

} // namespace vek
