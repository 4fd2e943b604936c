#pragma once

#include <string>

namespace tool
{

/// `vek packets list`: prints a packet file's packets, a line each: size, type and path.
int RunPacketsList(std::wstring const & path);

} // namespace tool
