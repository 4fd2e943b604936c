#include "Commands.h"
#include "Utf8.h"
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
    std::string file, folder;
    std::vector<std::string> paths;
};

void AddList(CLI::App * packets, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const list = packets->add_subcommand("list", "Show a file's packets: size, type and path");
    AddText(list, "FILE", arguments->file, "The file");
    RunWith(list, arguments, command, [](Arguments const & given) { return RunPacketsList(FromUtf8(given.file)); });
}

void AddExtract(CLI::App * packets, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const extract = packets->add_subcommand("extract", "Write a file's packets as files and folders");
    AddText(extract, "FILE", arguments->file, "The file");
    extract->add_option("PATH", arguments->paths, "The packets, all when there is none")->type_name("");
    extract->add_option("-o,--output", arguments->folder, "The folder to write to, made when it is not there")
        ->required()
        ->type_name("DIR");
    extract->footer(ABOUT_EXTRACTING);
    RunWith(extract, arguments, command,
            [](Arguments const & given)
            { return RunPacketsExtract(FromUtf8(given.file), FromUtf8(given.paths), FromUtf8(given.folder)); });
}

void AddPack(CLI::App * packets, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const pack = packets->add_subcommand("pack", "Write a folder's files and folders as a packet file");
    AddText(pack, "DIR", arguments->folder, "The folder; links in it are left out");
    AddText(pack, "FILE", arguments->file, "The file to write or replace");
    RunWith(pack, arguments, command,
            [](Arguments const & given) { return RunPacketsPack(FromUtf8(given.folder), FromUtf8(given.file)); });
}

void Add(CLI::App & app, Command & command)
{
    auto const arguments = std::make_shared<Arguments>();
    CLI::App * const packets = app.add_subcommand("packets", "Read and write files of the packet-file example");
    packets->require_subcommand(1);
    AddList(packets, arguments, command);
    AddExtract(packets, arguments, command);
    AddPack(packets, arguments, command);
}

} // namespace

CommandGroup const PACKET_COMMANDS = {OVERVIEW, Add};

} // namespace tool
