#include "CommandLine.h"

#include "Console.h"
#include "Utf8.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <numeric>
#include <utility>

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

/// How many characters have to be put in, left out or replaced to make one text of the other.
std::size_t Distance(std::string const & a, std::string const & b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j)
        {
            std::size_t const replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

/// "unknown KIND "WORD"", with the nearest one of those that are known if there is one.
std::string Unknown(char const * kind, std::string const & word, std::vector<std::string> const & known)
{
    constexpr std::size_t LONGEST = 64;
    std::string message = std::string("unknown ") + kind + " \"" + word.substr(0, LONGEST) + "\"";
    std::size_t nearest = word.size() > LONGEST ? 0 : word.size() < 5 ? 3 : 4; // as far as this is near
    std::string const * best = nullptr;
    for (std::string const & name : known)
    {
        std::size_t const distance = Distance(word, name);
        if (distance < nearest && distance < name.size())
        {
            nearest = distance;
            best = &name;
        }
    }
    return best ? message + "; did you mean \"" + *best + "\"?" : message;
}

struct Complaint
{
    std::string message;
    std::string command; // whose help tells more
};

/// Says more of what is wrong with a command line than the parser does: which word it doesn't know.
Complaint Complain(CLI::App * app, std::vector<std::string> const & given, std::string const & message)
{
    Complaint complaint{message, app->get_name()};
    for (std::string const & word : given)
    {
        if (word == "--")
            break;
        std::string const name = word.substr(0, word.find('='));
        std::vector<std::string> known;
        if (word.starts_with("--"))
        {
            for (CLI::App * at = app; at; at = at->get_parent())
                for (CLI::Option const * const option : at->get_options())
                    for (std::string const & longName : option->get_lnames())
                        known.push_back("--" + longName);
            if (std::find(known.begin(), known.end(), name) == known.end())
                complaint.message = Unknown("option", name, known);
        }
        else if (!word.starts_with("-"))
        {
            for (CLI::App const * const command : app->get_subcommands(nullptr))
                known.push_back(command->get_name());
            if (known.empty())
                continue; // an argument
            if (std::find(known.begin(), known.end(), word) == known.end())
                return {Unknown("command", word, known), complaint.command};
            app = app->get_subcommand(word);
            complaint.command += " " + word;
        }
    }
    std::string names;
    for (CLI::App const * const command : app->get_subcommands(nullptr))
        names += (names.empty() ? "" : ", ") + command->get_name();
    if (!names.empty() && complaint.message == message)
        complaint.message = "\"" + complaint.command + "\" wants a command: " + names;
    return complaint;
}

} // namespace

Command::Command(char const * description)
    : m_parser(std::make_shared<Parser>(description, ToUtf8(PROGRAM_NAME))), m_app(m_parser.get())
{
}

Command Command::AddCommand(char const * name, char const * description)
{
    m_app->require_subcommand(1);
    return Command(m_parser, m_app->add_subcommand(name, description)->fallthrough());
}

Command & Command::AddTexts(char const * name, std::vector<std::wstring> & texts, char const * description)
{
    Add<std::vector<std::string>>(m_app, name, "", texts, description)->required();
    return *this;
}

Command & Command::AddOptionalText(char const * name, std::optional<std::wstring> & text, char const * description)
{
    auto const store = [&text](std::string const & given) { text = FromUtf8(given); };
    m_app->add_option_function<std::string>(name, store, description)->type_name("");
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

Command & Command::AddOptions(char const * names, char const * value, std::vector<std::wstring> & texts,
                              char const * description)
{
    Add<std::vector<std::string>>(m_app, names, value, texts, description)->allow_extra_args(false);
    return *this;
}

Command & Command::AddGroups(char const * names, char const * values, int size, std::vector<std::wstring> & texts,
                             char const * description)
{
    Add<std::vector<std::string>>(m_app, names, values, texts, description)
        ->type_size(size)
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args(false);
    return *this;
}

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
        m_parser->parse(std::vector<std::string>(reversed));
        return std::nullopt;
    }
    catch (CLI::ParseError const & error)
    {
        std::ostringstream out, err;
        bool const isError = m_parser->exit(error, out, err) != 0;
        Console::Out().Write(FromUtf8(out.str()));
        if (isError)
        {
            std::vector<std::string> const given(reversed.rbegin(), reversed.rend());
            Complaint const complaint = Complain(m_parser.get(), given, error.what());
            Console::Err().Write(PROGRAM_NAME + (L": " + Printable(FromUtf8(complaint.message))) + L"\nRun \"" +
                                 FromUtf8(complaint.command) + L" --help\" for more.\n");
        }
        return isError ? EXIT_USAGE : EXIT_DONE;
    }
}

int CommandLine::DoWork() const
{
    return m_parser->work();
}

} // namespace tool
