#pragma once

#include <string>
#include <vector>

namespace tool
{

/// `vek packets list`: prints a packet file's packets, a line each: size, type and path.
int RunPacketsList(std::wstring const & path);

/// `vek packets extract`: writes the packets at the paths, or all, with what is below them, as files and folders below
/// a folder. Nothing that exists is changed, and no name from the file leads out of the folder.
int RunPacketsExtract(std::wstring const & path, std::vector<std::wstring> const & packets,
                      std::wstring const & target);

/// `vek packets pack`: writes a folder's files and folders as a packet file. Links are left out, and the file itself.
int RunPacketsPack(std::wstring const & folder, std::wstring const & path);

} // namespace tool
