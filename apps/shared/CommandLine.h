#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace CLI
{
class App; // the parser's own header takes seconds to compile: CommandLine.cpp alone includes it
}

namespace tool
{

// What each program's Main.cpp defines; WideMain.cpp has the rest.

/// The program's name, as its messages give it.
extern wchar_t const * const PROGRAM_NAME;

/// The program itself: parses the command line and does what it asks for. Returns an exit code.
int Run(int count, wchar_t ** arguments);

/// What may stand behind a program's name, or behind that of a command below it. Arguments have to be given in the
/// order in which they are added, options anywhere; of the latter, names are such as "-o,--output", and the help has
/// the value's as well. What they are stored in has to be there until the command line is parsed.
class Command
{
public:
    /// What the command does, once the whole command line was all right. Returns an exit code.
    using Work = std::function<int()>;
    /// Takes a value, as UTF-8. Returns what is wrong with it, or an empty text.
    using Reader = std::function<std::string(std::string const & text)>;

    /// A command of its own below this one; one of them has to be given.
    Command AddCommand(char const * name, char const * description);

    Command & AddText(char const * name, std::wstring & text, char const * description)
    {
        return AddRequiredOption(name, "", text, description);
    }
    /// All further arguments, at least one.
    Command & AddTexts(char const * name, std::vector<std::wstring> & texts, char const * description);
    Command & AddOptionalText(char const * name, std::optional<std::wstring> & text, char const * description);
    Command & AddOptionalTexts(char const * name, std::vector<std::wstring> & texts, char const * description);

    Command & AddOption(char const * names, char const * value, std::wstring & text, char const * description);
    Command & AddRequiredOption(char const * names, char const * value, std::wstring & text, char const * description);
    Command & AddOption(char const * names, char const * value, Reader const & read, char const * description);
    /// A whole number, an int or a std::size_t.
    template <class Number>
    Command & AddOption(char const * names, char const * value, Number & number, std::type_identity_t<Number> least,
                        std::type_identity_t<Number> most, char const * description);
    /// An option that may be given several times, a value each.
    Command & AddOptions(char const * names, char const * value, std::vector<std::wstring> & texts,
                         char const * description);
    /// Likewise, with so many values each time, which are stored in one row.
    Command & AddGroups(char const * names, char const * values, int size, std::vector<std::wstring> & texts,
                        char const * description);
    Command & AddFlag(char const * names, bool & flag, char const * description);

    /// What the help says behind the options.
    Command & SetFooter(std::string const & text);
    Command & SetWork(Work const & work);

protected:
    struct Parser;

    explicit Command(char const * description);

    std::shared_ptr<Parser> m_parser;

private:
    Command(std::shared_ptr<Parser> const & parser, CLI::App * app) : m_parser(parser), m_app(app) {}

    CLI::App * m_app;
};

/// A program's command line, the options for its help and its version among the rest.
class CommandLine : public Command
{
public:
    explicit CommandLine(char const * description);

    /// Nothing when the program has something to do; otherwise its exit code: the help or the version is printed, or
    /// the user told what is wrong.
    std::optional<int> Parse(int count, wchar_t ** arguments);
    /// Does what the command given is there for. Returns an exit code.
    int DoWork() const;
};

} // namespace tool
