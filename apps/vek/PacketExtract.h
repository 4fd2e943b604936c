#pragma once

#include <string>
#include <vector>

namespace tool
{

/// `vek packets extract`: writes the packets at the paths, or all, with what is below them, as files and folders below
/// a folder. Nothing that exists is changed, and no name from the file leads out of the folder.
int RunPacketsExtract(std::wstring const & path, std::vector<std::wstring> const & packets,
                      std::wstring const & target);

} // namespace tool
