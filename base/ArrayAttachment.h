#pragma once

#include "VekCore.h"

#include "base/Pool.h"

#include <stddef.h>

#include <bit>

namespace vek
{

/// One pointer that goes with the storage of a long pointer array, for the array's owner: null at first, kept when the
/// storage grows, and not freed with it.
struct ArrayAttachment
{
    /// The capacity up to which an array has no place for it.
    static constexpr int SMALL = 32;

    /// The pointers that the storage behind a capacity has room for. The capacity that the array reports grows by its
    /// step; the block is the next power of two, so that a step of 1 costs no copy per element.
    static size_t Slots(int capacity) noexcept
    {
        return std::bit_ceil(static_cast<size_t>(capacity) + (capacity > SMALL ? 1 : 0));
    }
    /// The capacity that the storage behind the next one up has room for.
    static int NextCapacity(int capacity) noexcept
    {
        size_t const slots = Slots(capacity + 1);
        return static_cast<int>(slots) - (slots > SMALL ? 1 : 0);
    }
    /// The size of that storage's block, which is the pool's.
    static size_t BlockBytes(int capacity) noexcept { return Slots(capacity) * sizeof(void *); }
    /// Gives an array without storage a block of that size.
    static void Adopt(CVekPointerArrayBase & array, void * block, int capacity) noexcept
    {
        array.m_storage = static_cast<void **>(block);
        array.m_capacity = capacity;
    }
    /// As the array's Free.
    static void Free(CVekPointerArrayBase & array, PoolBatch & batch) noexcept
    {
        if (array.m_storage)
            batch.Free(array.m_storage, BlockBytes(array.m_capacity));
        array.m_storage = nullptr;
        array.m_count = 0;
        array.m_capacity = 0;
    }
    /// The place of the pointer: the last slot of large storage; null when the array has none.
    static void ** Place(CVekPointerArrayBase const & array) noexcept
    {
        return array.m_capacity > SMALL ? &array.m_storage[Slots(array.m_capacity) - 1] : nullptr;
    }
};

} // namespace vek
