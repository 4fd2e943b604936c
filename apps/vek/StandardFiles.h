#pragma once

#include <functional>
#include <string>

namespace tool
{

/// Calls the work with the path, or, for "-", with a file that holds what stands on standard input. Returns the work's
/// exit code, or that of a failure that the user was told of.
int WithInput(std::wstring const & given, std::function<int(std::wstring const & path)> const & work);

/// Calls the work with the path, or, for "-", with that of a file which is sent to standard output if all was done.
int WithOutput(std::wstring const & given, std::function<int(std::wstring const & path)> const & work);

/// Both at once.
int WithFiles(std::wstring const & from, std::wstring const & to,
              std::function<int(std::wstring const & from, std::wstring const & to)> const & work);

} // namespace tool
