#include "SwitchLexer.h"

#include <cstring>

namespace bench
{

namespace
{

bool IsWord(wchar_t unit)
{
    return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z') || unit == L'_';
}

bool IsDigit(wchar_t unit)
{
    return unit >= L'0' && unit <= L'9';
}

/// The characters of the operator at the place, which ends in a zero.
int OperatorLength(wchar_t const * at)
{
    wchar_t const next = at[1];
    switch (*at)
    {
    case L'<':
    case L'>':
        if (next == *at)
            return at[2] == L'=' ? 3 : 2;
        return next == L'=' ? 2 : 1;
    case L'&':
    case L'|':
    case L'+':
        return next == *at || next == L'=' ? 2 : 1;
    case L'=':
    case L'!':
    case L'*':
    case L'/':
    case L'%':
    case L'^':
        return next == L'=' ? 2 : 1;
    case L':':
    case L'#':
        return next == *at ? 2 : 1;
    case L'.':
        return next == L'.' && at[2] == L'.' ? 3 : 1;
    default:
        return 1;
    }
}

} // namespace

SwitchLexer::SwitchLexer(std::vector<std::wstring> const & keywords)
{
    for (std::wstring const & keyword : keywords)
        m_keywords[keyword[0] & 127].push_back(keyword);
}

bool SwitchLexer::IsKeyword(wchar_t const * word, std::size_t length) const
{
    for (std::wstring const & keyword : m_keywords[*word & 127])
        if (keyword.size() == length && std::memcmp(keyword.data(), word, length * sizeof(wchar_t)) == 0)
            return true;
    return false;
}

TokenCounts SwitchLexer::Run(std::wstring_view text) const
{
    TokenCounts counts;
    wchar_t const * at = text.data();
    wchar_t const * const end = at + text.size(); // a zero
    int line = 0;
    while (at != end)
    {
        wchar_t const unit = *at;
        if (unit == L' ' || unit == L'\t' || unit == L'\n')
        {
            line += unit == L'\n';
            ++at;
            continue;
        }
        if (unit == L'/' && at[1] == L'/')
        {
            while (at != end && *at != L'\n')
                ++at;
            continue;
        }
        if (unit == L'/' && at[1] == L'*')
        {
            for (at += 2; at != end && (at[0] != L'*' || at[1] != L'/'); ++at)
                line += *at == L'\n';
            at += at != end ? 2 : 0;
            continue;
        }
        counts.lines += line;
        if (IsWord(unit))
        {
            wchar_t const * const word = at;
            while (IsWord(*at) || IsDigit(*at))
                ++at;
            ++(IsKeyword(word, static_cast<std::size_t>(at - word)) ? counts.keywords : counts.identifiers);
        }
        else if (IsDigit(unit))
        {
            bool isFloat = false;
            unsigned int value = 0; // worked out, as a lexer does
            for (; IsDigit(*at) || (*at == L'.' && !isFloat); ++at)
            {
                isFloat |= *at == L'.';
                value = value * 10 + (*at - L'0');
            }
            ++(isFloat ? counts.floats : counts.integers);
            counts.lines += value == 0xFFFFFFFFU;
        }
        else if (unit == L'"')
        {
            for (++at; at != end && *at != L'"'; ++at)
                line += *at == L'\n';
            at += at != end;
            ++counts.strings;
        }
        else
        {
            at += OperatorLength(at);
            ++counts.operators;
        }
    }
    return counts;
}

} // namespace bench
