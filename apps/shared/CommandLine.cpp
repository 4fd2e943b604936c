#include "CommandLine.h"

#include "Console.h"
#include "Utf8.h"

#include <CLI/CLI.hpp>

#include <new>

namespace tool
{

struct Command::Parser : CLI::App
{
    using App::App;

    Work work; // that of the command given
};

namespace
{

/// An option whose value, one text or several, is stored as wide text.
template <class Given, class Stored>
CLI::Option * Add(CLI::App * app, char const * names, char const * value, Stored & stored, char const * description)
{
    auto const store = [&stored](Given const & given) { stored = FromUtf8(given); };
    return app->add_option_function<Given>(names, store, description)->type_name(value);
}

} // namespace

Command::Command(char const * description)
    : m_parser(std::make_shared<Parser>(description, ToUtf8(PROGRAM_NAME))), m_app(m_parser.get())
{
}

Command Command::AddCommand(char const * name, char const * description)
{
    m_app->require_subcommand(1);
    return Command(m_parser, m_app->add_subcommand(name, description));
}

Command & Command::AddTexts(char const * name, std::vector<std::wstring> & texts, char const * description)
{
    Add<std::vector<std::string>>(m_app, name, "", texts, description)->required();
    return *this;
}

Command & Command::AddOptionalTexts(char const * name, std::vector<std::wstring> & texts, char const * description)
{
    Add<std::vector<std::string>>(m_app, name, "", texts, description);
    return *this;
}

Command & Command::AddOption(char const * names, char const * value, std::wstring & text, char const * description)
{
    Add<std::string>(m_app, names, value, text, description);
    return *this;
}

Command & Command::AddRequiredOption(char const * names, char const * value, std::wstring & text,
                                     char const * description)
{
    Add<std::string>(m_app, names, value, text, description)->required();
    return *this;
}

Command & Command::AddOption(char const * names, char const * value, Reader const & read, char const * description)
{
    auto const ignore = [](std::string const &) {}; // the check has read it
    m_app->add_option_function<std::string>(names, ignore, description)->type_name(value)->check(read);
    return *this;
}

template <class Number>
Command & Command::AddOption(char const * names, char const * value, Number & number,
                             std::type_identity_t<Number> least, std::type_identity_t<Number> most,
                             char const * description)
{
    m_app->add_option(names, number, description)->type_name(value)->check(CLI::Range(least, most).description(""));
    return *this;
}

template Command & Command::AddOption(char const *, char const *, int &, int, int, char const *);
template Command & Command::AddOption(char const *, char const *, std::size_t &, std::size_t, std::size_t,
                                      char const *);

Command & Command::AddFlag(char const * names, bool & flag, char const * description)
{
    m_app->add_flag(names, flag, description);
    return *this;
}

Command & Command::SetFooter(std::string const & text)
{
    m_app->footer(text);
    return *this;
}

Command & Command::SetWork(Work const & work)
{
    m_app->callback([&result = m_parser->work, work] { result = work; });
    return *this;
}

CommandLine::CommandLine(char const * description) : Command(description)
{
    m_parser->allow_windows_style_options(false); // "/dir/file" is a path, for the commands that are added later, too
    m_parser->set_version_flag("--version", m_parser->get_name() + " " VEK_VERSION);
}

std::optional<int> CommandLine::Parse(int count, wchar_t ** arguments)
{
    std::vector<std::string> reversed; // the parser takes them from the back
    for (int i = count - 1; i > 0; --i)
        reversed.push_back(ToUtf8KeepingAll(arguments[i]));
    try
    {
        m_parser->parse(reversed);
        return std::nullopt;
    }
    catch (CLI::ParseError const & error)
    {
        std::ostringstream out, err;
        bool const isError = m_parser->exit(error, out, err) != 0;
        Console::Out().Write(FromUtf8(out.str()));
        if (isError)
            Console::Err().Write(PROGRAM_NAME + (L": " + Printable(FromUtf8(error.what()))) + L"\nRun \"" +
                                 PROGRAM_NAME + L" --help\" for more.\n");
        return isError ? EXIT_USAGE : EXIT_DONE;
    }
}

int CommandLine::DoWork() const
{
    return m_parser->work();
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
