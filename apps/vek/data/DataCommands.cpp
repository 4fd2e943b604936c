#include "Commands.h"
#include "StandardFiles.h"
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

"-" stands for standard input and output. The new file is written beside the old one and takes its place when it is whole.)";

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::wstring from, to;
    DataOptions options;
};

Command AddCommand(Command & data, char const * name, char const * description, Arguments & arguments)
{
    return data.AddCommand(name, description)
        .AddFlag("--big-endian", arguments.options.bigEndian, "The data file's values begin with the high byte");
}

void Add(Command & program)
{
    auto const given = std::make_shared<Arguments>();
    Command data = program.AddCommand("data", "Show typed data files, and turn them into XML and back");
    AddCommand(data, "dump", "Show a file's entries, a line each", *given)
        .AddText("FILE", given->from, "The typed data file")
        .SetWork(
            [given] {
                return WithInput(given->from,
                                 [&given](std::wstring const & path) { return RunDataDump(path, given->options); });
            });
    AddCommand(data, "pack", "Make a typed data file of an XML file", *given)
        .AddText("XML", given->from, "The XML file to read")
        .AddText("OUT", given->to, "The typed data file to write")
        .SetFooter(ABOUT_XML)
        .SetWork(
            [given]
            {
                return WithFiles(given->from, given->to,
                                 [&given](std::wstring const & from, std::wstring const & to)
                                 { return RunDataPack(from, to, given->options); });
            });
    AddCommand(data, "unpack", "Make an XML file of a typed data file", *given)
        .AddText("FILE", given->from, "The typed data file to read")
        .AddText("XML", given->to, "The XML file to write")
        .SetFooter(ABOUT_XML)
        .SetWork(
            [given]
            {
                return WithFiles(given->from, given->to,
                                 [&given](std::wstring const & from, std::wstring const & to)
                                 { return RunDataUnpack(from, to, given->options); });
            });
}

} // namespace

CommandGroup const DATA_COMMANDS = {OVERVIEW, Add};

} // namespace tool
