#pragma once

#include "../SwitchLexer.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace bench
{

/// A lexer by hand that works from tables as the library's does: a class for each character, operators by their first
/// character, keywords by their first character and length. It reports nothing, it counts.
class TableLexer
{
public:
    TableLexer(std::vector<std::wstring> const & keywords, std::vector<std::wstring> const & operators);

    TokenCounts Run(std::wstring_view text) const;

private:
    struct Scan;

    bool IsKeyword(wchar_t const * word, std::size_t length) const;
    std::size_t OperatorLength(wchar_t const * at) const;

    std::array<std::vector<std::wstring>, 128> m_keywords;  // by first character
    std::array<unsigned int, 128> m_lengths = {};           // theirs, a bit each
    std::array<std::vector<std::wstring>, 128> m_operators; // those of several characters, longest first
};

} // namespace bench
