#pragma once

#include <string>

namespace tool
{

/// `vek packets pack`: writes a folder's files and folders as a packet file. Links are left out, and the file itself.
int RunPacketsPack(std::wstring const & folder, std::wstring const & path);

} // namespace tool
