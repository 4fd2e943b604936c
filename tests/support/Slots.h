// Calls an operation by its place in an object's table, as a host built with another compiler does.
#pragma once

#include <bit>
#include <cstddef>

// The place of an operation behind the destructor, which counts as one. GCC's has two: one destroys the object where it
// is, the next frees it too. Microsoft's is told whether to free.
constexpr int Behind(int slot)
{
#if defined(_MSC_VER)
    return slot;
#else
    return slot + 1;
#endif
}

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
#if !defined(_MSC_VER)
    std::ptrdiff_t adjustment = 0;
#endif
};

template <class Result = void, class... Arguments>
Result CallSlot(void const * object, int slot, Arguments... arguments)
{
    using Operation = Result (SlotOwner::*)(Arguments...) const;
    auto const operation = std::bit_cast<Operation>(MemberPointer{SlotAddress(object, slot)});
    return (static_cast<SlotOwner const *>(object)->*operation)(arguments...);
}

// The same for operations with a variable argument list behind the format.
template <class Char, class... Arguments>
bool CallFormatSlot(void const * object, int slot, Char const * format, Arguments... arguments)
{
    using Operation = bool (SlotOwner::*)(Char const *, ...) const;
    auto const operation = std::bit_cast<Operation>(MemberPointer{SlotAddress(object, slot)});
    return (static_cast<SlotOwner const *>(object)->*operation)(format, arguments...);
}

// Destroys an object by its destructor's place, and frees it.
inline void DestroyBySlot(void const * object, int slot)
{
#if defined(_MSC_VER)
    CallSlot<void *>(object, slot, 1U);
#else
    CallSlot(object, slot + 1);
#endif
}
