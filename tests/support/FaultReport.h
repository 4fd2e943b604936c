// What a test program tells when it can't go on. It works while the heap is locked.
#pragma once

namespace VekTest
{

// Writes to the standard error.
void Report(char const * format, ...) __attribute__((format(gnu_printf, 1, 2)));
// From now on a fault ends the program with status 96, after it has told the place, the callers and what was running.
void ReportFaults(char const * running);

} // namespace VekTest
