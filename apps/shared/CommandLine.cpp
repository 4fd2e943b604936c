#include "CommandLine.h"

#include "Console.h"
#include "Utf8.h"

#include <new>

namespace tool
{

CommandLine::CommandLine(char const * description) : CLI::App(description, ToUtf8(PROGRAM_NAME))
{
    allow_windows_style_options(false); // "/dir/file" is a path, for the commands that are added later, too
    set_version_flag("--version", get_name() + " " VEK_VERSION);
}

std::optional<int> CommandLine::Parse(int count, wchar_t ** arguments)
{
    std::vector<std::string> reversed; // the parser takes them from the back
    for (int i = count - 1; i > 0; --i)
        reversed.push_back(ToUtf8KeepingAll(arguments[i]));
    try
    {
        parse(reversed);
        return std::nullopt;
    }
    catch (CLI::ParseError const & error)
    {
        std::ostringstream out, err;
        bool const isError = exit(error, out, err) != 0;
        Console::Out().Write(FromUtf8(out.str()));
        if (isError)
            Console::Err().Write(PROGRAM_NAME + (L": " + Printable(FromUtf8(error.what()))) + L"\nRun \"" +
                                 PROGRAM_NAME + L" --help\" for more.\n");
        return isError ? EXIT_USAGE : EXIT_DONE;
    }
}

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
        tool::Console::Err().Write(std::wstring(tool::PROGRAM_NAME) + L": out of memory\n");
    }
    if (!tool::Console::Out().Flush())
        code = tool::EXIT_FAILED; // whoever reads this output hasn't got all of it
    return code;
}
