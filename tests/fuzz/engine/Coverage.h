// Which ways through the library an input has taken, counted by code that the compiler puts into each of its branches.
#pragma once

#include <cstddef>

namespace fuzz
{

// Forgets the last input's ways.
void ResetCoverage();
// The ways, and how often they were taken (in steps of powers of two), that no input before has shown. Those count as
// shown from now on unless told otherwise.
std::size_t NewCoverage(bool keep = true);
// The number of ways shown so far.
std::size_t KnownEdges();
// Has everything count as new again.
void ForgetCoverage();

} // namespace fuzz
