#pragma once

#include "CommandLine.h"

namespace tool
{

/// A group of vek's commands. A new group is entered in Commands.cpp.
struct CommandGroup
{
    char const * overview; // its lines in the help
    void (*add)(Command & program);
};

extern CommandGroup const XML_COMMANDS;
extern CommandGroup const DATA_COMMANDS;
extern CommandGroup const PACKET_COMMANDS;
extern CommandGroup const LEX_COMMANDS;

/// Adds the commands of all groups, with the overview in the help.
void AddCommands(Command & program);

} // namespace tool
