#include "Commands.h"
#include "Console.h"
#include "StandardFiles.h"
#include "xml/XmlCheck.h"
#include "xml/XmlDiff.h"
#include "xml/XmlFormat.h"
#include "xml/XmlGet.h"
#include "xml/XmlSet.h"
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
  vek xml get FILE PATH [ATTRIBUTE]          an attribute's value, or an element's text
  vek xml set FILE PATH ATTRIBUTE VALUE      change or add an attribute, and no other byte
  vek xml remove FILE PATH [ATTRIBUTE]       take an attribute or an element out
  vek xml rename FILE PATH [ATTRIBUTE] NAME  give an attribute or an element another name
  vek xml format IN OUT [--indent N]         write a file anew, indented
  vek xml canon FILE                         the canonical form, in which two files can be compared
  vek xml diff FILE OTHER                    what differs, path by path
  vek xml check DIR... [--jobs N]            which XML files of folders are bad, and where
)";

constexpr char const * ABOUT_EDITING =
    R"(Everything else stays byte for byte: encoding, line ends, quotes, comments, references to entities. What stands in the
text of an entity can't be changed. The new file is written beside the old one, read back and compared, and only then
takes its place, with its attributes and permissions; a link stays one. After a failure nothing has changed, nor is a
file replaced that has changed meanwhile. Of several edits all are made or none, and all paths are those of the file as
it was.)";

constexpr char const * ABOUT_LISTS =
    R"(A list has a line for each edit: PATH, ATTRIBUTE and VALUE with tabs between them, in UTF-8.)";

constexpr char const * ABOUT_FORMAT =
    R"(Nothing is lost but what an option names. White space is laid out anew where nothing but elements, comments and
processing instructions stand in an element; text, what stands between it, and xml:space="preserve" are left alone. References
to entities that the file declares are written as what they stand for, and default values that it declares with their
elements. The encoding stays, but
where it lacks a character of an entity in a name, comment or such: then it becomes UTF-8, which is told.)";

constexpr char const * ABOUT_PATHS =
    R"(PATH leads from the root element, whose own name is not part of it, by element names separated by slashes; "*" is any
name. Brackets choose: "group[2]/mesh" has the second group, "mesh[@name='hull']" the mesh with that attribute. The
first element that the whole path leads to is meant. "/" or "" is the root itself. Names are found without regard to the
case of ASCII letters.)";

constexpr char const * ABOUT_DIFF =
    R"(What canonical forms don't tell does not count: the order of attributes, quotes, the encoding, CDATA sections, the document
type. A line begins with the path in FILE; with "-" for what only FILE has, with "+" for what only OTHER has. The exit
code is 1 when they differ.)";

constexpr char const * READ_FILE = "The file, \"-\" for standard input";
constexpr char const * EDITED_FILE = "The file, replaced unless there is -o; \"-\" for standard input and output";
constexpr char const * ABOUT_PATH = "The way from the root to the element, such as \"a/b\"; \"/\" for the root";

using Text = std::optional<std::wstring>;

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::vector<std::wstring> files;
    std::wstring file, target, path;
    Text element, attribute, value;
    std::vector<std::wstring> edits; // three texts each
    EditRequest edit;
    FormatOptions format;
    CheckRequest check{{}, {}, 0, false, false};
    std::size_t depth = std::numeric_limits<std::size_t>::max();
    bool dropsText = false;
    bool ignoresLayout = false;
};

using GivenArguments = std::shared_ptr<Arguments>;

int Misused(char const * command, std::wstring const & message)
{
    std::string const name(command);
    Console::Err().Write(L"vek: " + message + L"\nRun \"vek xml " + std::wstring(name.begin(), name.end()) +
                         L" --help\" for more.\n");
    return EXIT_USAGE;
}

void AddReading(Command & xml, GivenArguments const & given)
{
    xml.AddCommand("info", "Show what files hold and how fast they are read")
        .AddTexts("FILE", given->files, "The files, \"-\" for standard input")
        .SetWork([given] { return RunXmlInfo(given->files); });
    xml.AddCommand("tree", "Show a file's elements, a line each, values as they are stored")
        .AddText("FILE", given->file, READ_FILE)
        .AddOption("--depth", "N", given->depth, 1, 0x7FFFFFFF, "Levels to show")
        .SetWork(
            [given] {
                return WithInput(given->file,
                                 [&given](std::wstring const & path) { return RunXmlTree(path, given->depth); });
            });
    xml.AddCommand("get", "Print an attribute's value, or all text in an element")
        .AddText("FILE", given->file, READ_FILE)
        .AddText("PATH", given->path, ABOUT_PATH)
        .AddOptionalText("ATTRIBUTE", given->attribute, "The attribute's name")
        .SetFooter(ABOUT_PATHS)
        .SetWork(
            [given]
            {
                return WithInput(given->file, [&given](std::wstring const & path)
                                 { return RunXmlGet(path, given->path, given->attribute); });
            });
}

/// Makes the edits, and the one if there is one.
int Edit(Arguments const & given, XmlEdit const * edit)
{
    EditRequest request = given.edit;
    for (std::size_t i = 0; i + 2 < given.edits.size(); i += 3)
        request.edits.push_back({XmlEdit::Kind::Set, given.edits[i], given.edits[i + 1], given.edits[i + 2]});
    if (edit)
        request.edits.insert(request.edits.begin(), *edit);
    return WithFiles(given.file, given.target.empty() ? given.file : given.target,
                     [&request](std::wstring const & from, std::wstring const & to)
                     {
                         request.path = from;
                         request.target = to;
                         return RunXmlEdits(request);
                     });
}

int Set(Arguments const & given)
{
    if (given.dropsText)
        return Misused("set", L"--drop-text is gone: no text is lost any more");
    if (given.format.noDocumentType || given.format.indentation != USUAL_INDENTATION)
        return Misused("set",
                       L"--indent and --no-dtd are gone here, where nothing else changes: use \"vek xml format\"");
    if (given.element && !given.value)
        return Misused("set", given.attribute ? L"VALUE is required" : L"ATTRIBUTE is required");
    if (!given.element && given.edits.empty() && given.edit.list.empty())
        return Misused("set", L"PATH is required, or --at, or --list");
    if (given.file == L"-" && given.edit.list == L"-")
        return Misused("set", L"FILE and --list can't both be standard input");
    if (!given.element)
        return Edit(given, nullptr);
    XmlEdit const edit{XmlEdit::Kind::Set, *given.element, *given.attribute, *given.value};
    return Edit(given, &edit);
}

Command & AddEditing(Command & command, GivenArguments const & given, std::string const & more = {})
{
    return command
        .AddOption("-o,--output", "OUT", given->target, "Write here (\"-\": to standard output) and leave FILE alone")
        .AddFlag("--dry-run", given->edit.isDryRun, "Show the lines that would change, and change nothing")
        .SetFooter(std::string(ABOUT_PATHS) + more + "\n\n" + ABOUT_EDITING);
}

void AddSet(Command & xml, GivenArguments const & given)
{
    Command set = xml.AddCommand("set", "Change or add attributes, and no other byte");
    set.AddText("FILE", given->file, EDITED_FILE)
        .AddOptionalText("PATH", given->element, ABOUT_PATH)
        .AddOptionalText("ATTRIBUTE", given->attribute, "The attribute's name")
        .AddOptionalText("VALUE", given->value, "The new value; behind \"--\" if it begins with a minus sign")
        .AddGroups("--at", "PATH ATTRIBUTE VALUE", 3, given->edits, "One more edit; may be repeated")
        .AddOption("--list", "FILE", given->edit.list, "Edits out of a file; \"-\" for standard input")
        .AddFlag("--create", given->edit.creates, "Add the elements of PATH that are missing");
    AddEditing(set, given, std::string("\n\n") + ABOUT_LISTS)
        .AddFlag("--drop-text", given->dropsText, "Gone: no text is lost")
        .AddFlag("--no-dtd", given->format.noDocumentType, "Gone: use \"vek xml format\"")
        .AddOption("--indent", "N", given->format.indentation, 0, 100, "Gone: use \"vek xml format\"")
        .SetWork([given] { return Set(*given); });
}

void AddRemove(Command & xml, GivenArguments const & given)
{
    Command remove = xml.AddCommand("remove", "Take an attribute or an element out, and no other byte");
    remove.AddText("FILE", given->file, EDITED_FILE)
        .AddText("PATH", given->path, ABOUT_PATH)
        .AddOptionalText("ATTRIBUTE", given->attribute, "The attribute's name; without it the element goes");
    AddEditing(remove, given)
        .SetWork(
            [given]
            {
                XmlEdit const edit{XmlEdit::Kind::Remove, given->path, given->attribute.value_or(L""), {}};
                return Edit(*given, &edit);
            });
}

void AddRename(Command & xml, GivenArguments const & given)
{
    Command rename = xml.AddCommand("rename", "Give an attribute or an element another name");
    rename.AddText("FILE", given->file, EDITED_FILE)
        .AddText("PATH", given->path, ABOUT_PATH)
        .AddOptionalTexts("[ATTRIBUTE] NAME", given->files, "The attribute's name, for one, and the new name");
    AddEditing(rename, given)
        .SetWork(
            [given]
            {
                std::vector<std::wstring> const & names = given->files;
                if (names.empty() || names.size() > 2)
                    return Misused("rename", L"NAME is required, and nothing behind it");
                XmlEdit const edit{XmlEdit::Kind::Rename, given->path, names.size() == 2 ? names[0] : std::wstring(),
                                   names.back()};
                return Edit(*given, &edit);
            });
}

void AddFormat(Command & xml, GivenArguments const & given)
{
    xml.AddCommand("format", "Write a file anew, indented by depth")
        .AddText("IN", given->file, "The file to read, \"-\" for standard input")
        .AddText("OUT", given->target, "The file to write; may be the same; \"-\" for standard output")
        .AddOption("--indent", "N", given->format.indentation, 0, 100, "Blanks for each level of depth (3)")
        .AddFlag("--strip-comments", given->format.stripComments, "Leave comments out")
        .AddFlag("--strip-text", given->format.stripText, "Leave text outside CDATA sections out")
        .AddFlag("--no-dtd", given->format.noDocumentType, "Leave the document type out")
        .AddFlag("--drop-text", given->dropsText, "Gone: no text is lost; --strip-text leaves it out")
        .SetFooter(ABOUT_FORMAT)
        .SetWork(
            [given]
            {
                if (given->dropsText)
                    return Misused("format",
                                   L"--drop-text is gone: no text is lost any more; --strip-text leaves it out");
                return WithFiles(given->file, given->target,
                                 [&given](std::wstring const & from, std::wstring const & to)
                                 { return RunXmlFormat(from, to, given->format); });
            });
}

void AddComparing(Command & xml, GivenArguments const & given)
{
    xml.AddCommand("canon", "Print a file as Canonical XML 1.0, with its comments")
        .AddText("FILE", given->file, READ_FILE)
        .SetWork([given]
                 { return WithInput(given->file, [](std::wstring const & path) { return RunXmlCanon(path); }); });
    xml.AddCommand("diff", "Tell what differs in two files, path by path")
        .AddText("FILE", given->file, "A file, \"-\" for standard input")
        .AddText("OTHER", given->target, "The other one")
        .AddFlag("--ignore-layout", given->ignoresLayout, "White space between elements doesn't count")
        .SetFooter(ABOUT_DIFF)
        .SetWork(
            [given]
            {
                return WithInput(given->file, [&given](std::wstring const & path)
                                 { return RunXmlDiff(path, given->target, given->ignoresLayout); });
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
    AddRemove(xml, given);
    AddRename(xml, given);
    AddFormat(xml, given);
    AddComparing(xml, given);
    AddCheck(xml, given);
}

} // namespace

CommandGroup const XML_COMMANDS = {OVERVIEW, Add};

} // namespace tool
