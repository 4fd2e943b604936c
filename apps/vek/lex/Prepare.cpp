#include "lex/Prepare.h"

#include "VekText.h"

#include <algorithm>
#include <limits>

namespace tool
{

namespace
{

// What stands for a minus sign, which begins a number for the lexer whatever follows. Its own use is private, so that a
// text's own one may become its neighbour.
constexpr wchar_t MINUS = L'\xE000';
constexpr wchar_t NEIGHBOUR = L'\xE001';

bool IsDigit(wchar_t unit)
{
    return unit >= L'0' && unit <= L'9';
}

bool IsWord(wchar_t unit)
{
    return IsDigit(unit) || unit == L'_' || (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
}

/// Takes what is like it off the front of a text.
class Taker
{
public:
    explicit Taker(std::wstring_view text) : m_text(text) {}

    std::size_t Taken() const { return m_at; }
    wchar_t Next() const { return m_at < m_text.size() ? m_text[m_at] : L'\0'; }
    bool Take(std::wstring_view oneOf)
    {
        bool const isThere = m_at < m_text.size() && oneOf.find(m_text[m_at]) != std::wstring_view::npos;
        m_at += isThere ? 1 : 0;
        return isThere;
    }
    std::size_t TakeAll(std::wstring_view oneOf)
    {
        std::size_t const begin = m_at;
        // A quote may stand between two digits.
        while (Take(oneOf) || (m_at > begin && Next() == L'\'' && m_at + 1 < m_text.size() &&
                               oneOf.find(m_text[m_at + 1]) != std::wstring_view::npos && Take(L"'")))
            ;
        return m_at - begin;
    }

private:
    std::wstring_view m_text;
    std::size_t m_at = 0;
};

constexpr std::wstring_view DECIMAL = L"0123456789";
constexpr std::wstring_view HEXADECIMAL = L"0123456789abcdefABCDEF";

struct Number
{
    std::size_t length = 0; // 0 for none
    bool isWhole = true;
    unsigned int base = 10;
    std::size_t prefix = 0; // of the length
};

/// The number that a text begins with, in the ways of C, C++ and the shading languages.
Number FindNumber(std::wstring_view text)
{
    Taker taker(text);
    Number number;
    if (taker.Next() == L'0')
    {
        wchar_t const second = text.size() > 1 ? text[1] : L'\0';
        number.base = second == L'x' || second == L'X' ? 16 : second == L'b' || second == L'B' ? 2 : 8;
        if (number.base != 8 && taker.Take(L"0") && taker.Take(L"xXbB"))
            number.prefix = taker.Taken();
    }
    bool const isHexadecimal = number.base == 16, isBinary = number.base == 2;
    std::wstring_view const digits = isHexadecimal ? HEXADECIMAL : isBinary ? L"01" : DECIMAL;
    std::size_t count = taker.TakeAll(digits);
    if (!isBinary && taker.Take(L"."))
    {
        number.isWhole = false;
        count += taker.TakeAll(digits);
    }
    if (count == 0)
        return {};
    if (!isBinary && taker.Take(isHexadecimal ? L"pP" : L"eE"))
    {
        number.isWhole = false;
        taker.Take(L"+-");
        if (taker.TakeAll(DECIMAL) == 0)
            return {};
    }
    for (int i = 0; i < 3 && taker.Take(number.isWhole ? L"uUlLzZfFhH" : L"fFlLhH"); ++i)
        ;
    number.length = IsWord(taker.Next()) ? 0 : taker.Taken();
    return number;
}

class Preparer
{
public:
    Preparer(std::wstring & text, Language const & language) : m_text(text), m_language(language)
    {
        m_hasMinus = std::any_of(language.operators.begin(), language.operators.end(),
                                 [](std::wstring const & operation) { return operation[0] == L'-'; });
    }

    void Run()
    {
        while (m_at < m_text.size())
        {
            wchar_t & unit = m_text[m_at];
            if (SkipComment() || SkipString() || SkipWord() || ReplaceNumber())
                continue;
            if (unit == L'\r')
                unit = L' ';
            else if (unit == MINUS)
                unit = NEIGHBOUR;
            else if (unit == L'-' && m_hasMinus)
                unit = MINUS;
            m_isBehindValue = unit == L')' || unit == L']';
            ++m_at;
        }
    }

private:
    std::wstring_view Rest(std::size_t from) const { return std::wstring_view(m_text).substr(from); }

    bool SkipComment()
    {
        for (Language::Comment const & comment : m_language.comments)
        {
            if (!StartsWith(comment.start))
                continue;
            std::size_t const end = m_text.find(comment.end, m_at + comment.start.size());
            std::size_t const behind = end == std::wstring::npos ? m_text.size() : end + comment.end.size();
            std::replace(m_text.begin() + static_cast<std::ptrdiff_t>(m_at),
                         m_text.begin() + static_cast<std::ptrdiff_t>(behind), L'\r', L' ');
            m_at = behind;
            return true;
        }
        return false;
    }

    bool StartsWith(std::wstring const & text) const
    {
        return m_text.size() - m_at >= text.size() &&
               VekStrCompareW(std::wstring(m_text, m_at, text.size()).c_str(), text.c_str(), false) == 0;
    }

    bool SkipString()
    {
        wchar_t const quote = m_text[m_at];
        bool const isOther = quote != 0 && quote == m_language.quote;
        if (quote != L'"' && !isOther)
            return false;
        std::size_t end = m_at + 1;
        for (; end < m_text.size() && m_text[end] != quote; ++end)
        {
            if (isOther && m_text[end] == L'\n')
                return false; // an apostrophe
            if (m_language.escape && m_text[end] == m_language.escape)
                ++end;
        }
        end = std::min(end, m_text.size());
        for (std::size_t i = m_at + 1; i < end; ++i)
            m_text[i] = m_text[i] == L'"' ? L'\'' : m_text[i] == L'\r' ? L' ' : m_text[i];
        m_text[m_at] = L'"';
        if (end < m_text.size())
            m_text[end++] = L'"';
        m_at = end;
        m_isBehindValue = true;
        return true;
    }

    bool SkipWord()
    {
        if (!IsWord(m_text[m_at]) || IsDigit(m_text[m_at]))
            return false;
        while (m_at < m_text.size() && IsWord(m_text[m_at]))
            ++m_at;
        m_isBehindValue = true;
        return true;
    }

    bool ReplaceNumber()
    {
        std::size_t const sign = m_text[m_at] == L'-' && m_language.isSigned && !m_isBehindValue ? 1 : 0;
        bool const begins =
            m_at + sign < m_text.size() && (IsDigit(m_text[m_at + sign]) || m_text[m_at + sign] == L'.');
        Number const number = begins ? FindNumber(Rest(m_at + sign)) : Number();
        if (number.length == 0)
        {
            bool const isWrong = IsDigit(m_text[m_at]);
            while (m_at < m_text.size() && IsWord(m_text[m_at]))
                ++m_at; // the lexer tells what is wrong
            return isWrong;
        }
        m_at += sign;
        for (std::size_t i = 0; i < number.length; ++i)
            m_text[m_at + i] = i == 1 && !number.isWhole ? L'.' : L'1';
        m_at += number.length;
        m_isBehindValue = true;
        return true;
    }

    std::wstring & m_text;
    Language const & m_language;
    std::size_t m_at = 0;
    bool m_hasMinus = false;
    bool m_isBehindValue = false; // what stands before is a word, a number, a text or the end of an expression
};

} // namespace

std::wstring Prepare(std::wstring text, Language const & language)
{
    Preparer(text, language).Run();
    return text;
}

std::wstring PrepareOperator(std::wstring text)
{
    if (text[0] == L'-')
        std::replace(text.begin(), text.end(), L'-', MINUS);
    return text;
}

std::optional<unsigned long long> IntegerValue(std::wstring_view text)
{
    bool const isNegative = text.starts_with(L'-');
    text.remove_prefix(isNegative ? 1 : 0);
    Number const number = FindNumber(text);
    if (number.length != text.size() || !number.isWhole)
        return std::nullopt;
    unsigned long long value = 0;
    for (wchar_t const unit : text.substr(number.prefix))
    {
        if (unit == L'\'')
            continue;
        std::size_t const digit = HEXADECIMAL.find(unit);
        unsigned int const worth = static_cast<unsigned int>(digit < 16 ? digit : digit - 6);
        if (digit == std::wstring_view::npos || worth >= number.base)
            break; // a suffix
        if (value > (std::numeric_limits<unsigned long long>::max() - worth) / number.base)
            return std::nullopt;
        value = value * number.base + worth;
    }
    return isNegative ? 0 - value : value;
}

} // namespace tool
