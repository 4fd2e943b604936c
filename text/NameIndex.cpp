#include "text/NameIndex.h"

namespace vek
{

bool NameIndex::Add(CVekString<wchar_t> const & name) noexcept
{
    if ((m_order.Size() + 1) * 2 > m_slots.Size() && !Grow())
        return false;
    Slot const slot = {m_hash(name, static_cast<size_t>(name.GetLength())), static_cast<uint32_t>(m_count) + 1};
    if (!m_order.Append(slot))
        return false;
    Place(slot);
    ++m_count;
    return true;
}

bool NameIndex::Grow() noexcept
{
    size_t const count = m_slots.Empty() ? 64 : m_slots.Size() * 2;
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
