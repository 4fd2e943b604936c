// Runs the programs that stand beside the test program, and gives what they print.
#pragma once

#include "support/Files.h"

#include <string>
#include <tuple>
#include <vector>

struct Outcome
{
    int code = -1; // of the process; -1 when it could not be run or hung
    std::string out;
    std::string err;
};

/// Runs a program that stands beside the test program.
Outcome RunBeside(std::wstring const & program, std::vector<std::wstring> const & arguments,
                  std::string const & input = {});

/// Runs vek.exe.
Outcome Vek(std::vector<std::wstring> const & arguments, std::string const & input = {});

/// Empties the folder in which programs are run, for a test's files; ends in a backslash.
std::wstring MakeFolder();

/// How many files a folder has.
int CountFiles(std::wstring const & folder);

/// A file that comes with the examples.
std::wstring ExampleFile(std::string const & name);
std::wstring SceneFile();
