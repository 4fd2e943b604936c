#pragma once

#include <functional>

namespace CLI
{
class App;
}

namespace tool
{

/// What the command line asks for: set while it is parsed, run when it was all right. Returns an exit code.
using Command = std::function<int()>;

/// Adds `vek xml` and its commands.
void AddXmlCommands(CLI::App & app, Command & command);

} // namespace tool
