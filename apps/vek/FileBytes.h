#pragma once

#include <string>
#include <string_view>

namespace tool
{

/// All of a file. False after telling the user why not; 2 GB are too many.
bool ReadBytes(std::wstring const & path, std::string & bytes);

/// Replaces a file by a new one of these bytes, which is read back before it takes the place, and only if the file
/// still has the old bytes, where those are given. False, with nothing changed, after telling the user why.
bool ReplaceBytes(std::wstring const & path, std::string_view bytes, std::string const * old);

} // namespace tool
