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

/// The table of the objects of a class, exactly that one, as TableOf gives it for the interface.
template <class Own, class Interface>
void const * OwnTable() noexcept
{
    // Learnt once, from an object that is made for it.
    static void const * const table = []
    {
        Own const probe;
        return TableOf<Interface>(probe);
    }();
    return table;
}

/// The object behind an interface as the library's own class, exactly that one; null for any other implementation,
/// classes that a host derived from it included. Nothing but the address of the object's table is read: a host's
/// object may come from another compiler, or from one that was told to leave out what a dynamic cast follows.
template <class Own, class Interface>
Own * AsOwn(Interface & object) noexcept
{
    return TableOf(object) == OwnTable<Own, Interface>() ? static_cast<Own *>(&object) : nullptr;
}

} // namespace vek
