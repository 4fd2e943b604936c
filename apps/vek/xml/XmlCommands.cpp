#include "Commands.h"
#include "StandardFiles.h"
#include "xml/XmlCheck.h"
#include "xml/XmlEdit.h"
#include "xml/XmlShow.h"

#include <algorithm>
#include <limits>
#include <thread>

namespace tool
{

namespace
{

constexpr char const * OVERVIEW =
    R"(  vek xml info FILE...                       what files hold, and how fast they are read
  vek xml tree FILE [--depth N]              the elements, a line each
  vek xml get FILE PATH ATTRIBUTE            an attribute's value
  vek xml set FILE PATH ATTRIBUTE VALUE      change or add an attribute, in place or with -o OUT
  vek xml format IN OUT [--indent N]         write a file anew, indented
  vek xml check DIR... [--jobs N]            which XML files of folders are bad, and where
)";

constexpr char const * ABOUT_EDITING =
    R"(The new file is written beside the old one, read back and compared, and only then takes its place: after a failure
nothing has changed. It is UTF-8, one line for each tag.

Kept are elements, attributes and CDATA sections (the first of each element). Text outside CDATA sections, comments and
processing instructions are NOT kept: a note tells what was lost, and a file that holds text is replaced only with
--drop-text. Of a document type the element and attribute declarations are kept: attributes with a default value are
declared as #IMPLIED, content models in the library's simple form, so that --no-dtd is the better choice where a
validating reader follows. A document type that could not be read again is left out.)";

constexpr char const * ABOUT_PATHS =
    R"(PATH leads from the root element, whose own name is not part of it, by element names separated by slashes: "a/b" is
the first b in the first a. "/" or "" is the root itself. Names are found without regard to the case of ASCII letters.)";

constexpr char const * ABOUT_PATH = "The way from the root to the element, such as \"a/b\"; \"/\" for the root";

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::vector<std::wstring> files;
    std::wstring file, target, path, attribute, value;
    bool create = false;
    CheckRequest check{{}, {}, 0, false, false};
    std::size_t depth = std::numeric_limits<std::size_t>::max();
    EditOptions edit;
};

using GivenArguments = std::shared_ptr<Arguments>;

Command & AddEditing(Command & command, EditOptions & edit)
{
    return command.AddOption("--indent", "N", edit.save.indentation, 0, 100, "Blanks for each level of depth (3)")
        .AddFlag("--no-dtd", edit.save.noDocumentType, "Leave the document type out")
        .AddFlag("--drop-text", edit.dropText, "Replace a file even if text is lost with it");
}

void AddReading(Command & xml, GivenArguments const & given)
{
    xml.AddCommand("info", "Show what files hold and how fast they are read")
        .AddTexts("FILE", given->files, "The files, \"-\" for standard input")
        .SetWork([given] { return RunXmlInfo(given->files); });
    xml.AddCommand("tree", "Show a file's elements, a line each, values as they are stored")
        .AddText("FILE", given->file, "The file, \"-\" for standard input")
        .AddOption("--depth", "N", given->depth, 1, 0x7FFFFFFF, "Levels to show")
        .SetWork(
            [given] {
                return WithInput(given->file,
                                 [&given](std::wstring const & path) { return RunXmlTree(path, given->depth); });
            });
    xml.AddCommand("get", "Print an attribute's value")
        .AddText("FILE", given->file, "The file, \"-\" for standard input")
        .AddText("PATH", given->path, ABOUT_PATH)
        .AddText("ATTRIBUTE", given->attribute, "The attribute's name")
        .SetFooter(ABOUT_PATHS)
        .SetWork(
            [given]
            {
                return WithInput(given->file, [&given](std::wstring const & path)
                                 { return RunXmlGet(path, given->path, given->attribute); });
            });
}

void AddSet(Command & xml, GivenArguments const & given)
{
    Command set = xml.AddCommand("set", "Change or add an attribute");
    set.AddText("FILE", given->file, "The file, replaced unless there is -o; \"-\" for standard input and output")
        .AddText("PATH", given->path, ABOUT_PATH)
        .AddText("ATTRIBUTE", given->attribute, "The attribute's name")
        .AddText("VALUE", given->value, "The new value; behind \"--\" if it begins with a minus sign")
        .AddOption("-o,--output", "OUT", given->target, "Write here (\"-\": to standard output) and leave FILE alone")
        .AddFlag("--create", given->create, "Add the elements of PATH that are missing");
    AddEditing(set, given->edit).SetFooter(std::string(ABOUT_PATHS) + "\n\n" + ABOUT_EDITING);
    set.SetWork(
        [given]
        {
            Arguments const & a = *given;
            return WithFiles(a.file, a.target.empty() ? a.file : a.target,
                             [&a](std::wstring const & from, std::wstring const & to) {
                                 return RunXmlSet({from, a.path, a.attribute, a.value, to, a.create}, a.edit);
                             });
        });
}

void AddFormat(Command & xml, GivenArguments const & given)
{
    Command format = xml.AddCommand("format", "Write a file anew, indented by depth");
    format.AddText("IN", given->file, "The file to read, \"-\" for standard input")
        .AddText("OUT", given->target, "The file to write; may be the same; \"-\" for standard output");
    AddEditing(format, given->edit)
        .SetFooter(ABOUT_EDITING)
        .SetWork(
            [given]
            {
                return WithFiles(given->file, given->target,
                                 [&given](std::wstring const & from, std::wstring const & to)
                                 { return RunXmlFormat(from, to, given->edit); });
            });
}

void AddCheck(Command & xml, GivenArguments const & given)
{
    xml.AddCommand("check", "Read all XML files of folders and tell which are bad")
        .AddTexts("DIR", given->files, "The folders; a file stands for itself")
        .AddOption("--jobs", "N", given->check.jobs, 1, 64, "Worker threads (as many as processors)")
        .AddFlag("--bad", given->check.onlyBad, "Print bad files only")
        .AddOptions("--name", "PATTERN", given->check.names, "Read files of such names, as \"*.dae\"; may be repeated")
        .AddFlag("--stats", given->check.stats, "Tell time, processor and memory, too")
        .SetFooter(
            "Without --name, files are known by the names that XML files of tools have, such as .xml, .svg, .dae, "
            ".x3d,\n.xaml, .resx and .vcxproj; the others are counted. A bad file's line is FILE:LINE:COLUMN: and "
            "what is\nwrong there. Ctrl-C stops.")
        .SetWork(
            [given]
            {
                int const processors = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 64);
                CheckRequest request = given->check;
                request.folders = given->files;
                request.jobs = request.jobs ? request.jobs : processors;
                return RunXmlCheck(request);
            });
}

void Add(Command & program)
{
    auto const given = std::make_shared<Arguments>();
    Command xml = program.AddCommand("xml", "Read, change and write XML files");
    AddReading(xml, given);
    AddSet(xml, given);
    AddFormat(xml, given);
    AddCheck(xml, given);
}

} // namespace

CommandGroup const XML_COMMANDS = {OVERVIEW, Add};

} // namespace tool
