#pragma once

#include <string.h>

namespace vek
{

/// The table of virtual operations of an object whose first entry it is: objects of one class share theirs.
template <class Interface>
void const * const * TableOf(Interface const & object) noexcept
{
    void const * const * table;
    memcpy(&table, static_cast<void const *>(&object), sizeof table);
    return table;
}

} // namespace vek
