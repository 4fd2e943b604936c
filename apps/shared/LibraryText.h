#pragma once

#include "VekText.h"

#include "Console.h"

#include <string>
#include <string_view>

namespace tool
{

inline std::wstring_view View(CVekString<wchar_t> const & text)
{
    return std::wstring_view(text, static_cast<std::size_t>(text.GetLength()));
}

/// A name from a file in messages: printable, and cut when it is long.
inline std::wstring PrintableName(CVekString<wchar_t> const & name)
{
    return Printable(View(name), 200);
}

} // namespace tool
