#include "Commands.h"
#include "Utf8.h"
#include "data/DataDump.h"
#include "data/DataXml.h"

namespace tool
{

namespace
{

constexpr char const * OVERVIEW =
    R"(  vek data dump FILE                         the entries of a typed data file, a line each
  vek data pack XML OUT                      make a typed data file of an XML file
  vek data unpack FILE XML                   make an XML file of a typed data file
)";

constexpr char const * ABOUT_XML =
    R"(The XML file has an element <TypedData> with an element <Entry Name="..." Type="..." Value="..."/> for each entry.
Types: bool, byte, char, wchar, int16, word, int32, dword, float, double, string, wstring, rgba8, rgbaf, vec4i, vec4f,
vec4d, mat4f, mat4d (numbers separated by commas), buffer (hexadecimal digits) and guid (no value, as files hold none).
Numbers that are not finite are given by their bits, such as 0x7FC00000. In names and texts "\\" is a backslash, "\xE9"
a byte and "\u20AC" a UTF-16 unit.

The new file is written beside the old one and takes its place when it is whole.)";

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::string from, to;
    DataOptions options;
};

CLI::App * AddCommand(CLI::App * data, char const * name, char const * description, Arguments & arguments)
{
    CLI::App * const command = data->add_subcommand(name, description);
    command->add_flag("--big-endian", arguments.options.bigEndian, "The data file's values begin with the high byte");
    return command;
}

void Add(CLI::App & app, Command & command)
{
    auto const arguments = std::make_shared<Arguments>();
    CLI::App * const data = app.add_subcommand("data", "Show typed data files, and turn them into XML and back");
    data->require_subcommand(1);

    CLI::App * const dump = AddCommand(data, "dump", "Show a file's entries, a line each", *arguments);
    AddText(dump, "FILE", arguments->from, "The typed data file");
    RunWith(dump, arguments, command,
            [](Arguments const & given) { return RunDataDump(FromUtf8(given.from), given.options); });

    CLI::App * const pack = AddCommand(data, "pack", "Make a typed data file of an XML file", *arguments);
    AddText(pack, "XML", arguments->from, "The XML file to read");
    AddText(pack, "OUT", arguments->to, "The typed data file to write");
    pack->footer(ABOUT_XML);
    RunWith(pack, arguments, command,
            [](Arguments const & given)
            { return RunDataPack(FromUtf8(given.from), FromUtf8(given.to), given.options); });

    CLI::App * const unpack = AddCommand(data, "unpack", "Make an XML file of a typed data file", *arguments);
    AddText(unpack, "FILE", arguments->from, "The typed data file to read");
    AddText(unpack, "XML", arguments->to, "The XML file to write");
    unpack->footer(ABOUT_XML);
    RunWith(unpack, arguments, command,
            [](Arguments const & given)
            { return RunDataUnpack(FromUtf8(given.from), FromUtf8(given.to), given.options); });
}

} // namespace

CommandGroup const DATA_COMMANDS = {OVERVIEW, Add};

} // namespace tool
