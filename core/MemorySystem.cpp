#include "core/MemorySystem.h"

#include "base/AddressTable.h"
#include "base/SpinLock.h"
#include "core/ProcessState.h"
#include "text/Scan.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <xmmintrin.h>

#include <atomic>
#include <new>

namespace
{

// Null before and after the system's life: then new blocks are plain ones.
constinit std::atomic<CVekMemorySystem *> g_alive{nullptr};

// Guards the buckets, their tables and the counters.
constinit vek::SpinLock g_guard;

// The buckets outlive the system: a static object that ends later frees a block that is still known. Zeros are empty
// ones; they are made as such when their first block comes, so that loading the library does not touch a megabyte.
alignas(CVekMemorySystem::Bucket) constinit unsigned char g_buckets[CVekMemorySystem::BUCKET_COUNT]
                                                                   [sizeof(CVekMemorySystem::Bucket)] = {};

// A bucket with more blocks is not walked: it has a table of their addresses, or null when there was no memory for it.
constexpr unsigned int MOST_WALKED = 8;
constinit vek::AddressTable * g_tables[CVekMemorySystem::BUCKET_COUNT] = {};

CVekMemorySystem g_system;

size_t IndexOf(void const * data) noexcept
{
    return reinterpret_cast<uintptr_t>(data) % CVekMemorySystem::BUCKET_COUNT;
}

CVekMemorySystem::Bucket & BucketAt(size_t index) noexcept
{
    return *reinterpret_cast<CVekMemorySystem::Bucket *>(g_buckets[index]);
}

// Stores the part behind the last separator, cut to the record's field. As VekGetFileNameFromPath, but without its copy
// for the narrow form: this is most of what an allocation costs.
template <class T>
void StoreFileName(CVekMemoryBlock & block, T const * file) noexcept
{
    size_t const end = vek::TextLength(file);
    size_t begin = end;
    while (begin > 0 && file[begin - 1] != T('/') && file[begin - 1] != T('\\') && file[begin - 1] != T(':'))
        --begin;
    size_t const room = CVekMemoryBlock::FILE_NAME_SIZE - 1;
    size_t const count = end - begin < room ? end - begin : room;
    for (size_t i = 0; i < count; ++i)
        block.m_fileName[i] = static_cast<wchar_t>(file[begin + i]); // a narrow character keeps its sign
    block.m_fileName[count] = 0;
}

void BreakWhereAskedFor(CVekMemoryBlock const & block) noexcept
{
    unsigned int const number = vek::g_breakOnAllocation.load(std::memory_order_relaxed);
    if (number != 0 && number == block.m_number)
        __debugbreak();
    void const * const address = vek::g_breakOnAddress.load(std::memory_order_relaxed);
    if (address && address == block.m_data)
        __debugbreak();
}

vek::AddressTable * MakeTable(CVekMemorySystem::Bucket const & bucket) noexcept
{
    auto * const table = new (std::nothrow) vek::AddressTable;
    for (CVekMemoryBlock const * block = table ? bucket.GetHead() : nullptr; block; block = block->GetNext())
    {
        if (table->Add(block->m_data))
            continue;
        delete table;
        return nullptr;
    }
    return table;
}

bool IsInBucket(CVekMemorySystem::Bucket const & bucket, void const * data) noexcept
{
    CVekMemoryBlock const * block = bucket.GetHead();
    while (block && block + 1 != data)
        block = block->GetNext();
    return block != nullptr;
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
    m_lock.Lock();
    CVekMemoryBlock * const block = MakeBlock(size, file, line);
    if (block)
    {
        BreakWhereAskedFor(*block);
        g_guard.lock();
        Insert(*block);
        g_guard.unlock();
    }
    m_lock.Unlock();
    return block ? block->m_data : nullptr;
}

template <class T>
CVekMemoryBlock * CVekMemorySystem::MakeBlock(unsigned int size, T const * file, int line) noexcept
{
    size_t const wholeSize = sizeof(CVekMemoryBlock) + size;
    if (wholeSize < size)
        return nullptr;
    auto * const block = static_cast<CVekMemoryBlock *>(malloc(wholeSize));
    if (!block)
        return nullptr;
    block->m_links = {};
    block->m_number = m_nextNumber++;
    block->m_size = size;
    if (file)
        StoreFileName(*block, file);
    else
        memcpy(block->m_fileName, L"Unknown File", sizeof L"Unknown File");
    block->m_line = line;
    block->m_data = reinterpret_cast<unsigned char *>(block + 1);
    return block;
}

void CVekMemorySystem::Insert(CVekMemoryBlock & block) noexcept
{
    size_t const index = IndexOf(block.m_data);
    Bucket & bucket = BucketAt(index);
    if (bucket.GetCount() == 0)
        new (&bucket) Bucket;
    bucket.AddTail(&block);
    vek::AddressTable *& table = g_tables[index];
    if (table && !table->Add(block.m_data))
    {
        delete table;
        table = nullptr;
    }
    else if (!table && bucket.GetCount() > MOST_WALKED && bucket.GetCount() % MOST_WALKED == 1)
        table = MakeTable(bucket); // tried again now and then, should there be no memory
    m_currentBytes += block.m_size;
    if (m_currentBytes > m_peakBytes)
        m_peakBytes = m_currentBytes;
    if (++m_currentBlocks > m_peakBlocks)
        m_peakBlocks = m_currentBlocks;
}

CVekMemoryBlock * CVekMemorySystem::Take(void * data) noexcept
{
    size_t const index = IndexOf(data);
    Bucket & bucket = BucketAt(index);
    vek::AddressTable *& table = g_tables[index];
    if (bucket.GetCount() == 0 || !(table ? table->Remove(data) : IsInBucket(bucket, data)))
        return nullptr;
    CVekMemoryBlock * const block = static_cast<CVekMemoryBlock *>(data) - 1; // only now is it known to be one
    bucket.Remove(block);
    if (table && bucket.GetCount() <= MOST_WALKED / 2)
    {
        delete table;
        table = nullptr;
    }
    m_currentBytes -= block->m_size;
    --m_currentBlocks;
    return block;
}

bool CVekMemorySystem::Deallocate(void * pointer) noexcept
{
    // With very many blocks nothing of this is in a cache: record and bucket are fetched at once.
    auto const place = reinterpret_cast<uintptr_t>(pointer);
    _mm_prefetch(reinterpret_cast<char const *>(place - sizeof(CVekMemoryBlock)), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<char const *>(&BucketAt(IndexOf(pointer))), _MM_HINT_T0);
    g_guard.lock();
    CVekMemoryBlock * const block = Take(pointer);
    g_guard.unlock();
    free(block ? block : pointer);
    return block != nullptr;
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
