#pragma once

#include "data/DataFile.h"

#include <string>

namespace tool
{

/// `vek data dump`: prints the entries, a line each; of a damaged file those before the fault.
int RunDataDump(std::wstring const & path, DataOptions const & options);

} // namespace tool
