#pragma once

#include <string>

namespace tool
{

/// `vek xml canon`: prints the canonical form.
int RunXmlCanon(std::wstring const & path);

/// `vek xml diff`: prints a line for each difference, by its path in the files. Ends with 1 when there is one. Without
/// layout, white space counts only where an element holds text.
int RunXmlDiff(std::wstring const & first, std::wstring const & second, bool ignoresLayout);

} // namespace tool
