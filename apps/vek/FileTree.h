#pragma once

#include <string>
#include <vector>

namespace tool
{

/// Adds the paths of a folder's files and of the folders in it, unsorted. Links are left out: they may form circles.
/// False after telling the user that the folder can't be read.
bool ReadFolder(std::wstring const & folder, std::vector<std::wstring> & files, std::vector<std::wstring> & folders);

/// The XML files (by their names' endings) of a folder and all below it, sorted; a file stands for itself. Folders that
/// can't be read are told of on standard error, and the result is false then.
bool CollectXmlFiles(std::wstring const & path, std::vector<std::wstring> & files);

} // namespace tool
