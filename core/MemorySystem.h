#pragma once

#include "VekThread.h"

#include "core/MemoryBlock.h"

/// The tracked allocator. There is one, which lives as long as the library is loaded.
///
/// A bucket holds the live blocks whose data address has its index as low 16 bits. A block up to POOL_LARGEST bytes,
/// its record included, is one of PoolApart, which tells whether an address is a block's; the larger ones are in a
/// table. While a break is set, allocation takes the system's lock for its whole duration, deallocation does not (kept:
/// a thread that stopped in the debugger within an allocation holds up no other's deallocation); blocks, buckets and
/// counters are guarded for a few instructions at a time.
class CVekMemorySystem
{
public:
    static constexpr unsigned int BUCKET_COUNT = 65536;
    /// Which neighbours a block has is anybody's guess: it is linked without a branch that would be foretold wrongly.
    class Bucket : public CVekDirectLinkedList<CVekMemoryBlock *>
    {
    public:
        void Link(CVekMemoryBlock & block) noexcept
        {
            block.m_links = {m_tail, nullptr};
            *(m_tail ? &m_tail->m_links.next : &m_head) = &block;
            m_tail = &block;
            ++m_count;
        }
        /// False for a block that is not in the list yet: its allocation stands at a break.
        bool Has(CVekMemoryBlock const & block) const noexcept { return block.m_links.previous || m_head == &block; }
        void Unlink(CVekMemoryBlock & block) noexcept
        {
            auto const [previous, next] = block.m_links;
            *(previous ? &previous->m_links.next : &m_head) = next;
            *(next ? &next->m_links.previous : &m_tail) = previous;
            --m_count;
        }
    };

    CVekMemorySystem();
    CVekMemorySystem(CVekMemorySystem const &) = delete;
    CVekMemorySystem & operator=(CVekMemorySystem const &) = delete;
    virtual ~CVekMemorySystem();

    /// The system; null before its construction and after its destruction.
    static CVekMemorySystem * Get() noexcept;

    /// A tracked block; the file may be null.
    template <class T>
    unsigned char * Allocate(unsigned int size, T const * file, int line) noexcept;
    /// Frees a block; true for a tracked one. Any other pointer goes to free. May be called after the destruction.
    bool Deallocate(void * pointer) noexcept;

    Bucket const & GetBucket(unsigned int index) const;
    unsigned int GetNextNumber() const { return m_nextNumber; }
    unsigned int GetCurrentBytes() const { return m_currentBytes; }
    unsigned int GetPeakBytes() const { return m_peakBytes; }
    unsigned int GetCurrentBlocks() const { return m_currentBlocks; }
    unsigned int GetPeakBlocks() const { return m_peakBlocks; }

private:
    void Insert(CVekMemoryBlock & block) noexcept;
    void Remove(CVekMemoryBlock & block) noexcept;

    CVekMutex m_mutex; // kept: no operation takes it
    CVekCriticalSection m_lock;
    [[maybe_unused]] unsigned int m_bucketCount = BUCKET_COUNT; // kept beside the constant that is used
    unsigned int m_nextNumber = 0;
    unsigned int m_currentBytes = 0;
    unsigned int m_peakBytes = 0;
    unsigned int m_currentBlocks = 0;
    unsigned int m_peakBlocks = 0;
};
