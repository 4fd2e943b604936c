#pragma once

#include <optional>

namespace CLI
{
class App;
}

namespace tool
{

// What each program's Main.cpp defines; the rest of wmain stands here.

/// The program's name, as its messages give it.
extern wchar_t const * const PROGRAM_NAME;

/// The program itself: parses the command line and does what it asks for. Returns an exit code.
int Run(int count, wchar_t ** arguments);

/// Parses a command line by the rules in app. Nothing when the program has something to do; otherwise its exit code:
/// the help or the version is printed, or the user told what is wrong.
std::optional<int> ParseCommandLine(CLI::App & app, int count, wchar_t ** arguments);

} // namespace tool
