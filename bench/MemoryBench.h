#pragma once

#include "Harness.h"

namespace bench
{

/// Tracked allocation and deallocation beside malloc and free, with few and with many live blocks.
void MeasureMemory(bool quick, Aims & aims);

} // namespace bench
