#pragma once

#include "VekLib.h"

#include <string>
#include <string_view>

namespace tool
{

/// The name of a type in XML and on the screen; empty for a number that is no type.
std::wstring_view TypeName(VEK_DATATYPE type);

/// The type of that name, or VEK_DT_UNKNOWN.
VEK_DATATYPE TypeOf(std::wstring_view name);

/// A value as text from which PackValue (DataParse.h) makes the same value again: numbers in full, several separated by
/// ", ", NaN and infinite ones by their bits ("0x7FC00000"), buffers in hexadecimal digits, texts as EscapeText gives
/// them. Of a buffer that is longer than the limit only the first bytes. Empty for a GUID, whose value no file holds.
std::wstring ValueText(VEK_VARIANT const & value, std::size_t bufferLimit = std::wstring_view::npos);

/// A text in which everything that XML can't hold, or the library's way through it would change, is "\uXXXX" for a
/// UTF-16 unit, and a backslash is doubled.
std::wstring EscapeText(std::wstring_view text);

} // namespace tool
