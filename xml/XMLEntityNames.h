#pragma once

#include "base/Buffer.h"
#include "text/NameIndex.h"

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

    Buffer<wchar_t> m_text;
    Buffer<Entry> m_entries;
    NameIndex m_index;
};

} // namespace vek
