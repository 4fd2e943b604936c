#pragma once

#include <string.h>

namespace vek
{

/// The table of virtual operations of an object whose first entry it is: objects of one class share theirs.
template <class Interface>
void const * TableOf(Interface const & object) noexcept
{
    void const * table;
    memcpy(&table, static_cast<void const *>(&object), sizeof table);
    return table;
}

/// The object behind an interface as the library's own class, exactly that one; null for any other implementation,
/// classes that a host derived from it included. Nothing but the address of the object's table is read: a host's
/// object may come from another compiler, or from one that was told to leave out what a dynamic cast follows.
template <class Own, class Interface>
Own * AsOwn(Interface & object) noexcept
{
    // Learnt once, from an object that is made for it.
    static void const * const ownTable = []
    {
        Own const probe;
        return TableOf<Interface>(probe);
    }();
    return TableOf(object) == ownTable ? static_cast<Own *>(&object) : nullptr;
}

} // namespace vek
