#pragma once

#include "VekXML.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// What every reader takes for a line break in an attribute's value. The library writes "&lt;EOL&gt;" for one, which is
/// the text "<EOL>" for all others.
constexpr std::wstring_view LINE_BREAK = L"&#10;";
constexpr std::wstring_view LIBRARY_LINE_BREAK = L"&lt;EOL&gt;";

/// The line breaks in the attributes of a file, in its order: true for a real one, false for the text "<EOL>". A
/// document doesn't tell one from the other.
using LineBreaks = std::vector<bool>;

/// Finds them in the units of a file's attribute values.
class LineBreakScanner
{
public:
    void BeginValue() { m_matched = 0; }
    void Take(unsigned int unit);
    LineBreaks const & Found() const { return m_found; }

private:
    void TakeCharacter(unsigned int character);

    LineBreaks m_found;
    std::string m_reference; // from "&" on, while one is being read
    std::size_t m_matched = 0;
};

/// Stores each line break of a document that was just read so that every reader takes it for one.
void RestoreLineBreaks(IVekXMLElement * root, LineBreaks const & ofFile);

/// A value as it is stored: markup escaped, line breaks as every reader takes them.
std::wstring EscapeValue(std::wstring_view value);

} // namespace tool
