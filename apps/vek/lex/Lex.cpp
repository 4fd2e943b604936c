#include "lex/Lex.h"

#include "VekLib.h"

#include "Console.h"
#include "lex/Language.h"
#include "lex/Prepare.h"
#include "lex/TextFile.h"
#include "lex/TokenHtml.h"

#include <algorithm>

namespace tool
{

namespace
{

// What a line of the list shows of one token.
constexpr std::size_t SHOWN_TEXT = 120;

CVekRef<IVekLexer> MakeLexer(Language const & language)
{
    CVekRef<IVekLexer> lexer(getVekLibKernel()->CreateLexer());
    bool done = lexer != nullptr;
    int kind = 0;
    for (Language::Words const & words : language.keywords)
    {
        for (std::wstring const & word : words.words)
            done = done && lexer->AddKeyword(word.c_str(), kind, words.caseSensitive);
        ++kind;
    }
    for (std::wstring const & text : language.operators)
        done = done && lexer->AddOperator(PrepareOperator(text).c_str(), 0);
    for (Language::Comment const & comment : language.comments)
        done = done && lexer->AddComment(comment.start.c_str(), comment.end.c_str()) != 0;
    if (!done)
        throw std::bad_alloc();
    return lexer;
}

std::wstring KindOf(IVekTokenizer::IToken const & token, Language const & language)
{
    switch (token.GetKind())
    {
    case IVekTokenizer::TOKEN_KEYWORD:
        return language.keywords[static_cast<std::size_t>(token.GetID())].kind;
    case IVekTokenizer::TOKEN_OPERATOR:
        return L"operator";
    case IVekTokenizer::TOKEN_IDENTIFIER:
        return L"identifier";
    case IVekTokenizer::TOKEN_INTEGER:
        return L"integer";
    case IVekTokenizer::TOKEN_FLOAT:
        return L"float";
    case IVekTokenizer::TOKEN_STRING:
        return L"string";
    case IVekTokenizer::TOKEN_INVALID_SYNTAX:
        return L"invalid";
    default:
        return L"error";
    }
}

/// The value of a whole number whose text doesn't show it.
std::wstring ValueText(std::wstring_view piece, IVekTokenizer::IToken const & token)
{
    std::optional<unsigned long long> const value = IntegerValue(piece);
    bool const isNegative = piece.starts_with(L'-');
    std::wstring const text = !value       ? std::to_wstring(token.GetInteger())
                              : isNegative ? std::to_wstring(static_cast<long long>(*value))
                                           : std::to_wstring(*value);
    return piece == text ? std::wstring() : L" = " + text;
}

void PrintToken(IVekTokenizer::IToken const & token, std::wstring const & text, Language const & language)
{
    std::wstring_view const piece = std::wstring_view(text).substr(static_cast<std::size_t>(token.GetPosition()),
                                                                   static_cast<std::size_t>(token.GetLength()));
    std::wstring line = std::to_wstring(token.GetLine() + 1) + L":" + std::to_wstring(token.GetColumn() + 1);
    line.resize(std::max<std::size_t>(line.size() + 1, 10), L' ');
    line += KindOf(token, language);
    line.resize(std::max<std::size_t>(line.size() + 1, 22), L' ');
    line += Printable(piece, SHOWN_TEXT);
    if (token.GetKind() == IVekTokenizer::TOKEN_ERROR)
        line += L" (" + std::wstring(token.GetText()) + L")";
    else if (token.GetKind() == IVekTokenizer::TOKEN_INTEGER)
        line += ValueText(piece, token);
    Console::Out().Write(line + L"\n");
}

void PrintCounts(IVekTokenizer const & tokens, Language const & language)
{
    std::vector<std::pair<std::wstring, int>> counts;
    for (int i = 0; i < tokens.GetNumTokens(); ++i)
    {
        std::wstring const kind = KindOf(*tokens.GetToken(i), language);
        auto found =
            std::find_if(counts.begin(), counts.end(), [&kind](auto const & count) { return count.first == kind; });
        if (found == counts.end())
            found = counts.insert(found, {kind, 0});
        ++found->second;
    }
    std::sort(counts.begin(), counts.end());
    counts.emplace_back(L"all", tokens.GetNumTokens());
    for (auto const & [kind, count] : counts)
    {
        std::wstring line = kind;
        line.resize(std::max<std::size_t>(line.size() + 1, 14), L' ');
        Console::Out().Write(line + Format(L"%8d\n", count));
    }
}

} // namespace

int RunLex(LexRequest const & request)
{
    std::unique_ptr<Language> const language =
        request.language.empty() ? LanguageOfFile(request.file) : FindLanguage(request.language);
    std::wstring text;
    if (!language || !ReadTextFile(request.file, text))
        return EXIT_FAILED;
    if (!request.html.empty() && VekIsSamePathW(request.file.c_str(), request.html.c_str()))
        return Fail(request.html, L"the page would replace the text itself");
    std::wstring const prepared = Prepare(text, *language);
    CVekRef<IVekLexer> const lexer = MakeLexer(*language);
    CVekRef<IVekTokenizer> const tokens(getVekLibKernel()->CreateTokenizer());
    if (!tokens || !tokens->Tokenize(lexer.Get(), prepared.data(), static_cast<int>(prepared.size())))
        return Fail(request.file, L"out of memory");
    if (request.count)
        PrintCounts(*tokens, *language);
    if (!request.html.empty())
        return WriteWholeFile(request.html, MakeHtml(ShownName(request.file), text, *language, *tokens)) ? EXIT_DONE
                                                                                                         : EXIT_FAILED;
    for (int i = 0; i < tokens->GetNumTokens() && !request.count; ++i)
        PrintToken(*tokens->GetToken(i), text, *language);
    return EXIT_DONE;
}

} // namespace tool
