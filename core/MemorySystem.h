#pragma once

#include "VekThread.h"

#include "core/MemoryBlock.h"

/// The tracked allocator. There is one, which lives as long as the library is loaded.
///
/// A bucket holds the live blocks whose data address has its index as low 16 bits. Allocation takes the system's lock
/// for its whole duration, deallocation does not (kept: a thread that stopped in the debugger within an allocation
/// holds up no other's deallocation); buckets and counters are guarded for a few instructions at a time.
class CVekMemorySystem
{
public:
    static constexpr unsigned int BUCKET_COUNT = 65536;
    using Bucket = CVekDirectLinkedList<CVekMemoryBlock *>;

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
    template <class T>
    CVekMemoryBlock * MakeBlock(unsigned int size, T const * file, int line) noexcept;
    void Insert(CVekMemoryBlock & block) noexcept;
    /// Unlinks the block with that data address; null when there is none.
    CVekMemoryBlock * Take(void * data) noexcept;

    CVekMutex m_mutex; // kept: no operation takes it
    CVekCriticalSection m_lock;
    unsigned int m_bucketCount = BUCKET_COUNT;
    unsigned int m_nextNumber = 0;
    unsigned int m_currentBytes = 0;
    unsigned int m_peakBytes = 0;
    unsigned int m_currentBlocks = 0;
    unsigned int m_peakBlocks = 0;
};
