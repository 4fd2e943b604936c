#include "TableLexer.h"

#include <algorithm>
#include <cstring>

namespace bench
{

namespace
{

enum Class : unsigned char
{
    OTHER,
    SPACE,
    NEWLINE,
    WORD,
    DIGIT,
    QUOTE,
    SLASH
};

using Classes = std::array<Class, 0x10000>;

Classes MakeClasses()
{
    Classes classes{};
    for (std::size_t unit = 0; unit < 26; ++unit)
        classes['a' + unit] = classes['A' + unit] = WORD;
    for (std::size_t unit = '0'; unit <= '9'; ++unit)
        classes[unit] = DIGIT;
    classes['_'] = WORD;
    classes[' '] = classes['\t'] = SPACE;
    classes['\n'] = NEWLINE;
    classes['"'] = QUOTE;
    classes['/'] = SLASH;
    return classes;
}

Classes const CLASSES = MakeClasses();

unsigned int LengthBit(std::size_t length)
{
    return 1u << std::min<std::size_t>(length, 31);
}

} // namespace

/// The place in the text, which ends in a zero, and what was found.
struct TableLexer::Scan
{
    wchar_t const * at;
    wchar_t const * end;
    int line = 0;
    TokenCounts counts = {};

    void SkipLine()
    {
        while (at != end && *at != L'\n')
            ++at;
    }
    void SkipBlock()
    {
        for (at += 2; at != end && (at[0] != L'*' || at[1] != L'/'); ++at)
            line += *at == L'\n';
        at += at != end ? 2 : 0;
    }
    void ReadString()
    {
        for (++at; at != end && *at != L'"'; ++at)
            line += *at == L'\n';
        at += at != end;
        ++counts.strings;
    }
    void ReadNumber()
    {
        bool isFloat = false;
        unsigned int value = 0; // worked out, as a lexer does
        for (; CLASSES[*at] == DIGIT || (*at == L'.' && !isFloat); ++at)
        {
            isFloat |= *at == L'.';
            value = value * 10 + static_cast<unsigned int>(*at - L'0');
        }
        ++(isFloat ? counts.floats : counts.integers);
        counts.lines += value == 0xFFFFFFFFU;
    }
    /// Returns the word's length.
    std::size_t ReadWord()
    {
        wchar_t const * const word = at++;
        while (CLASSES[*at] == WORD || CLASSES[*at] == DIGIT)
            ++at;
        return static_cast<std::size_t>(at - word);
    }
};

TableLexer::TableLexer(std::vector<std::wstring> const & keywords, std::vector<std::wstring> const & operators)
{
    for (std::wstring const & keyword : keywords)
    {
        m_keywords[keyword[0]].push_back(keyword);
        m_lengths[keyword[0]] |= LengthBit(keyword.size());
    }
    for (std::wstring const & text : operators)
        if (text.size() > 1)
            m_operators[text[0]].push_back(text);
    for (auto & group : m_operators)
        std::sort(group.begin(), group.end(), [](auto const & a, auto const & b) { return a.size() > b.size(); });
}

bool TableLexer::IsKeyword(wchar_t const * word, std::size_t length) const
{
    if (!(m_lengths[*word] & LengthBit(length)))
        return false;
    for (std::wstring const & keyword : m_keywords[*word])
        if (keyword.size() == length && std::memcmp(keyword.data(), word, length * sizeof(wchar_t)) == 0)
            return true;
    return false;
}

std::size_t TableLexer::OperatorLength(wchar_t const * at) const
{
    if (*at < m_operators.size())
        for (std::wstring const & text : m_operators[*at])
            if (text[1] == at[1] && (text.size() == 2 || text[2] == at[2]))
                return text.size();
    return 1;
}

TokenCounts TableLexer::Run(std::wstring_view text) const
{
    Scan scan{text.data(), text.data() + text.size()};
    while (scan.at != scan.end)
    {
        wchar_t const * const begin = scan.at;
        Class const kind = CLASSES[*begin];
        if (kind == SLASH && (begin[1] == L'/' || begin[1] == L'*'))
        {
            begin[1] == L'/' ? scan.SkipLine() : scan.SkipBlock();
            continue;
        }
        if (kind == SPACE || kind == NEWLINE)
        {
            scan.line += kind == NEWLINE;
            while (CLASSES[*++scan.at] == SPACE)
                ;
            continue;
        }
        scan.counts.lines += scan.line;
        switch (kind)
        {
        case WORD:
        {
            bool const isKeyword = IsKeyword(begin, scan.ReadWord());
            ++(isKeyword ? scan.counts.keywords : scan.counts.identifiers);
            break;
        }
        case DIGIT:
            scan.ReadNumber();
            break;
        case QUOTE:
            scan.ReadString();
            break;
        default:
            scan.at += OperatorLength(begin);
            ++scan.counts.operators;
        }
    }
    return scan.counts;
}

} // namespace bench
