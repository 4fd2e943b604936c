#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool
{

/// Adds the paths of a folder's files and of the folders in it, unsorted. Links are left out: they may form circles.
/// False after telling the user that the folder can't be read.
bool ReadFolder(std::wstring const & folder, std::vector<std::wstring> & files, std::vector<std::wstring> & folders);

/// The files of a folder and all below it whose names are like one of the patterns ("*.dae"), or, without any, end as
/// those of XML files do; sorted. The others are counted as skipped. A file stands for itself. Folders that can't be
/// read are told of on standard error, and the result is false then.
bool CollectXmlFiles(std::wstring const & path, std::vector<std::wstring> const & patterns,
                     std::vector<std::wstring> & files, std::uint64_t & skipped);

} // namespace tool
