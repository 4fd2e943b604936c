#pragma once

#include <CLI/CLI.hpp>

#include <optional>

namespace tool
{

// What each program's Main.cpp defines; the rest of wmain stands here.

/// The program's name, as its messages give it.
extern wchar_t const * const PROGRAM_NAME;

/// The program itself: parses the command line and does what it asks for. Returns an exit code.
int Run(int count, wchar_t ** arguments);

/// The rules of a program's command line, the program's name and version among them.
class CommandLine : public CLI::App
{
public:
    explicit CommandLine(char const * description);

    /// Nothing when the program has something to do; otherwise its exit code: the help or the version is printed, or
    /// the user told what is wrong.
    std::optional<int> Parse(int count, wchar_t ** arguments);
};

} // namespace tool
