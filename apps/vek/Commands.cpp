#include "Commands.h"

namespace tool
{

namespace
{

constexpr CommandGroup const * GROUPS[] = {&XML_COMMANDS, &DATA_COMMANDS, &PACKET_COMMANDS, &LEX_COMMANDS};

} // namespace

void AddCommands(Command & program)
{
    std::string overview = "Commands:\n";
    for (CommandGroup const * group : GROUPS)
    {
        overview += group->overview;
        group->add(program);
    }
    program.SetFooter(overview +
                      "\n\"vek xml set --help\" and the like tell more. Exit codes: 0 done, 1 failed, 2 wrong usage.");
}

} // namespace tool
