#include "text/NameIndex.h"

#include <stdint.h>
#include <string.h>

#include <bit>

namespace vek
{

bool NameIndex::AddHashed(uint32_t hash) noexcept
{
    if ((m_order.Size() + 1) * 2 > m_slots.Size() && !GrowTo(m_slots.Size() * 2))
        return false;
    Slot const slot = {hash, static_cast<uint32_t>(m_count) + 1};
    if (!m_order.Append(slot))
        return false;
    Place(slot);
    ++m_count;
    return true;
}

void NameIndex::ForgetLast() noexcept
{
    if (!m_order.Empty() && m_order.Back().position == static_cast<uint32_t>(m_count))
    {
        // Nothing was placed after it: no search goes on across its slot.
        size_t at = m_order.Back().hash & Mask();
        while (m_slots[at].position != m_order.Back().position)
            at = (at + 1) & Mask();
        m_slots[at] = {};
        m_order.PopBack();
    }
    --m_count;
}

void NameIndex::Clear() noexcept
{
    m_slots.Clear();
    m_order.Clear();
    m_count = 0;
}

bool NameIndex::Reserve(size_t count) noexcept
{
    return count < SIZE_MAX / 4 && m_order.Reserve(count) &&
           (count * 2 <= m_slots.Size() || GrowTo(std::bit_ceil(count * 2)));
}

// The number of slots is a power of two.
bool NameIndex::GrowTo(size_t slots) noexcept
{
    size_t const count = slots < 64 ? 64 : slots;
    if (!m_slots.Reserve(count))
        return false;
    m_slots.Clear();
    memset(m_slots.Extend(count), 0, count * sizeof(Slot));
    for (size_t i = 0; i < m_order.Size(); ++i)
        Place(m_order[i]);
    return true;
}

void NameIndex::Place(Slot const & slot) noexcept
{
    size_t at = slot.hash & Mask();
    while (m_slots[at].position)
        at = (at + 1) & Mask();
    m_slots[at] = slot;
}

} // namespace vek
