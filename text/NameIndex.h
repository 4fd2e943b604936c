#pragma once

#include "base/Buffer.h"
#include "text/NameHash.h"
#include "text/Names.h"

#include <stddef.h>
#include <stdint.h>

namespace vek
{

/// Finds the entries of a long list by name: a table of the hashes of their names, without regard to the case of ASCII
/// letters. It knows the first entries of the list, as many as were added, in their order.
class NameIndex
{
public:
    /// How many entries of the list it knows.
    int Count() const noexcept { return m_count; }
    /// Adds the next entry; false when memory is exhausted.
    bool Add(CVekString<wchar_t> const & name) noexcept { return Add(GivenText(name)); }
    bool Add(GivenText const & name) noexcept { return AddHashed(Hash(name)); }
    /// As Add, but an entry of the name of one before it is only counted: for which the predicate, called with the
    /// position of that one, is true.
    template <class Predicate>
    bool AddFirst(CVekString<wchar_t> const & name, Predicate isSame) noexcept
    {
        uint32_t const hash = Hash(GivenText(name));
        if (FindHashed(hash, isSame) < 0)
            return AddHashed(hash);
        Skip();
        return true;
    }
    /// Makes room for that many entries in all; false when memory is exhausted.
    bool Reserve(size_t count) noexcept;
    /// Counts the next entry without adding it, so that it is never found.
    void Skip() noexcept { ++m_count; }
    /// Forgets the last entry that it knows, which must exist.
    void ForgetLast() noexcept;
    /// Forgets all entries.
    void Clear() noexcept;

    /// The first entry for which the predicate, called with its position, is true among those that may have the name;
    /// -1 when there is none.
    template <class Predicate>
    int Find(GivenText const & name, Predicate isMatch) const noexcept
    {
        return name.length < 0 ? -1 : FindHashed(Hash(name), isMatch);
    }

private:
    struct Slot
    {
        uint32_t hash;
        uint32_t position; // from 1; 0 in an empty slot
    };

    uint32_t Hash(GivenText const & name) const noexcept { return m_hash(name.text, static_cast<size_t>(name.length)); }
    template <class Predicate>
    int FindHashed(uint32_t hash, Predicate isMatch) const noexcept
    {
        if (m_slots.Empty())
            return -1;
        for (size_t at = hash & Mask(); m_slots[at].position; at = (at + 1) & Mask())
        {
            int const position = static_cast<int>(m_slots[at].position) - 1;
            if (m_slots[at].hash == hash && isMatch(position))
                return position;
        }
        return -1;
    }
    bool AddHashed(uint32_t hash) noexcept;
    size_t Mask() const noexcept { return m_slots.Size() - 1; }
    bool GrowTo(size_t slots) noexcept;
    void Place(Slot const & slot) noexcept;

    Buffer<Slot> m_slots; // their number is a power of two, at most half of them used; equal names stand in list order
    Buffer<Slot> m_order; // the used ones in list order
    int m_count = 0;
    NameHash m_hash;
};

} // namespace vek
