#pragma once

#include "data/DataFile.h"

#include <string>

namespace tool
{

/// `vek data pack`: makes a typed data file of an XML file.
int RunDataPack(std::wstring const & xml, std::wstring const & target, DataOptions const & options);

/// `vek data unpack`: makes an XML file of a typed data file.
int RunDataUnpack(std::wstring const & path, std::wstring const & xml, DataOptions const & options);

} // namespace tool
