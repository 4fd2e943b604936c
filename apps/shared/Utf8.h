#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// Wide text as UTF-8, a surrogate without its partner as U+FFFD.
std::string ToUtf8(std::wstring_view text);

/// The same, but such a surrogate becomes three bytes of its own, which FromUtf8 takes back: a file name of any
/// characters survives the way through the command-line parser.
std::string ToUtf8KeepingAll(std::wstring_view text);

/// UTF-8 as wide text; bytes that are no UTF-8 become U+FFFD.
std::wstring FromUtf8(std::string_view text);
std::vector<std::wstring> FromUtf8(std::vector<std::string> const & texts);

inline bool IsHighSurrogate(wchar_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

inline bool IsLowSurrogate(wchar_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

/// The character of a surrogate pair.
inline unsigned int JoinSurrogates(wchar_t high, wchar_t low)
{
    return 0x10000U + ((static_cast<unsigned int>(high) & 0x3FFU) << 10) + (static_cast<unsigned int>(low) & 0x3FFU);
}

} // namespace tool
