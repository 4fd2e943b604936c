#pragma once

#include "base/Buffer.h"
#include "text/NameHash.h"

#include <stdint.h>

namespace vek
{

/// The names of the entities whose text a document declares.
class XMLEntityNames
{
public:
    /// False when memory is exhausted.
    bool Add(wchar_t const * name) noexcept;
    /// Also for the names that every document knows, and for numbers of characters.
    bool Has(wchar_t const * name, size_t length) const noexcept;

private:
    struct Entry
    {
        uint32_t begin;
        uint32_t length;
    };

    size_t SlotOf(wchar_t const * name, size_t length) const noexcept;

    Buffer<wchar_t> m_text;
    Buffer<Entry> m_entries;
    Buffer<uint32_t> m_slots; // open addressing, a power of two; entries from 1
    NameHash m_hash;
};

} // namespace vek
