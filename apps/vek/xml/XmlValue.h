#pragma once

#include <string>
#include <string_view>

namespace tool
{

/// An attribute's value out of the form in which an element stores it: its references are read, unknown ones stay.
std::wstring ReadValue(std::wstring_view stored);

/// A value in the form in which an element stores it.
std::wstring StoreValue(std::wstring_view value);

/// A value as it stands in a file between such quotes.
std::wstring WriteValue(std::wstring_view value, wchar_t quote);

/// Whether XML has a place for every character.
bool IsXmlText(std::wstring_view text);

/// Whether the text can be a name, as far as its ASCII characters tell; a parser knows of the others.
bool IsXmlName(std::wstring_view name);

} // namespace tool
