#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tool
{

/// `vek xml info`: what each file holds and how fast it was read. Returns an exit code, as all commands.
int RunXmlInfo(std::vector<std::wstring> const & paths);

/// `vek xml tree`: the elements, a line each, down to so many levels.
int RunXmlTree(std::wstring const & path, std::size_t depth);

} // namespace tool
