#include "PacketCommands.h"

#include "PacketExtract.h"
#include "PacketList.h"
#include "PacketPack.h"
#include "Utf8.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tool
{

namespace
{

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
    list->add_option("FILE", arguments->file, "The file")->required()->type_name("");
    list->callback([arguments, &command]
                   { command = [arguments] { return RunPacketsList(FromUtf8(arguments->file)); }; });
}

void AddExtract(CLI::App * packets, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const extract = packets->add_subcommand("extract", "Write a file's packets as files and folders");
    extract->add_option("FILE", arguments->file, "The file")->required()->type_name("");
    extract->add_option("PATH", arguments->paths, "The packets, all when there is none")->type_name("");
    extract->add_option("-o,--output", arguments->folder, "The folder to write to, made when it is not there")
        ->required()
        ->type_name("DIR");
    extract->footer(ABOUT_EXTRACTING);
    extract->callback(
        [arguments, &command]
        {
            command = [arguments]
            {
                std::vector<std::wstring> paths;
                for (std::string const & path : arguments->paths)
                    paths.push_back(FromUtf8(path));
                return RunPacketsExtract(FromUtf8(arguments->file), paths, FromUtf8(arguments->folder));
            };
        });
}

void AddPack(CLI::App * packets, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const pack = packets->add_subcommand("pack", "Write a folder's files and folders as a packet file");
    pack->add_option("DIR", arguments->folder, "The folder; links in it are left out")->required()->type_name("");
    pack->add_option("FILE", arguments->file, "The file to write or replace")->required()->type_name("");
    pack->callback(
        [arguments, &command]
        { command = [arguments] { return RunPacketsPack(FromUtf8(arguments->folder), FromUtf8(arguments->file)); }; });
}

} // namespace

void AddPacketCommands(CLI::App & app, Command & command)
{
    auto const arguments = std::make_shared<Arguments>();
    CLI::App * const packets = app.add_subcommand("packets", "Read and write files of the packet-file example");
    packets->require_subcommand(1);
    AddList(packets, arguments, command);
    AddExtract(packets, arguments, command);
    AddPack(packets, arguments, command);
}

} // namespace tool
