// Calls an operation by its place in an object's table, as a host built with another compiler does. GCC's layout: a
// virtual destructor takes two places, of which the first destroys the object in place.
#pragma once

#include <bit>
#include <cstddef>

inline void * SlotAddress(void const * object, int slot)
{
    return (*static_cast<void * const * const *>(object))[slot];
}

// Any object's class: calling through a member pointer takes the calling convention of members.
class SlotOwner
{
};
struct MemberPointer
{
    void * address;
    std::ptrdiff_t adjustment;
};

template <class Result = void, class... Arguments>
Result CallSlot(void const * object, int slot, Arguments... arguments)
{
    using Operation = Result (SlotOwner::*)(Arguments...) const;
    auto const operation = std::bit_cast<Operation>(MemberPointer{SlotAddress(object, slot), 0});
    return (static_cast<SlotOwner const *>(object)->*operation)(arguments...);
}

// The same for operations with a variable argument list behind the format.
template <class Char, class... Arguments>
bool CallFormatSlot(void const * object, int slot, Char const * format, Arguments... arguments)
{
    using Operation = bool (SlotOwner::*)(Char const *, ...) const;
    auto const operation = std::bit_cast<Operation>(MemberPointer{SlotAddress(object, slot), 0});
    return (static_cast<SlotOwner const *>(object)->*operation)(format, arguments...);
}
