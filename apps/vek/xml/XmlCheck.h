#pragma once

#include <string>
#include <vector>

namespace tool
{

/// `vek xml check`: reads every XML file of the folders with that many worker threads and tells which are bad.
int RunXmlCheck(std::vector<std::wstring> const & folders, int jobs, bool onlyBad);

} // namespace tool
