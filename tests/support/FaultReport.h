// What a test program tells when it can't go on. It works while the heap is locked.
#pragma once

namespace VekTest
{

// Writes to the standard error.
#if defined(__GNUC__) && !defined(__clang__)
__attribute__((format(gnu_printf, 1, 2)))
#endif
void Report(char const * format, ...);
// From now on a fault ends the program with status 96, after it has told the place, the callers and what was running.
void ReportFaults(char const * running);

} // namespace VekTest
