#pragma once

#include "VekThread.h"

#include "core/MemoryBlock.h"

#include <atomic>

/// The tracked allocator. There is one, which lives as long as the library is loaded.
///
/// A bucket holds the live blocks whose data address has its index as low 16 bits. Allocation takes the system's lock
/// for its whole duration, deallocation takes none (kept: a thread that stopped in the debugger within an allocation
/// holds up no other's deallocation); the buckets are guarded in stripes, for a few instructions at a time.
class CVekMemorySystem
{
public:
    static constexpr unsigned int BUCKET_COUNT = 65536;

    CVekMemorySystem();
    CVekMemorySystem(CVekMemorySystem const &) = delete;
    CVekMemorySystem & operator=(CVekMemorySystem const &) = delete;
    virtual ~CVekMemorySystem();

    /// The system; null before its construction and after its destruction.
    static CVekMemorySystem * Get() noexcept;
    /// Frees a block; true for a tracked one, while there is a system. Any other pointer goes to free.
    static bool Deallocate(void * pointer) noexcept;

    /// A tracked block; the file may be null.
    template <class T>
    unsigned char * Allocate(unsigned int size, T const * file, int line) noexcept;

    CVekDirectLinkedList<CVekMemoryBlock *> const & GetBucket(unsigned int index) const { return m_buckets[index]; }
    unsigned int GetNextNumber() const { return m_nextNumber; }
    unsigned int GetCurrentBytes() const { return m_currentBytes; }
    unsigned int GetPeakBytes() const { return m_peakBytes; }
    unsigned int GetCurrentBlocks() const { return m_currentBlocks; }
    unsigned int GetPeakBlocks() const { return m_peakBlocks; }

private:
    CVekDirectLinkedList<CVekMemoryBlock *> & BucketOf(void const * data) noexcept;
    void Insert(CVekMemoryBlock * block) noexcept;

    CVekMutex m_mutex; // kept: no operation takes it
    CVekCriticalSection m_lock;
    unsigned int m_bucketCount = BUCKET_COUNT;
    CVekDirectLinkedList<CVekMemoryBlock *> m_buckets[BUCKET_COUNT];
    unsigned int m_nextNumber = 0;
    std::atomic<unsigned int> m_currentBytes = 0;
    unsigned int m_peakBytes = 0;
    std::atomic<unsigned int> m_currentBlocks = 0;
    unsigned int m_peakBlocks = 0;
};
