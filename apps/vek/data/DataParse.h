#pragma once

#include "VekLib.h"

#include <string>
#include <string_view>

namespace tool
{

/// Takes escapes back: "\\", "\xXX", "\uXXXX". False for anything else behind a backslash.
bool UnescapeText(std::wstring_view text, std::wstring & plain);

/// Gives the writer an entry of the type from the value's text; false when the text is no value of it.
bool PackValue(CVekTypedDataWriter & writer, wchar_t const * name, VEK_DATATYPE type, std::wstring_view text);

} // namespace tool
