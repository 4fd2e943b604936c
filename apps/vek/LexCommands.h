#pragma once

#include "XmlCommands.h"

namespace tool
{

/// Adds `vek lex`.
void AddLexCommand(CLI::App & app, Command & command);

} // namespace tool
