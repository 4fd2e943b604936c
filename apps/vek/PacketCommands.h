#pragma once

#include "XmlCommands.h"

namespace tool
{

/// Adds `vek packets` and its commands.
void AddPacketCommands(CLI::App & app, Command & command);

} // namespace tool
