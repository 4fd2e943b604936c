#include "base/AddressTable.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

namespace vek
{

AddressTable::~AddressTable()
{
    free(m_allocated);
}

size_t AddressTable::Home(void const * address) const noexcept
{
    auto const bits = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(address));
    return static_cast<size_t>((bits * 0x9E3779B97F4A7C15ULL) >> 32) & (m_slotCount - 1);
}

void AddressTable::Put(void * address) noexcept
{
    void ** const slots = Slots();
    size_t slot = Home(address);
    while (slots[slot])
        slot = (slot + 1) & (m_slotCount - 1);
    slots[slot] = address;
}

bool AddressTable::Add(void * address) noexcept
{
    if ((m_count + 1) * 2 > m_slotCount && !Resize(m_slotCount * 2))
        return false;
    Put(address);
    ++m_count;
    return true;
}

bool AddressTable::Has(void const * address) const noexcept
{
    void * const * const slots = Slots();
    size_t slot = Home(address);
    while (slots[slot] && slots[slot] != address)
        slot = (slot + 1) & (m_slotCount - 1);
    return slots[slot] != nullptr;
}

bool AddressTable::Remove(void * address) noexcept
{
    if (!address)
        return false;
    void ** const slots = Slots();
    size_t const mask = m_slotCount - 1;
    size_t hole = Home(address);
    for (; slots[hole] != address; hole = (hole + 1) & mask)
    {
        if (!slots[hole])
            return false;
    }
    // Close the gap: an address further on that would not be found across it moves into it.
    for (size_t next = (hole + 1) & mask; slots[next]; next = (next + 1) & mask)
    {
        if (((next - Home(slots[next])) & mask) < ((next - hole) & mask))
            continue;
        slots[hole] = slots[next];
        hole = next;
    }
    slots[hole] = nullptr;
    --m_count;
    if (m_slotCount > OWN_SLOTS && m_count * 8 < m_slotCount)
        Resize(m_slotCount / 2); // without memory for it, it stays large
    return true;
}

bool AddressTable::Resize(size_t slotCount) noexcept
{
    void ** const old = m_allocated;
    void ** const oldSlots = Slots();
    size_t const oldCount = m_slotCount;
    void ** allocated = nullptr;
    if (slotCount > OWN_SLOTS)
    {
        allocated = static_cast<void **>(calloc(slotCount, sizeof(void *)));
        if (!allocated)
            return false;
    }
    else
        memset(m_own, 0, sizeof m_own);
    m_allocated = allocated;
    m_slotCount = slotCount;
    for (size_t i = 0; i < oldCount; ++i)
    {
        if (oldSlots[i])
            Put(oldSlots[i]);
    }
    free(old);
    return true;
}

} // namespace vek
