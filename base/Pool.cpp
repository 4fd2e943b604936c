#include "base/Pool.h"

#include "VekCore.h"
#include "base/SpinLock.h"

#include <stdint.h>
#include <stdlib.h>

#include <windows.h>

#include <algorithm>
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
constexpr size_t GRAIN = 8;

constexpr uint16_t CLASS_BYTES[] = {8,    16,   24,   32,   40,   48,   56,   64,   72,   80,   88,
                                    96,   104,  112,  120,  128,  144,  160,  176,  192,  208,  224,
                                    240,  256,  320,  384,  448,  512,  640,  768,  896,  1024, 1280,
                                    1536, 1792, 2048, 2560, 3072, 3584, 4096, 5120, 6144, 8192};
constexpr size_t CLASS_COUNT = sizeof CLASS_BYTES / sizeof CLASS_BYTES[0];
constexpr size_t LARGEST = CLASS_BYTES[CLASS_COUNT - 1];
static_assert(POOL_LARGEST == LARGEST || POOL_LARGEST == 0);

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

struct SizeClass;

struct Chunk
{
    Chunk * next;
    Chunk * previous;
    FreeBlock * freeBlocks;
    uint32_t freshOffset; // where the never used rest begins
    uint32_t used;
    Region * region;                    // in the region's first chunk the region's record follows this header
    std::atomic<SizeClass *> sizeClass; // null while the region has the chunk
};

// Blocks of 16 bytes and more that are a multiple of 16 stand at addresses that are one, too.
constexpr size_t HEADER_BYTES = (sizeof(Chunk) + sizeof(Region) + 15) / 16 * 16;

struct SizeClass
{
    SpinLock lock;
    uint32_t bytes = 0;
    uint32_t reciprocal = 0;  // of the bytes, in parts of 2^32
    Chunk * open = nullptr;   // chunks with room, in a list
    Chunk * recent = nullptr; // the one of them that the last block was given to: that block is still in the cache
};

// Threads that allocate at the same time would hand a lock, and the chunks behind it, to and fro between processors:
// two took as long as one. Most threads have a share of their own; a block goes back to the one that it came from.
struct alignas(64) SizeClasses
{
    SizeClass all[CLASS_COUNT];

    constexpr SizeClasses() noexcept
    {
        for (size_t i = 0; i < CLASS_COUNT; ++i)
        {
            all[i].bytes = CLASS_BYTES[i];
            all[i].reciprocal = static_cast<uint32_t>((uint64_t{1} << 32) / CLASS_BYTES[i] + 1);
        }
    }
};

/// One bit for each 64 KiB of the address space, set where a chunk of the pool is, so that any address tells whether it
/// is the pool's. Each page has the bits of 4 GiB and is made when a region lies there; changes are guarded by the
/// regions' lock.
class ChunkMap
{
public:
    bool Has(void const * address) const noexcept
    {
        uint64_t const chunk = NumberOf(address);
        if (chunk >= PAGES * PAGE_CHUNKS)
            return false;
        Page const * const page = m_pages[chunk / PAGE_CHUNKS].load(std::memory_order_acquire);
        return page && (page->words[chunk % PAGE_CHUNKS / 32].load(std::memory_order_relaxed) >> (chunk % 32) & 1) != 0;
    }
    /// False when there is no memory for the bits.
    bool Add(void const * region) noexcept
    {
        uint64_t const first = NumberOf(region);
        for (uint64_t const chunk : {first, first + REGION_CHUNKS - 1})
        {
            std::atomic<Page *> & page = m_pages[chunk / PAGE_CHUNKS];
            if (!page.load(std::memory_order_relaxed))
                page.store(static_cast<Page *>(calloc(1, sizeof(Page))), std::memory_order_release);
            if (!page.load(std::memory_order_relaxed))
                return false;
        }
        Flip(first);
        return true;
    }
    void Remove(void const * region) noexcept { Flip(NumberOf(region)); }
    /// Frees the pages, while the pool has no region.
    void Free() noexcept
    {
        for (std::atomic<Page *> & page : m_pages)
        {
            if (!page.load(std::memory_order_relaxed))
                continue; // nearly all; they have no memory of their own until something is stored
            free(page.load(std::memory_order_relaxed));
            page.store(nullptr, std::memory_order_relaxed);
        }
    }

private:
    static constexpr uint64_t PAGE_CHUNKS = 65536;
    static constexpr uint64_t PAGES = sizeof(void *) == 4 ? 1 : 32 * 1024;

    struct Page
    {
        std::atomic<uint32_t> words[PAGE_CHUNKS / 32];
    };

    static uint64_t NumberOf(void const * address) noexcept
    {
        return reinterpret_cast<uintptr_t>(address) / CHUNK_BYTES;
    }

    void Flip(uint64_t first) noexcept
    {
        for (uint64_t chunk = first; chunk < first + REGION_CHUNKS; ++chunk)
            m_pages[chunk / PAGE_CHUNKS].load(std::memory_order_relaxed)->words[chunk % PAGE_CHUNKS / 32] ^=
                1U << (chunk % 32);
    }

    std::atomic<Page *> m_pages[PAGES] = {};
};

constinit ChunkMap g_map;

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
        chunk->sizeClass.store(nullptr, std::memory_order_relaxed);
        Region * const region = chunk->region;
        size_t const index = static_cast<size_t>(reinterpret_cast<char *>(chunk) - Base(region)) / CHUNK_BYTES;
        if (!region->freeChunks)
            Link(region);
        region->freeChunks |= 1U << index;
        if (region->freeChunks != ALL_CHUNKS_FREE)
            return;
        ++m_idle;
        if (m_idle > m_idleKept)
            Release(region);
    }

    /// Keeps no more memory that is free; false when a thread was stopped for good within one of these operations.
    bool End() noexcept
    {
        std::unique_lock const guard(m_lock, std::try_to_lock);
        if (!guard)
            return false;
        m_idleKept = 0;
        for (Region * region = m_open; region;)
        {
            Region * const next = region->next;
            if (region->freeChunks == ALL_CHUNKS_FREE)
                Release(region);
            region = next;
        }
        return true;
    }

    size_t Bytes() noexcept
    {
        std::lock_guard const guard(m_lock);
        return m_count * REGION_CHUNKS * CHUNK_BYTES;
    }

private:
    static char * Base(Region * region) noexcept { return reinterpret_cast<char *>(region) - sizeof(Chunk); }

    void Release(Region * region) noexcept
    {
        Unlink(region);
        --m_idle;
        --m_count;
        g_map.Remove(Base(region));
        VirtualFree(Base(region), 0, MEM_RELEASE);
    }

    bool AddRegion() noexcept
    {
        void * const memory =
            VirtualAlloc(nullptr, REGION_CHUNKS * CHUNK_BYTES, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (!memory || !g_map.Add(memory))
        {
            VirtualFree(memory, 0, MEM_RELEASE);
            return false;
        }
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
    size_t m_idleKept = 64;
    size_t m_count = 0;
};

constinit Regions g_regions;
constexpr unsigned long SHARES = 32;
constinit SizeClasses g_shares[SHARES];
constinit SizeClass g_rows; // of the chunks that rows take from: blocks of any size, which are only counted
constinit SizeClasses g_apart;

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

SizeClasses & OwnShare() noexcept
{
    return g_shares[GetCurrentThreadId() / 4 % SHARES]; // the system counts threads in fours
}

SizeClass & OwnClass(size_t index) noexcept
{
    return OwnShare().all[index];
}

Chunk * ChunkOf(void const * address) noexcept
{
    return reinterpret_cast<Chunk *>(reinterpret_cast<uintptr_t>(address) & ~(CHUNK_BYTES - 1));
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
    if (sizeClass.recent == chunk)
        sizeClass.recent = nullptr;
}

Chunk * OpenChunk(SizeClass & sizeClass) noexcept
{
    Chunk * const chunk = g_regions.TakeChunk();
    if (chunk)
    {
        chunk->freeBlocks = nullptr;
        chunk->freshOffset = HEADER_BYTES;
        chunk->used = 0;
        chunk->sizeClass.store(&sizeClass, std::memory_order_relaxed);
        LinkOpen(sizeClass, chunk);
    }
    return chunk;
}

// For both of these the class is locked, or its owner is.
void * TakeBlock(SizeClass & sizeClass) noexcept
{
    Chunk * const known = sizeClass.recent ? sizeClass.recent : sizeClass.open;
    Chunk * const chunk = known ? known : OpenChunk(sizeClass);
    if (!chunk)
        return nullptr;
    void * block = chunk->freeBlocks;
    if (block)
        chunk->freeBlocks = chunk->freeBlocks->next;
    else
    {
        block = reinterpret_cast<char *>(chunk) + chunk->freshOffset;
        chunk->freshOffset += sizeClass.bytes;
    }
    ++chunk->used;
    if (IsFull(chunk, sizeClass.bytes))
        UnlinkOpen(sizeClass, chunk);
    return block;
}

void GiveBlock(SizeClass & sizeClass, Chunk * chunk, void * block) noexcept
{
    bool const wasFull = IsFull(chunk, sizeClass.bytes);
    chunk->freeBlocks = new (block) FreeBlock{chunk->freeBlocks};
    if (wasFull)
        LinkOpen(sizeClass, chunk);
    sizeClass.recent = chunk;
    // The last open chunk of a class stays, so that a program that makes and frees one object does not trade chunks.
    if (--chunk->used == 0 && (chunk->next || chunk->previous))
    {
        UnlinkOpen(sizeClass, chunk);
        g_regions.GiveBack(chunk);
    }
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

bool IsOfRows(Chunk const * chunk) noexcept
{
    return chunk->sizeClass.load(std::memory_order_relaxed) == &g_rows;
}

void GiveToShared(void * block) noexcept
{
    Chunk * const chunk = ChunkOf(block); // its class is the block's
    if (IsOfRows(chunk))
        return GiveRowBlocks(chunk, 1);
    SizeClass & sizeClass = *chunk->sizeClass.load(std::memory_order_relaxed);
    std::lock_guard const guard(sizeClass.lock);
    GiveBlock(sizeClass, chunk, block);
}

void GiveIdleChunksBack(SizeClasses & classes) noexcept
{
    for (SizeClass & sizeClass : classes.all)
    {
        std::unique_lock const guard(sizeClass.lock, std::try_to_lock);
        for (Chunk * chunk = guard ? sizeClass.open : nullptr; chunk;)
        {
            Chunk * const next = chunk->next;
            if (chunk->used == 0)
            {
                UnlinkOpen(sizeClass, chunk);
                g_regions.GiveBack(chunk);
            }
            chunk = next;
        }
    }
}

// A process that unloads the library and goes on gets back what is free. At the end of a process, its other threads
// have been stopped wherever they were: what they had locked is left alone.
struct AtUnload
{
    ~AtUnload()
    {
        if (!g_regions.End())
            return;
        if (Chunk * const open = g_openRow.exchange(nullptr))
            GiveRowBlocks(open, LEASED);
        for (SizeClasses & share : g_shares)
            GiveIdleChunksBack(share);
        GiveIdleChunksBack(g_apart);
        if (g_regions.Bytes() == 0)
            g_map.Free();
    }
} g_atUnload;

} // namespace

void * PoolAllocate(size_t size) noexcept
{
    if (size - 1 >= POOL_LARGEST)
        return malloc(size);
    SizeClass & sizeClass = OwnClass(ClassIndex(size));
    std::lock_guard const guard(sizeClass.lock);
    return TakeBlock(sizeClass);
}

void PoolFree(void * block, size_t size) noexcept
{
    if (!block)
        return;
    if (size - 1 < POOL_LARGEST)
        GiveToShared(block);
    else
        free(block);
}

void PoolFreeMany(void * const * blocks, size_t count) noexcept
{
    if (POOL_LARGEST == 0)
    {
        for (size_t i = 0; i < count; ++i)
            free(blocks[i]);
        return;
    }
    for (size_t i = 0; i < count;)
    {
        SizeClass & sizeClass = *ChunkOf(blocks[i])->sizeClass.load(std::memory_order_relaxed);
        if (&sizeClass == &g_rows)
        {
            GiveToShared(blocks[i++]);
            continue;
        }
        std::lock_guard const guard(sizeClass.lock);
        // A chunk of this class stays one as long as a block of it is in use.
        for (; i < count && ChunkOf(blocks[i])->sizeClass.load(std::memory_order_relaxed) == &sizeClass; ++i)
            GiveBlock(sizeClass, ChunkOf(blocks[i]), blocks[i]);
    }
}

PoolSpares::~PoolSpares()
{
    for (auto const & spares : m_spares)
        PoolFreeMany(spares.blocks, spares.count);
}

void * PoolSpares::Allocate(size_t size) noexcept
{
    if (size - 1 >= POOL_LARGEST)
        return malloc(size);
    size_t const index = ClassIndex(size);
    auto & spares = m_spares[index % SIZES];
    if (spares.count != 0 && spares.classIndex == index)
        return spares.blocks[--spares.count];
    PoolFreeMany(spares.blocks, spares.count);
    spares.classIndex = index;
    spares.count = 0;
    SizeClass & sizeClass = OwnClass(index);
    std::lock_guard const guard(sizeClass.lock);
    // They are handed out in the order in which they lie.
    void * blocks[MOST];
    while (spares.count < MOST && (blocks[spares.count] = TakeBlock(sizeClass)) != nullptr)
        ++spares.count;
    std::reverse_copy(blocks, blocks + spares.count, spares.blocks);
    return spares.count != 0 ? spares.blocks[--spares.count] : nullptr;
}

void PoolFreeAny(void * block) noexcept
{
    if (PoolHas(block))
        GiveToShared(block);
    else
        free(block);
}

bool PoolHas(void const * address) noexcept
{
    return g_map.Has(address);
}

void * PoolApart::Allocate(size_t size) noexcept
{
    return TakeBlock(g_apart.all[ClassIndex(size)]);
}

void PoolApart::Free(void * block) noexcept
{
    Chunk * const chunk = ChunkOf(block);
    GiveBlock(*chunk->sizeClass.load(std::memory_order_relaxed), chunk, block);
}

bool PoolApart::IsBlock(void const * address) noexcept
{
    if (!PoolHas(address))
        return false;
    Chunk const * const chunk = ChunkOf(address);
    SizeClass const * const sizeClass = chunk->sizeClass.load(std::memory_order_relaxed);
    auto const offset = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address) % CHUNK_BYTES);
    if (sizeClass < g_apart.all || sizeClass >= g_apart.all + CLASS_COUNT || offset < HEADER_BYTES ||
        offset >= chunk->freshOffset)
        return false;
    auto const within = static_cast<uint64_t>(offset - HEADER_BYTES);
    uint64_t const index = within * sizeClass->reciprocal >> 32;
    return index * sizeClass->bytes == within;
}

bool PoolRow::FitAnew(size_t bytes) noexcept
{
    ++m_stretch;
    if (POOL_LARGEST == 0)
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
        chunk->sizeClass.store(&g_rows, std::memory_order_relaxed);
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
    if (!block || size - 1 >= POOL_LARGEST || !IsOfRows(ChunkOf(block)))
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

void PoolLeaveThread() noexcept
{
    GiveIdleChunksBack(OwnShare());
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
