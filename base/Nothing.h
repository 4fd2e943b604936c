#pragma once

#include <stddef.h>

#include <new>

namespace vek
{

/// Room for so many bytes in every thread's area; its offset.
size_t ReserveNothing(size_t bytes) noexcept;

/// The calling thread's area. Without memory for one, an area that such threads share.
unsigned char * ThreadArea() noexcept;

/// An object of zeros that belongs to nothing: what reading outside of something gives, and where writing there ends.
/// Each thread has its own, which is zero again at each call and stays as long as the thread.
template <class T>
T & Nothing() noexcept
{
    static_assert(alignof(T) <= 8);
    // A thread-local object would end the process where a thread finds no memory for it.
    static size_t const offset = ReserveNothing(sizeof(T));
    return *new (ThreadArea() + offset) T();
}

} // namespace vek
