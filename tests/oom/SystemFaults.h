// Lets the system's calls fail as allocations do: events, mutexes, semaphores, threads, files, folders, COM, memory
// status and conversions. Only in programs that are linked statically with VEKLIB_GUARD, whose own table of imports is
// turned to stand-ins; elsewhere nothing fails.
#pragma once

#include <cstddef>

namespace VekTest
{

// Such calls of the calling thread fail from now on: only the n-th (1 is the next one), or the n-th and all after it.
void FailSystemCall(std::size_t n) noexcept;
void FailSystemFrom(std::size_t n) noexcept;
// Ends failing; the name of the first call that failed since, null for none.
char const * SystemReset() noexcept;

} // namespace VekTest
