#include "VekCore.h"

#include "base/ArrayAttachment.h"
#include "base/Pool.h"

#include <limits.h>
#include <string.h>

bool CVekPointerArrayBase::Grow() noexcept
{
    int const doubled = m_capacity ? m_capacity : 1;
    int const step = m_growthStep == GROW_DOUBLING ? doubled : (m_growthStep > 1 ? m_growthStep : 1);
    return step <= INT_MAX - m_capacity && Reserve(m_capacity + step);
}

bool CVekPointerArrayBase::Reserve(int capacity) noexcept
{
    constexpr int LIMIT = INT_MAX / static_cast<int>(2 * sizeof(void *));
    if (capacity <= m_capacity)
        return true;
    if (capacity > LIMIT)
        return false;
    if (!m_storage || vek::ArrayAttachment::BlockBytes(capacity) > vek::ArrayAttachment::BlockBytes(m_capacity))
    {
        void ** const attachment = vek::ArrayAttachment::Place(*this);
        void * const attached = attachment ? *attachment : nullptr;
        auto * const storage = static_cast<void **>(vek::PoolAllocate(vek::ArrayAttachment::BlockBytes(capacity)));
        if (!storage)
            return false;
        if (m_storage)
        {
            memcpy(storage, m_storage, static_cast<size_t>(m_count) * sizeof(void *));
            vek::PoolFree(m_storage, vek::ArrayAttachment::BlockBytes(m_capacity));
        }
        m_storage = storage;
        m_capacity = capacity;
        if (void ** const place = vek::ArrayAttachment::Place(*this))
            *place = attached;
    }
    m_capacity = capacity;
    return true;
}

bool CVekPointerArrayBase::Insert(int index, void * pointer) noexcept
{
    if (index < 0 || index > m_count || !Append(pointer))
        return false;
    memmove(m_storage + index + 1, m_storage + index, static_cast<size_t>(m_count - 1 - index) * sizeof(void *));
    m_storage[index] = pointer;
    return true;
}

void CVekPointerArrayBase::RemoveAt(int index) noexcept
{
    if (index < 0 || index >= m_count)
        return;
    --m_count;
    memmove(m_storage + index, m_storage + index + 1, static_cast<size_t>(m_count - index) * sizeof(void *));
}

void CVekPointerArrayBase::Free() noexcept
{
    if (m_storage)
        vek::PoolFree(m_storage, vek::ArrayAttachment::BlockBytes(m_capacity));
    m_storage = nullptr;
    m_count = 0;
    m_capacity = 0;
}

void CVekPointerArrayBase::Swap(CVekPointerArrayBase & other) noexcept
{
    CVekPointerArrayBase const mine = *this;
    *this = other;
    other = mine;
}
