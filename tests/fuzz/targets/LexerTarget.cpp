// The lexer with a random set-up, beside a scanner that reads one character after the other as the rules are told.

#include "VekLib.h"

#include "fuzz/Target.h"
#include "support/XMLKit.h"

#include <cwctype>
#include <vector>

namespace fuzz
{

namespace
{

// What is found, one after the other; kinds as the tokenizer numbers them.
struct Found
{
    unsigned int kind;
    std::wstring text;
    int value;
    int position;
    int line;
    int column;
    bool operator==(Found const &) const = default;
};

struct Keyword
{
    std::wstring text;
    bool caseSensitive;
};
struct Comment
{
    std::wstring start, end;
};
struct Language
{
    std::vector<Keyword> keywords;
    std::vector<std::wstring> operators;
    std::vector<Comment> comments;
};

bool IsSame(std::wstring const & a, std::wstring const & b, bool caseSensitive)
{
    return VekStrCompareW(a.c_str(), b.c_str(), caseSensitive) == 0;
}

bool IsWord(wchar_t unit)
{
    return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z') || unit == L'_';
}
bool IsDigit(wchar_t unit)
{
    return unit >= L'0' && unit <= L'9';
}
bool IsBlank(wchar_t unit)
{
    return unit == L' ' || unit == L'\n' || unit == L'\t' || unit == 7;
}

class PlainLexer
{
public:
    PlainLexer(Language const & language, std::wstring text) : m_language(language), m_text(std::move(text)) {}

    std::vector<Found> Scan()
    {
        while (SkipToToken())
        {
            m_begin = {0, L"", 0, static_cast<int>(m_at), m_line, m_column};
            wchar_t const unit = m_text[m_at];
            if (IsWord(unit))
                ScanWord();
            else if (unit == L'-' || IsDigit(unit))
                ScanNumber();
            else if (unit == L'"')
                ScanString();
            else
                ScanRun();
        }
        return m_found;
    }

private:
    void Take()
    {
        bool const newLine = m_text[m_at++] == L'\n';
        m_line += newLine;
        m_column = newLine ? 0 : m_column + 1;
    }
    bool IsAt(std::wstring const & text, std::size_t from) const
    {
        return from + text.size() <= m_text.size() && IsSame(m_text.substr(from, text.size()), text, false);
    }
    void Report(unsigned int kind, std::wstring text, int value = 0)
    {
        Found found = m_begin;
        found.kind = kind;
        found.text = std::move(text);
        found.value = value;
        m_found.push_back(found);
    }

    bool SkipToToken()
    {
        while (m_at < m_text.size())
        {
            if (IsBlank(m_text[m_at]))
                Take();
            else if (!SkipComment())
                return true;
        }
        return false;
    }
    bool SkipComment()
    {
        for (auto const & [start, end] : m_language.comments)
        {
            if (m_text[m_at] != start[0] || !IsAt(start, m_at))
                continue;
            for (std::size_t i = 0; i < start.size(); ++i)
                Take();
            while (m_at < m_text.size())
            {
                bool const ends = m_text[m_at] == end[0] && IsAt(end.substr(1), m_at + 1);
                Take();
                if (!ends)
                    continue;
                for (std::size_t i = 1; i < end.size(); ++i)
                    Take();
                break;
            }
            return true;
        }
        return false;
    }

    void ScanWord()
    {
        std::wstring word;
        while (m_at < m_text.size() && word.size() < 1024 && (IsWord(m_text[m_at]) || IsDigit(m_text[m_at])))
        {
            word += m_text[m_at];
            Take();
        }
        // Those of the lower-case letter's list come first, then those of the upper-case one's.
        for (wchar_t const first :
             {static_cast<wchar_t>(std::towlower(word[0])), static_cast<wchar_t>(std::towupper(word[0]))})
            for (std::size_t i = 0; i < m_language.keywords.size(); ++i)
            {
                auto const & [text, caseSensitive] = m_language.keywords[i];
                bool const isListed = caseSensitive ? text[0] == first : std::towlower(text[0]) == std::towlower(first);
                if (isListed && IsSame(text, word, caseSensitive))
                    return Report(IVekTokenizer::TOKEN_KEYWORD, word, static_cast<int>(i));
            }
        Report(IVekTokenizer::TOKEN_IDENTIFIER, word);
    }

    void ScanNumber()
    {
        std::wstring number;
        bool point = false;
        for (; m_at < m_text.size() && number.size() < 1024; Take())
        {
            wchar_t const unit = m_text[m_at];
            if (!number.empty() && IsWord(unit))
            {
                Report(IVekTokenizer::TOKEN_ERROR, L"Invalid number");
                Take();
                break;
            }
            if (!number.empty() && !IsDigit(unit) && (unit != L'.' || point))
                break;
            point = point || unit == L'.';
            number += unit;
        }
        Report(point ? IVekTokenizer::TOKEN_FLOAT : IVekTokenizer::TOKEN_INTEGER, number);
    }

    void ScanRun()
    {
        std::wstring run;
        for (std::size_t at = m_at; at < m_text.size() && run.size() < 1024; ++at)
        {
            if (IsWord(m_text[at]) || IsDigit(m_text[at]) || IsBlank(m_text[at]))
                break;
            run += m_text[at];
        }
        for (std::size_t length = run.size(); length > 0; --length)
            for (std::size_t i = 0; i < m_language.operators.size(); ++i)
                if (VekStrCompareW(m_language.operators[i].c_str(), run.c_str(), static_cast<int>(length), true) == 0)
                {
                    for (std::size_t taken = 0; taken < length; ++taken)
                        Take();
                    return Report(IVekTokenizer::TOKEN_OPERATOR, m_language.operators[i], static_cast<int>(i));
                }
        for (std::size_t taken = 0; taken < run.size(); ++taken)
            Take();
        Report(IVekTokenizer::TOKEN_INVALID_SYNTAX, run);
    }

    void ScanString()
    {
        std::wstring text;
        Take();
        while (m_at < m_text.size() && text.size() < 2048)
        {
            wchar_t const unit = m_text[m_at];
            Take();
            if (unit == L'"')
                break;
            text += unit;
        }
        Report(IVekTokenizer::TOKEN_STRING, text);
    }

    Language const & m_language;
    std::wstring const m_text;
    std::vector<Found> m_found;
    Found m_begin{};
    std::size_t m_at = 0;
    int m_line = 0, m_column = 0;
};

Language MakeLanguage(Reader & reader, IVekLexer & lexer)
{
    Language language;
    for (unsigned i = reader.Below(6); i > 0; --i)
    {
        Keyword const keyword = {L"aA_"[reader.Below(3)] + reader.Text<wchar_t>(2), reader.Below(2) != 0};
        Check(lexer.AddKeyword(keyword.text.c_str(), static_cast<int>(language.keywords.size()), keyword.caseSensitive),
              "AddKeyword");
        language.keywords.push_back(keyword);
    }
    for (unsigned i = reader.Below(6); i > 0; --i)
    {
        std::wstring const sign = std::wstring(1, L"=+./:"[reader.Below(5)]) + std::wstring(reader.Below(3), L'=');
        Check(lexer.AddOperator(sign.c_str(), static_cast<int>(language.operators.size())), "AddOperator");
        language.operators.push_back(sign);
    }
    Comment const all[] = {{L"//", L"\n"}, {L"/*", L"*/"}, {L"/", L"/"}, {L"a", L"bA"}, {L"**", L"*-*"}};
    for (unsigned i = reader.Below(4); i > 0; --i)
    {
        language.comments.push_back(all[reader.Below(5)]);
        Check(lexer.AddComment(language.comments.back().start.c_str(), language.comments.back().end.c_str()) == 1,
              "AddComment");
    }
    return language;
}

std::wstring MakeText(Bytes bytes)
{
    std::wstring text;
    for (std::uint8_t const byte : bytes)
        text += static_cast<wchar_t>(byte < 0xF0 ? byte : byte * 0x101);
    return text;
}

} // namespace

void RunLexer(Bytes input)
{
    Reader reader(input);
    CVekRef<IVekLexer> const lexer(getVekLibKernel()->CreateLexer());
    Language const language = MakeLanguage(reader, *lexer);
    std::wstring const text = MakeText(reader.Rest());
    CVekRef<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());
    Check(tokenizer->Tokenize(lexer.Get(), text.data(), static_cast<int>(text.size())), "Tokenize");
    std::vector<Found> const expected = PlainLexer(language, text).Scan();
    Check(tokenizer->GetNumTokens() == static_cast<int>(expected.size()), "the number of tokens");
    for (int i = 0; i < tokenizer->GetNumTokens(); ++i)
    {
        IVekTokenizer::IToken const & token = *tokenizer->GetToken(i);
        Found const found = {
            token.GetKind(), std::wstring(token.GetText(), static_cast<std::size_t>(token.GetTextLength())),
            token.GetID(),   token.GetPosition(),
            token.GetLine(), token.GetColumn()};
        Check(found == expected[static_cast<std::size_t>(i)], "a token");
        Check(token.GetPosition() + token.GetLength() <= static_cast<int>(text.size()), "a token lies in the text");
    }
}

} // namespace fuzz
