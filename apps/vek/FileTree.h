#pragma once

#include <string>
#include <vector>

namespace tool
{

/// The XML files (by their names' endings) of a folder and all below it, sorted; a file stands for itself. Folders that
/// can't be read are told of on standard error, and the result is false then.
bool CollectXmlFiles(std::wstring const & path, std::vector<std::wstring> & files);

} // namespace tool
