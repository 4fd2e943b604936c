#include "core/MemorySystem.h"

#include "base/AddressTable.h"
#include "base/Pool.h"
#include "base/SpinLock.h"
#include "core/ProcessState.h"
#include "text/CharTraits.h"
#include "text/StringAccess.h"

#include <emmintrin.h>
#include <stdint.h>
#include <stdlib.h>

#include <atomic>
#include <bit>
#include <new>

namespace
{

// Null before and after the system's life: then new blocks are plain ones.
constinit std::atomic<CVekMemorySystem *> g_alive{nullptr};

// Guards the blocks, their buckets and the counters.
constinit vek::SpinLock g_guard;

// The buckets outlive the system: a static object that ends later frees a block that is still known. Zeros are empty
// ones; they are made as such when their first block comes, so that loading the library does not touch a megabyte.
alignas(CVekMemorySystem::Bucket) constinit unsigned char g_buckets[CVekMemorySystem::BUCKET_COUNT]
                                                                   [sizeof(CVekMemorySystem::Bucket)] = {};

// The blocks that are too large for the pool, which come from malloc. Never destroyed, as the buckets.
union LargeBlocks
{
    constexpr LargeBlocks() noexcept : addresses() {}
    ~LargeBlocks() {} // NOLINT(modernize-use-equals-default): the table has a destructor, so that it would be deleted

    vek::AddressTable addresses;
};
constinit LargeBlocks g_large;

CVekMemorySystem g_system;

size_t IndexOf(void const * data) noexcept
{
    return reinterpret_cast<uintptr_t>(data) % CVekMemorySystem::BUCKET_COUNT;
}

CVekMemorySystem::Bucket & BucketAt(size_t index) noexcept
{
    return *reinterpret_cast<CVekMemorySystem::Bucket *>(g_buckets[index]);
}

template <class T>
constexpr T NO_FILE[] = {'U', 'n', 'k', 'n', 'o', 'w', 'n', ' ', 'F', 'i', 'l', 'e', 0};

/// The part of a file's name that is stored: what is behind the last separator, cut to the record's field. As
/// VekGetFileNameFromPath, but in one pass and without its copy for the narrow form.
template <class T>
class FileName
{
public:
    explicit FileName(T const * file) noexcept : m_begin(file), m_count(0)
    {
        size_t const end = reinterpret_cast<uintptr_t>(file) % sizeof(T) == 0 ? Scan(file) : ScanUnaligned(file);
        size_t const length = end - static_cast<size_t>(m_begin - file);
        m_count = length < CVekMemoryBlock::FILE_NAME_SIZE ? length : CVekMemoryBlock::FILE_NAME_SIZE - 1;
    }

    void Store(wchar_t * target) const noexcept
    {
        target[m_count] = 0;
        if constexpr (sizeof(T) == sizeof(wchar_t))
            vek::CopyShort(target, m_begin, m_count * sizeof(T));
        else if (m_count < EIGHT)
            for (size_t i = 0; i < m_count; ++i)
                target[i] = vek::CharTraits<wchar_t>::From(m_begin[i]);
        else
        {
            for (size_t i = 0; i + EIGHT < m_count; i += EIGHT)
                WidenEight(target + i, m_begin + i);
            WidenEight(target + m_count - EIGHT, m_begin + m_count - EIGHT);
        }
    }

private:
    static constexpr size_t EIGHT = 8;

    static bool IsSeparator(T unit) noexcept { return unit == T('/') || unit == T('\\') || unit == T(':'); }

    // Both give the text's length and find where the part begins.
    size_t Scan(T const * file) noexcept
    {
        using Traits = vek::CharTraits<T>;
        // Aligned loads never cross into a page that the text has no part in.
        auto const address = reinterpret_cast<uintptr_t>(file);
        auto const * at = reinterpret_cast<__m128i const *>(address - address % sizeof(__m128i));
        unsigned int within = 0xFFFFU << (address % sizeof(__m128i)) & 0xFFFFU;
        for (;; ++at, within = 0xFFFF)
        {
            __m128i const units = _mm_load_si128(at);
            __m128i const slashes =
                _mm_or_si128(Traits::Equal(units, Traits::Splat(T('/'))), Traits::Equal(units, Traits::Splat(T('\\'))));
            __m128i const found = _mm_or_si128(slashes, Traits::Equal(units, Traits::Splat(T(':'))));
            unsigned int const ends = Mask(Traits::Equal(units, _mm_setzero_si128())) & within;
            unsigned int const separators = Mask(found) & within & ((ends & (0 - ends)) - 1);
            auto const * const block = reinterpret_cast<T const *>(at);
            if (separators)
                m_begin = block + static_cast<unsigned int>(std::bit_width(separators)) / sizeof(T);
            if (ends)
                return static_cast<size_t>(block + static_cast<unsigned int>(std::countr_zero(ends)) / sizeof(T) -
                                           file);
        }
    }
    size_t ScanUnaligned(T const * file) noexcept
    {
        size_t length = 0;
        for (; file[length]; ++length)
        {
            if (IsSeparator(file[length]))
                m_begin = file + length + 1;
        }
        return length;
    }
    static unsigned int Mask(__m128i lanes) noexcept { return static_cast<unsigned int>(_mm_movemask_epi8(lanes)); }

    // A narrow character keeps its sign.
    static void WidenEight(wchar_t * target, T const * source) noexcept
    {
        __m128i const units = _mm_loadl_epi64(reinterpret_cast<__m128i const *>(source));
        __m128i const signs = _mm_cmpgt_epi8(_mm_setzero_si128(), units);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(target), _mm_unpacklo_epi8(units, signs));
    }

    T const * m_begin;
    size_t m_count;
};

void BreakWhereAskedFor(CVekMemoryBlock const & block) noexcept
{
    unsigned int const number = vek::g_breakOnAllocation.load(std::memory_order_relaxed);
    if (number != 0 && number == block.m_number)
        __debugbreak();
    void const * const address = vek::g_breakOnAddress.load(std::memory_order_relaxed);
    if (address && address == block.m_data)
        __debugbreak();
}

// Whether a tracked block has its data there. A freed one in the pool has no data address any more.
bool IsTracked(CVekMemoryBlock const * block, void const * data, bool isPools) noexcept
{
    bool const isKnown =
        isPools ? vek::PoolApart::IsBlock(block) && block->m_data == data : data && g_large.addresses.Has(data);
    return isKnown && BucketAt(IndexOf(data)).Has(*block);
}

template <class T>
unsigned char * AllocateTracked(unsigned int size, T const * file, int line) noexcept
{
    CVekMemorySystem * const system = CVekMemorySystem::Get();
    if (!system || vek::g_trackingSuspended.load(std::memory_order_relaxed))
        return static_cast<unsigned char *>(malloc(size));
    return system->Allocate(size, file, line);
}

} // namespace

template <>
void CVekDirectLinkedList<CVekMemoryBlock *>::DeleteElement(CVekMemoryBlock * element)
{
    if (vek::PoolHas(element))
        vek::PoolApart::Free(element);
    else
        free(element);
}

CVekMemorySystem::CVekMemorySystem()
{
    g_alive.store(this, std::memory_order_relaxed);
}

CVekMemorySystem::~CVekMemorySystem()
{
    // Kept: live blocks are neither freed nor reported.
    g_alive.store(nullptr, std::memory_order_relaxed);
}

CVekMemorySystem * CVekMemorySystem::Get() noexcept
{
    return g_alive.load(std::memory_order_relaxed);
}

CVekMemorySystem::Bucket const & CVekMemorySystem::GetBucket(unsigned int index) const
{
    return BucketAt(index);
}

template <class T>
unsigned char * CVekMemorySystem::Allocate(unsigned int size, T const * file, int line) noexcept
{
    size_t const wholeSize = sizeof(CVekMemoryBlock) + size;
    if (wholeSize < size)
        return nullptr;
    bool const isLarge = wholeSize > vek::POOL_LARGEST;
    void * place = isLarge ? malloc(wholeSize) : nullptr;
    if (isLarge && !place)
        return nullptr;
    FileName<T> const name(file ? file : NO_FILE<T>);
    // Kept: who stops in the debugger holds up all other allocations, but no deallocation. When nobody can, the guard
    // is all that is needed.
    bool const mayStop = vek::g_breakOnAllocation.load(std::memory_order_relaxed) != 0 ||
                         vek::g_breakOnAddress.load(std::memory_order_relaxed);
    if (mayStop)
        m_lock.Lock();
    g_guard.lock();
    if (!isLarge)
        place = vek::PoolApart::Allocate(wholeSize);
    else if (!g_large.addresses.Add(static_cast<CVekMemoryBlock *>(place) + 1))
    {
        free(place);
        place = nullptr;
    }
    auto * const block = static_cast<CVekMemoryBlock *>(place);
    if (block)
    {
        block->m_links = {};
        block->m_number = m_nextNumber++;
        block->m_size = size;
        name.Store(block->m_fileName);
        block->m_line = line;
        block->m_data = reinterpret_cast<unsigned char *>(block + 1);
        if (mayStop)
        {
            g_guard.unlock();
            BreakWhereAskedFor(*block);
            g_guard.lock();
        }
        Insert(*block);
    }
    g_guard.unlock();
    if (mayStop)
        m_lock.Unlock();
    return block ? block->m_data : nullptr;
}

void CVekMemorySystem::Insert(CVekMemoryBlock & block) noexcept
{
    Bucket & bucket = BucketAt(IndexOf(block.m_data));
    if (bucket.GetCount() == 0)
        new (&bucket) Bucket;
    bucket.Link(block);
    m_currentBytes += block.m_size;
    if (m_currentBytes > m_peakBytes)
        m_peakBytes = m_currentBytes;
    if (++m_currentBlocks > m_peakBlocks)
        m_peakBlocks = m_currentBlocks;
}

void CVekMemorySystem::Remove(CVekMemoryBlock & block) noexcept
{
    BucketAt(IndexOf(block.m_data)).Unlink(block);
    m_currentBytes -= block.m_size;
    --m_currentBlocks;
    block.m_data = nullptr;
}

bool CVekMemorySystem::Deallocate(void * pointer) noexcept
{
    // With very many blocks nothing of this is in a cache: record and bucket are fetched at once.
    auto const place = reinterpret_cast<uintptr_t>(pointer) - sizeof(CVekMemoryBlock);
    _mm_prefetch(reinterpret_cast<char const *>(place), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<char const *>(&BucketAt(IndexOf(pointer))), _MM_HINT_T0);
    auto * const block = reinterpret_cast<CVekMemoryBlock *>(place);
    _mm_prefetch(reinterpret_cast<char const *>(&block->m_data), _MM_HINT_T0);
    bool const isPools = vek::PoolHas(pointer);
    g_guard.lock();
    bool const isTracked = IsTracked(block, pointer, isPools);
    if (isTracked)
    {
        Remove(*block);
        if (isPools)
            vek::PoolApart::Free(block);
        else
            g_large.addresses.Remove(pointer);
    }
    g_guard.unlock();
    // Memory of the pool that is no tracked block is nobody's to free here.
    if (!isPools)
        free(isTracked ? block : pointer);
    return isTracked;
}

unsigned char * VekAllocMemory(unsigned int size, wchar_t const * file, int line)
{
    return AllocateTracked(size, file, line);
}

unsigned char * VekAllocMemory(unsigned int size, char const * file, int line)
{
    return AllocateTracked(size, file, line);
}

bool VekDeallocMemory(void * pointer, wchar_t const *, int)
{
    return g_system.Deallocate(pointer);
}

bool VekDeallocMemory(void * pointer, char const *, int)
{
    return g_system.Deallocate(pointer);
}
