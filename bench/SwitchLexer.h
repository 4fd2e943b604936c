#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bench
{

/// Counts of tokens by kind.
struct TokenCounts
{
    int keywords = 0;
    int operators = 0;
    int identifiers = 0;
    int integers = 0;
    int floats = 0;
    int strings = 0;
    long long lines = 0; // the sum over all tokens, so that counting lines is part of the work

    bool operator==(TokenCounts const &) const = default;
    int Total() const { return keywords + operators + identifiers + integers + floats + strings; }
};

/// What a lexer written for one language looks like: its operators, comments and numbers are a switch, its keywords
/// are lists by first letter.
class SwitchLexer
{
public:
    explicit SwitchLexer(std::vector<std::wstring> const & keywords);

    TokenCounts Run(std::wstring_view text) const;

private:
    bool IsKeyword(wchar_t const * word, std::size_t length) const;

    std::array<std::vector<std::wstring>, 128> m_keywords;
};

} // namespace bench
