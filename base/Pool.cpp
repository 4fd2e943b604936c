#include "base/Pool.h"

#include "VekCore.h"
#include "base/SpinLock.h"

#include <stdint.h>
#include <stdlib.h>

#include <windows.h>

#include <atomic>
#include <bit>
#include <mutex>
#include <new>

namespace vek
{
namespace
{

// Chunks of one size class each, 64 KiB at an address that is a multiple of it, so that a block's chunk is found by
// masking its address. Chunks are cut from regions that are given back to the system when all their chunks are free.
constexpr size_t CHUNK_BYTES = POOL_STRETCH;
constexpr size_t REGION_CHUNKS = 16;
constexpr uint32_t ALL_CHUNKS_FREE = (1U << REGION_CHUNKS) - 1;
constexpr size_t IDLE_REGIONS_KEPT = 64;
constexpr size_t GRAIN = 8;

constexpr uint16_t CLASS_BYTES[] = {8,    16,   24,   32,   40,   48,   56,   64,   72,   80,   88,
                                    96,   104,  112,  120,  128,  144,  160,  176,  192,  208,  224,
                                    240,  256,  320,  384,  448,  512,  640,  768,  896,  1024, 1280,
                                    1536, 1792, 2048, 2560, 3072, 3584, 4096, 5120, 6144, 8192};
constexpr size_t CLASS_COUNT = sizeof CLASS_BYTES / sizeof CLASS_BYTES[0];
constexpr size_t LARGEST = CLASS_BYTES[CLASS_COUNT - 1];
static_assert(LARGEST == POOL_LARGEST);
constexpr size_t ROW = CLASS_COUNT;

struct Region
{
    Region * next;
    Region * previous;
    uint32_t freeChunks; // one bit each
};

struct FreeBlock
{
    FreeBlock * next;
};

struct Chunk
{
    Chunk * next;
    Chunk * previous;
    FreeBlock * freeBlocks;
    uint32_t freshOffset; // where the never used rest begins
    uint32_t used;
    Region * region;   // in the region's first chunk the region's record follows this header
    size_t classIndex; // ROW: blocks of any size, which are only counted
};

// Blocks of 16 bytes and more that are a multiple of 16 stand at addresses that are one, too.
constexpr size_t HEADER_BYTES = (sizeof(Chunk) + sizeof(Region) + 15) / 16 * 16;

struct SizeClass
{
    SpinLock lock;
    Chunk * open = nullptr; // chunks with room, in a list
};

/// The regions of the process. Chunks are handed out and taken back one at a time, under one lock.
class Regions
{
public:
    Chunk * TakeChunk() noexcept
    {
        std::lock_guard const guard(m_lock);
        if (!m_open && !AddRegion())
            return nullptr;
        Region * const region = m_open;
        if (region->freeChunks == ALL_CHUNKS_FREE)
            --m_idle;
        unsigned const index = static_cast<unsigned>(std::countr_zero(region->freeChunks));
        region->freeChunks &= ~(1U << index);
        if (!region->freeChunks)
            Unlink(region);
        auto * const chunk = reinterpret_cast<Chunk *>(Base(region) + index * CHUNK_BYTES);
        chunk->region = region;
        return chunk;
    }

    void GiveBack(Chunk * chunk) noexcept
    {
        std::lock_guard const guard(m_lock);
        Region * const region = chunk->region;
        size_t const index = static_cast<size_t>(reinterpret_cast<char *>(chunk) - Base(region)) / CHUNK_BYTES;
        if (!region->freeChunks)
            Link(region);
        region->freeChunks |= 1U << index;
        if (region->freeChunks != ALL_CHUNKS_FREE)
            return;
        if (m_idle < IDLE_REGIONS_KEPT)
        {
            ++m_idle;
            return;
        }
        Unlink(region);
        --m_count;
        VirtualFree(Base(region), 0, MEM_RELEASE);
    }

    size_t Bytes() noexcept
    {
        std::lock_guard const guard(m_lock);
        return m_count * REGION_CHUNKS * CHUNK_BYTES;
    }

private:
    static char * Base(Region * region) noexcept { return reinterpret_cast<char *>(region) - sizeof(Chunk); }

    bool AddRegion() noexcept
    {
        void * const memory =
            VirtualAlloc(nullptr, REGION_CHUNKS * CHUNK_BYTES, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (!memory)
            return false;
        auto * const region = reinterpret_cast<Region *>(static_cast<char *>(memory) + sizeof(Chunk));
        region->freeChunks = ALL_CHUNKS_FREE;
        Link(region);
        ++m_count;
        ++m_idle;
        return true;
    }

    void Link(Region * region) noexcept
    {
        region->previous = nullptr;
        region->next = m_open;
        if (m_open)
            m_open->previous = region;
        m_open = region;
    }

    void Unlink(Region * region) noexcept
    {
        (region->previous ? region->previous->next : m_open) = region->next;
        if (region->next)
            region->next->previous = region->previous;
    }

    SpinLock m_lock;
    Region * m_open = nullptr; // regions with a free chunk
    size_t m_idle = 0;         // regions whose chunks are all free
    size_t m_count = 0;
};

constinit Regions g_regions;
constinit SizeClass g_classes[CLASS_COUNT];

// The class of a size by its number of grains, made by the compiler.
struct ClassTable
{
    uint8_t index[LARGEST / GRAIN + 1];

    constexpr ClassTable() : index()
    {
        size_t at = 0;
        for (size_t grains = 0; grains <= LARGEST / GRAIN; ++grains)
        {
            while (CLASS_BYTES[at] < grains * GRAIN)
                ++at;
            index[grains] = static_cast<uint8_t>(at);
        }
    }
};
constexpr ClassTable CLASS_OF;

size_t ClassIndex(size_t size) noexcept
{
    return CLASS_OF.index[(size + GRAIN - 1) / GRAIN];
}

bool IsFull(Chunk const * chunk, size_t blockBytes) noexcept
{
    return !chunk->freeBlocks && chunk->freshOffset + blockBytes > CHUNK_BYTES;
}

void LinkOpen(SizeClass & sizeClass, Chunk * chunk) noexcept
{
    chunk->previous = nullptr;
    chunk->next = sizeClass.open;
    if (sizeClass.open)
        sizeClass.open->previous = chunk;
    sizeClass.open = chunk;
}

void UnlinkOpen(SizeClass & sizeClass, Chunk * chunk) noexcept
{
    (chunk->previous ? chunk->previous->next : sizeClass.open) = chunk->next;
    if (chunk->next)
        chunk->next->previous = chunk->previous;
}

Chunk * OpenChunk(SizeClass & sizeClass, size_t classIndex) noexcept
{
    Chunk * const chunk = g_regions.TakeChunk();
    if (chunk)
    {
        chunk->freeBlocks = nullptr;
        chunk->freshOffset = HEADER_BYTES;
        chunk->used = 0;
        chunk->classIndex = classIndex;
        LinkOpen(sizeClass, chunk);
    }
    return chunk;
}

void * TakeBlock(size_t classIndex) noexcept
{
    SizeClass & sizeClass = g_classes[classIndex];
    size_t const bytes = CLASS_BYTES[classIndex];
    std::lock_guard const guard(sizeClass.lock);
    Chunk * const chunk = sizeClass.open ? sizeClass.open : OpenChunk(sizeClass, classIndex);
    if (!chunk)
        return nullptr;
    void * block = chunk->freeBlocks;
    if (block)
        chunk->freeBlocks = chunk->freeBlocks->next;
    else
    {
        block = reinterpret_cast<char *>(chunk) + chunk->freshOffset;
        chunk->freshOffset += static_cast<uint32_t>(bytes);
    }
    ++chunk->used;
    if (IsFull(chunk, bytes))
        UnlinkOpen(sizeClass, chunk);
    return block;
}

Chunk * ChunkOf(void const * address) noexcept
{
    return reinterpret_cast<Chunk *>(reinterpret_cast<uintptr_t>(address) & ~(CHUNK_BYTES - 1));
}

// Counted among the blocks of a chunk that a row may still take blocks from, so that it is not given back meanwhile.
constexpr uint32_t LEASED = 1U << 31;

// The chunk that a row left, for the next one; null when it is taken.
constinit std::atomic<Chunk *> g_openRow{nullptr};

void GiveRowBlocks(Chunk * chunk, uint32_t count) noexcept
{
    if (std::atomic_ref(chunk->used).fetch_sub(count, std::memory_order_acq_rel) == count)
        g_regions.GiveBack(chunk);
}

// No block of it is left but those that the next row will take.
bool IsUnused(Chunk * chunk) noexcept
{
    return std::atomic_ref(chunk->used).load(std::memory_order_acquire) == LEASED;
}

void GiveBlock(void * block) noexcept
{
    Chunk * const chunk = ChunkOf(block);
    if (chunk->classIndex == ROW)
        return GiveRowBlocks(chunk, 1);
    SizeClass & sizeClass = g_classes[chunk->classIndex];
    std::lock_guard const guard(sizeClass.lock);
    bool const wasFull = IsFull(chunk, CLASS_BYTES[chunk->classIndex]);
    chunk->freeBlocks = new (block) FreeBlock{chunk->freeBlocks};
    if (wasFull)
        LinkOpen(sizeClass, chunk);
    // The last open chunk of a class stays, so that a program that makes and frees one object does not trade chunks.
    if (--chunk->used == 0 && (chunk->next || chunk->previous))
    {
        UnlinkOpen(sizeClass, chunk);
        g_regions.GiveBack(chunk);
    }
}

#if defined(VEKLIB_GUARD)
// The guarded build puts every block beside a page of its own.
constexpr size_t LARGEST_POOLED = 0;
#else
constexpr size_t LARGEST_POOLED = LARGEST;
#endif

} // namespace

void * PoolAllocate(size_t size) noexcept
{
    return size - 1 < LARGEST_POOLED ? TakeBlock(ClassIndex(size)) : malloc(size);
}

void PoolFree(void * block, size_t size) noexcept
{
    if (!block)
        return;
    if (size - 1 < LARGEST_POOLED)
        GiveBlock(block); // its class is its chunk's
    else
        free(block);
}

bool PoolRow::FitAnew(size_t bytes) noexcept
{
    ++m_stretch;
    if (LARGEST_POOLED == 0)
        return true;
    Chunk * chunk = nullptr;
    if (m_place)
    {
        Chunk * const full = ChunkOf(m_place - 1);
        // What was taken is counted now, all at once.
        GiveRowBlocks(full, LEASED - m_taken);
    }
    else
        chunk = g_openRow.exchange(nullptr, std::memory_order_acquire);
    m_place = m_end = nullptr;
    m_taken = 0;
    if (chunk && chunk->freshOffset + bytes + ALIGNMENT > CHUNK_BYTES && !IsUnused(chunk))
    {
        GiveRowBlocks(chunk, LEASED);
        chunk = nullptr;
    }
    if (!chunk)
    {
        chunk = g_regions.TakeChunk();
        if (!chunk)
            return false;
        chunk->classIndex = ROW;
        chunk->used = LEASED;
    }
    if (IsUnused(chunk))
        chunk->freshOffset = HEADER_BYTES;
    m_place = reinterpret_cast<char *>(chunk) + chunk->freshOffset;
    m_end = reinterpret_cast<char *>(chunk) + CHUNK_BYTES;
    return true;
}

void PoolRow::End() noexcept
{
    if (!m_place)
        return;
    Chunk * const chunk = ChunkOf(m_place - 1);
    chunk->freshOffset = static_cast<uint32_t>(m_place - reinterpret_cast<char *>(chunk));
    std::atomic_ref(chunk->used).fetch_add(m_taken, std::memory_order_relaxed);
    if (Chunk * const other = g_openRow.exchange(chunk, std::memory_order_acq_rel))
        GiveRowBlocks(other, LEASED);
    m_place = m_end = nullptr;
    m_taken = 0;
}

void PoolBatch::FreeAnother(void * block, size_t size) noexcept
{
    if (!block || size - 1 >= LARGEST_POOLED || ChunkOf(block)->classIndex != ROW)
        return PoolFree(block, size);
    Flush();
    m_stretch = reinterpret_cast<uintptr_t>(block) / POOL_STRETCH;
    m_count = 1;
}

void PoolBatch::Flush() noexcept
{
    if (m_count > 0)
        GiveRowBlocks(reinterpret_cast<Chunk *>(m_stretch * POOL_STRETCH), m_count);
    m_count = 0;
}

size_t PoolReservedBytes() noexcept
{
    return g_regions.Bytes();
}

} // namespace vek

// NOLINTNEXTLINE(cert-dcl54-cpp): its operator delete is the one that takes the size
void * CVekPooled::operator new(size_t size) noexcept
{
    return vek::PoolAllocate(size);
}

void * CVekPooled::operator new(size_t size, std::nothrow_t const &) noexcept
{
    return vek::PoolAllocate(size);
}

void CVekPooled::operator delete(void * block, size_t size) noexcept
{
    vek::PoolFree(block, size);
}
