#pragma once

#include <string>

namespace tool
{

/// Reads a text file: UTF-16 with a byte order mark, otherwise UTF-8, in which bytes that are none become U+FFFD. False
/// after telling the user why.
bool ReadTextFile(std::wstring const & path, std::wstring & text);

/// Writes a whole file; false after telling the user why.
bool WriteWholeFile(std::wstring const & path, std::string const & bytes);

} // namespace tool
