#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>

namespace tool
{

/// What the command line asks for: set while it is parsed, run when it was all right. Returns an exit code.
using Command = std::function<int()>;

/// A group of vek's commands. A new group is entered in Commands.cpp.
struct CommandGroup
{
    char const * overview; // its lines in the help
    void (*add)(CLI::App & app, Command & command);
};

extern CommandGroup const XML_COMMANDS;
extern CommandGroup const DATA_COMMANDS;
extern CommandGroup const PACKET_COMMANDS;
extern CommandGroup const LEX_COMMANDS;

/// Adds the commands of all groups, with the overview in the help.
void AddCommands(CLI::App & app, Command & command);

/// Runs the command with its arguments once the whole command line was all right.
template <class Arguments, class Work>
void RunWith(CLI::App * app, std::shared_ptr<Arguments> const & arguments, Command & command, Work work)
{
    app->callback([arguments, &command, work] { command = [arguments, work] { return work(*arguments); }; });
}

/// A text that has to be given.
inline CLI::Option * AddText(CLI::App * app, char const * name, std::string & text, char const * description)
{
    return app->add_option(name, text, description)->required()->type_name("");
}

} // namespace tool
