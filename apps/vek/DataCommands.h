#pragma once

#include "XmlCommands.h"

namespace tool
{

/// Adds `vek data` and its commands.
void AddDataCommands(CLI::App & app, Command & command);

} // namespace tool
