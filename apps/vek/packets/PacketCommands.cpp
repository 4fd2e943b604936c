#include "Commands.h"
#include "packets/Packets.h"

namespace tool
{

namespace
{

constexpr char const * OVERVIEW =
    R"(  vek packets list FILE                      the packets of a packet file
  vek packets extract FILE [PATH...] -o DIR  write them as files and folders
  vek packets pack DIR FILE                  make a packet file of a folder
)";

constexpr char const * ABOUT_EXTRACTING =
    R"(PATH leads from the root by packets' names separated by slashes; a folder's comes with all below it. Nothing that
exists is replaced. A packet whose name could lead out of DIR, or that can't be a file's (a device, a stream, an ending
dot or blank), is left out with all below it and told of; so is the second of two of one name. The exit code is 1 then.)";

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::wstring file, folder;
    std::vector<std::wstring> paths;
};

void Add(Command & program)
{
    auto const given = std::make_shared<Arguments>();
    Command packets = program.AddCommand("packets", "Read and write files of the packet-file example");
    packets.AddCommand("list", "Show a file's packets: size, type and path")
        .AddText("FILE", given->file, "The file")
        .SetWork([given] { return RunPacketsList(given->file); });
    packets.AddCommand("extract", "Write a file's packets as files and folders")
        .AddText("FILE", given->file, "The file")
        .AddOptionalTexts("PATH", given->paths, "The packets, all when there is none")
        .AddRequiredOption("-o,--output", "DIR", given->folder, "The folder to write to, made when it is not there")
        .SetFooter(ABOUT_EXTRACTING)
        .SetWork([given] { return RunPacketsExtract(given->file, given->paths, given->folder); });
    packets.AddCommand("pack", "Write a folder's files and folders as a packet file")
        .AddText("DIR", given->folder, "The folder; links in it are left out")
        .AddText("FILE", given->file, "The file to write or replace")
        .SetWork([given] { return RunPacketsPack(given->folder, given->file); });
}

} // namespace

CommandGroup const PACKET_COMMANDS = {OVERVIEW, Add};

} // namespace tool
