#include "Commands.h"
#include "Utf8.h"
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

/// The arguments of one command, as the parser stores them.
struct Arguments
{
    std::vector<std::string> files;
    std::string file, target, path, attribute, value;
    bool create = false;
    bool onlyBad = false;
    int jobs = 0;
    std::size_t depth = std::numeric_limits<std::size_t>::max();
    EditOptions edit;
};

void AddEditing(CLI::App * app, Arguments & arguments)
{
    app->add_option("--indent", arguments.edit.save.indentation, "Blanks for each level of depth (3)")
        ->type_name("N")
        ->check(CLI::Range(0, 100).description(""));
    app->add_flag("--no-dtd", arguments.edit.save.noDocumentType, "Leave the document type out");
    app->add_flag("--drop-text", arguments.edit.dropText, "Replace a file even if text is lost with it");
}

void AddInfo(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const info = xml->add_subcommand("info", "Show what files hold and how fast they are read");
    info->add_option("FILE", arguments->files, "The files")->required()->type_name("");
    RunWith(info, arguments, command, [](Arguments const & given) { return RunXmlInfo(FromUtf8(given.files)); });
}

void AddTree(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const tree =
        xml->add_subcommand("tree", "Show a file's elements, a line each, values as they are stored");
    AddText(tree, "FILE", arguments->file, "The file");
    tree->add_option("--depth", arguments->depth, "Levels to show")
        ->type_name("N")
        ->check(CLI::Range(1U, 0x7FFFFFFFU).description(""));
    RunWith(tree, arguments, command,
            [](Arguments const & given) { return RunXmlTree(FromUtf8(given.file), given.depth); });
}

void AddGet(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const get = xml->add_subcommand("get", "Print an attribute's value");
    AddText(get, "FILE", arguments->file, "The file");
    AddText(get, "PATH", arguments->path, "The way from the root to the element, such as \"a/b\"; \"/\" for the root");
    AddText(get, "ATTRIBUTE", arguments->attribute, "The attribute's name");
    get->footer(ABOUT_PATHS);
    RunWith(get, arguments, command,
            [](Arguments const & given)
            { return RunXmlGet(FromUtf8(given.file), FromUtf8(given.path), FromUtf8(given.attribute)); });
}

void AddSet(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const set = xml->add_subcommand("set", "Change or add an attribute");
    AddText(set, "FILE", arguments->file, "The file, replaced unless there is -o");
    AddText(set, "PATH", arguments->path, "The way from the root to the element, such as \"a/b\"; \"/\" for the root");
    AddText(set, "ATTRIBUTE", arguments->attribute, "The attribute's name");
    AddText(set, "VALUE", arguments->value, "The new value; behind \"--\" if it begins with a minus sign");
    set->add_option("-o,--output", arguments->target, "Write here and leave FILE alone")->type_name("OUT");
    set->add_flag("--create", arguments->create, "Add the elements of PATH that are missing");
    AddEditing(set, *arguments);
    set->footer(std::string(ABOUT_PATHS) + "\n\n" + ABOUT_EDITING);
    RunWith(set, arguments, command,
            [](Arguments const & given)
            {
                SetRequest const request{FromUtf8(given.file),  FromUtf8(given.path),   FromUtf8(given.attribute),
                                         FromUtf8(given.value), FromUtf8(given.target), given.create};
                return RunXmlSet(request, given.edit);
            });
}

void AddFormat(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const format = xml->add_subcommand("format", "Write a file anew, indented by depth");
    AddText(format, "IN", arguments->file, "The file to read");
    AddText(format, "OUT", arguments->target, "The file to write; may be the same");
    AddEditing(format, *arguments);
    format->footer(ABOUT_EDITING);
    RunWith(format, arguments, command,
            [](Arguments const & given)
            { return RunXmlFormat(FromUtf8(given.file), FromUtf8(given.target), given.edit); });
}

void AddCheck(CLI::App * xml, std::shared_ptr<Arguments> const & arguments, Command & command)
{
    CLI::App * const check = xml->add_subcommand("check", "Read all XML files of folders and tell which are bad");
    check->add_option("DIR", arguments->files, "The folders; a file stands for itself")->required()->type_name("");
    check->add_option("--jobs", arguments->jobs, "Worker threads (as many as processors)")
        ->type_name("N")
        ->check(CLI::Range(1, 64).description(""));
    check->add_flag("--bad", arguments->onlyBad, "Print bad files only");
    check->footer("Files are known by their names: .xml, .xsd, .xsl, .xslt, .svg, .rng, .xhtml and .ui. Ctrl-C stops.");
    RunWith(check, arguments, command,
            [](Arguments const & given)
            {
                int const processors = static_cast<int>(std::thread::hardware_concurrency());
                return RunXmlCheck(FromUtf8(given.files), given.jobs ? given.jobs : std::clamp(processors, 1, 64),
                                   given.onlyBad);
            });
}

void Add(CLI::App & app, Command & command)
{
    auto const arguments = std::make_shared<Arguments>();
    CLI::App * const xml = app.add_subcommand("xml", "Read, change and write XML files");
    xml->require_subcommand(1);
    AddInfo(xml, arguments, command);
    AddTree(xml, arguments, command);
    AddGet(xml, arguments, command);
    AddSet(xml, arguments, command);
    AddFormat(xml, arguments, command);
    AddCheck(xml, arguments, command);
}

} // namespace

CommandGroup const XML_COMMANDS = {OVERVIEW, Add};

} // namespace tool
