#pragma once

#include <optional>
#include <string>

namespace tool
{

/// `vek xml get`: prints an attribute's value, or, without one, all text in the element, as it is; only a console gets
/// control characters escaped. Returns an exit code, as all commands.
int RunXmlGet(std::wstring const & path, std::wstring const & elementPath,
              std::optional<std::wstring> const & attribute);

} // namespace tool
