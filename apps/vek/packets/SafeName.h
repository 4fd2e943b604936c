#pragma once

#include <string_view>

namespace tool
{

/// Why a name from a file can't be that of a file below a folder of the user's: it could lead elsewhere, name a device
/// or a stream, or the system would change it. Null for one that is safe.
wchar_t const * WhyUnsafe(std::wstring_view name);

} // namespace tool
