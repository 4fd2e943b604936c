#pragma once

#include <stddef.h>

namespace vek
{

/// A set of addresses: open addressing, with a few slots of its own; larger ones are allocated, by doubling, and given
/// back when they are mostly empty. Not locked.
class AddressTable
{
public:
    constexpr AddressTable() noexcept = default;
    AddressTable(AddressTable const &) = delete;
    AddressTable & operator=(AddressTable const &) = delete;
    ~AddressTable();

    /// Adds an address that is not in the set; false when there is no memory for it.
    bool Add(void * address) noexcept;
    /// Whether the address, which is not null, is in the set.
    bool Has(void const * address) const noexcept;
    /// Takes an address out; false when it is not in the set.
    bool Remove(void * address) noexcept;

private:
    static constexpr size_t OWN_SLOTS = 32;

    void ** Slots() noexcept { return m_allocated ? m_allocated : m_own; }
    void * const * Slots() const noexcept { return m_allocated ? m_allocated : m_own; }
    size_t Home(void const * address) const noexcept;
    void Put(void * address) noexcept;
    bool Resize(size_t slotCount) noexcept;

    void * m_own[OWN_SLOTS] = {};
    void ** m_allocated = nullptr;
    size_t m_slotCount = OWN_SLOTS; // a power of two; an empty slot is null
    size_t m_count = 0;
};

} // namespace vek
