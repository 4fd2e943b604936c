// What a quiet, healthy machine does not show: calls of the system that fail, and threads that come in between. Only in
// programs that are linked statically with VEKLIB_GUARD, whose own table of imports is turned to stand-ins; elsewhere
// nothing fails and nobody gives way.
#pragma once

#include <cstddef>

namespace VekTest
{

// Calls for events, mutexes, semaphores, threads, handles, files, folders, times, memory status and code pages
// fail from now on, if the calling thread makes them: only the n-th (1 is the next one), or the n-th and all after it.
void FailSystemCall(std::size_t n) noexcept;
void FailSystemFrom(std::size_t n) noexcept;
// Ends failing; the name of the first call that failed since, null for none.
char const * SystemReset() noexcept;

// Every thread gives way to others before and after some of its calls for locks, waits, threads and handles; the seed
// decides which. 0 ends it.
void GiveWay(unsigned int seed) noexcept;

} // namespace VekTest
