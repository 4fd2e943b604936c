#pragma once

#include "SwitchLexer.h"
#include "VekLib.h"

#include <string>
#include <vector>

namespace bench
{

/// Counts what a lexer reports.
class TokenCounter final : public CVekRefCounted<IVekLexer::Callback>
{
public:
    void OnKeywordFound(wchar_t const *, int, int, int line, int) override { Count(counts.keywords, line); }
    void OnOperatorFound(wchar_t const *, int, int, int line, int) override { Count(counts.operators, line); }
    void OnIdentifierFound(wchar_t const *, int, int line, int) override { Count(counts.identifiers, line); }
    void OnIntegerFound(int, IVekLexer::NUM_FORMAT, int, int line, int) override { Count(counts.integers, line); }
    void OnFloatFound(double, int, int line, int) override { Count(counts.floats, line); }
    void OnStringFound(wchar_t const *, int, int line, int) override { Count(counts.strings, line); }
    void OnInvalidSyntax(wchar_t const *, int, int, int) override { ++faults; }
    void OnError(wchar_t const *, int, int, int) override { ++faults; }

    TokenCounts counts;
    int faults = 0;

private:
    void Count(int & kind, int line)
    {
        ++kind;
        counts.lines += line;
    }
};

/// The C language's keywords and as many more as are asked for.
std::vector<std::wstring> LexKeywords(std::size_t count);

/// The operators that the lexers here know.
std::vector<std::wstring> LexOperators();

/// 10 MB of text that looks like a C program, without minus signs, characters and hexadecimal numbers, which the lexer
/// takes for something else.
std::wstring LexText();

/// The library's lexer for that language.
CVekRef<IVekLexer> MakeLexer(std::vector<std::wstring> const & keywords);

} // namespace bench
