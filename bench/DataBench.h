#pragma once

#include "Harness.h"

namespace bench
{

/// Typed data: writing and reading entries and buffers through memory and file streams, and looking up by name. The
/// library must be initialised. False when a file can't be made in the folder for temporary files.
bool MeasureData(bool quick, Aims & aims);

} // namespace bench
