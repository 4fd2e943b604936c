#include "core/MemorySystem.h"

#include "VekText.h"

#include "core/AddressTable.h"
#include "core/ProcessState.h"
#include "core/SpinLock.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

namespace
{

/// What guards the buckets of one stripe, and the addresses in them.
struct alignas(64) Stripe
{
    vek::SpinLock lock;
    bool isComplete = true; // false once an address could not be added: then the buckets are walked
    vek::AddressTable addresses;
};
constexpr size_t STRIPE_COUNT = 64;

// They outlive the system, so that a block that is freed later is still known.
constinit Stripe g_stripes[STRIPE_COUNT];

// Null before and after the system's life: then blocks are plain ones.
constinit std::atomic<CVekMemorySystem *> g_alive{nullptr};

CVekMemorySystem g_system;

Stripe & StripeOf(void const * data) noexcept
{
    return g_stripes[(reinterpret_cast<uintptr_t>(data) >> 4) % STRIPE_COUNT];
}

void StoreFileName(CVekMemoryBlock & block, wchar_t const * file) noexcept
{
    VekGetFileNameFromPathW(file, block.m_fileName, CVekMemoryBlock::FILE_NAME_SIZE - 1);
}

void StoreFileName(CVekMemoryBlock & block, char const * file) noexcept
{
    char name[CVekMemoryBlock::FILE_NAME_SIZE];
    VekGetFileNameFromPathA(file, name, CVekMemoryBlock::FILE_NAME_SIZE - 1);
    VekStrAtoW(block.m_fileName, name);
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

bool IsInBucket(CVekDirectLinkedList<CVekMemoryBlock *> const & bucket, void const * data) noexcept
{
    CVekMemoryBlock const * block = bucket.GetHead();
    while (block && block->m_data != data)
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
void CVekDirectLinkedList<CVekMemoryBlock *>::DeleteElement(CVekMemoryBlock * block)
{
    free(block);
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

template <class T>
unsigned char * CVekMemorySystem::Allocate(unsigned int size, T const * file, int line) noexcept
{
    CVekSingleLock const guard(&m_lock, true);
    if (size > SIZE_MAX - sizeof(CVekMemoryBlock))
        return nullptr;
    auto * const block = static_cast<CVekMemoryBlock *>(malloc(sizeof(CVekMemoryBlock) + size));
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
    BreakWhereAskedFor(*block);
    Insert(block);
    unsigned int const bytes = m_currentBytes += size;
    unsigned int const blocks = ++m_currentBlocks;
    m_peakBytes = bytes > m_peakBytes ? bytes : m_peakBytes;
    m_peakBlocks = blocks > m_peakBlocks ? blocks : m_peakBlocks;
    return block->m_data;
}

CVekDirectLinkedList<CVekMemoryBlock *> & CVekMemorySystem::BucketOf(void const * data) noexcept
{
    return m_buckets[reinterpret_cast<uintptr_t>(data) & (BUCKET_COUNT - 1)];
}

void CVekMemorySystem::Insert(CVekMemoryBlock * block) noexcept
{
    Stripe & stripe = StripeOf(block->m_data);
    stripe.lock.lock();
    BucketOf(block->m_data).AddTail(block);
    if (!stripe.addresses.Add(block->m_data))
        stripe.isComplete = false;
    stripe.lock.unlock();
}

bool CVekMemorySystem::Deallocate(void * pointer) noexcept
{
    CVekMemorySystem * const system = Get();
    Stripe & stripe = StripeOf(pointer);
    stripe.lock.lock();
    // Only what is known to be tracked has a record in front of it.
    bool const isTracked = stripe.addresses.Remove(pointer) ||
                           (!stripe.isComplete && system && IsInBucket(system->BucketOf(pointer), pointer));
    CVekMemoryBlock * const block = isTracked ? static_cast<CVekMemoryBlock *>(pointer) - 1 : nullptr;
    if (isTracked && system)
        system->BucketOf(pointer).Remove(block);
    stripe.lock.unlock();
    if (isTracked && system)
    {
        system->m_currentBytes -= block->m_size;
        --system->m_currentBlocks;
    }
    free(isTracked ? block : pointer);
    return isTracked && system;
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
    return CVekMemorySystem::Deallocate(pointer);
}

bool VekDeallocMemory(void * pointer, char const *, int)
{
    return CVekMemorySystem::Deallocate(pointer);
}
