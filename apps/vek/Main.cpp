// vek: VekLib's command-line tool. Uses the library through its public headers alone.

#include "Console.h"
#include "DataCommands.h"
#include "LexCommands.h"
#include "LogToStderr.h"
#include "PacketCommands.h"
#include "Utf8.h"
#include "XmlCommands.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <new>

namespace tool
{

wchar_t const * const PROGRAM_NAME = L"vek";

namespace
{

constexpr char const * OVERVIEW =
    R"(Commands:
  vek xml info FILE...                       what files hold, and how fast they are read
  vek xml tree FILE [--depth N]              the elements, a line each
  vek xml get FILE PATH ATTRIBUTE            an attribute's value
  vek xml set FILE PATH ATTRIBUTE VALUE      change or add an attribute, in place or with -o OUT
  vek xml format IN OUT [--indent N]         write a file anew, indented
  vek xml check DIR... [--jobs N]            which XML files of folders are bad, and where
  vek data dump FILE                         the entries of a typed data file, a line each
  vek data pack XML OUT                      make a typed data file of an XML file
  vek data unpack FILE XML                   make an XML file of a typed data file
  vek packets list FILE                      the packets of a packet file
  vek packets extract FILE [PATH...] -o DIR  write them as files and folders
  vek packets pack DIR FILE                  make a packet file of a folder
  vek lex FILE [--lang L] [--count] [--html OUT]   the tokens of a text file

"vek xml set --help" and the like tell more. Exit codes: 0 done, 1 failed, 2 wrong usage.)";

/// Parses the command line. EXIT_DONE without a command: the help or version was asked for and is printed.
int ParseArguments(int count, wchar_t ** arguments, Command & command)
{
    CLI::App app("VekLib's command-line tool", "vek");
    app.allow_windows_style_options(false); // "/dir/file" is a path
    app.set_version_flag("--version", "vek " VEK_VERSION);
    app.footer(OVERVIEW);
    app.require_subcommand(1);
    AddXmlCommands(app, command);
    AddDataCommands(app, command);
    AddPacketCommands(app, command);
    AddLexCommand(app, command);

    std::vector<std::string> texts; // the parser takes them from the back
    for (int i = 1; i < count; ++i)
        texts.push_back(ToUtf8KeepingAll(arguments[i]));
    std::reverse(texts.begin(), texts.end());
    try
    {
        app.parse(texts);
        return EXIT_DONE;
    }
    catch (CLI::ParseError const & error)
    {
        std::ostringstream out, err;
        bool const isError = app.exit(error, out, err) != 0;
        Console::Out().Write(FromUtf8(out.str()));
        if (isError)
            Console::Err().Write(L"vek: " + Printable(FromUtf8(error.what())) + L"\nRun \"vek --help\" for more.\n");
        return isError ? EXIT_USAGE : EXIT_DONE;
    }
}

int Run(int count, wchar_t ** arguments)
{
    Command command;
    int const parsed = ParseArguments(count, arguments, command);
    if (parsed != EXIT_DONE || !command)
        return parsed;
    Library const library;
    if (!library.Started())
        return Fail(L"VekLib", L"can't be started");
    return command();
}

} // namespace

} // namespace tool

int wmain(int count, wchar_t ** arguments)
{
    int code = tool::EXIT_FAILED;
    try
    {
        code = tool::Run(count, arguments);
    }
    catch (std::bad_alloc const &)
    {
        tool::Console::Err().Write(L"vek: out of memory\n");
    }
    if (!tool::Console::Out().Flush())
        code = tool::EXIT_FAILED; // whoever reads this output hasn't got all of it
    return code;
}
