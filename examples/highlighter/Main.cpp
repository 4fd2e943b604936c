// Shows a source text in colours, as a page for a browser, with a curve beside it of how much there is in each line:
//     example_highlighter SOURCE PAGE.html
#include <VekLib.h>
#include <VekStd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace
{

/// The text of a UTF-8 file; nothing when it can't be read or isn't UTF-8.
std::optional<std::wstring> ReadText(wchar_t const * path)
{
    auto const bytes = VekReadFile(path);
    return bytes ? VekWideFromUtf8(*bytes) : std::nullopt;
}

bool WriteText(wchar_t const * path, std::wstring_view text)
{
    auto const bytes = VekUtf8FromWide(text);
    return bytes && VekWriteFile(path, *bytes);
}

constexpr wchar_t MINUS = L'\uE000';

/// The text as the lexer wants it, position for position: a minus sign would begin a number, and a carriage return is
/// no blank.
std::wstring Prepared(std::wstring text)
{
    std::replace(text.begin(), text.end(), L'-', MINUS);
    std::replace(text.begin(), text.end(), L'\r', L' ');
    return text;
}

void SetUp(IVekLexer & lexer)
{
    for (wchar_t const * const word :
         {L"if",      L"else",   L"for",   L"while", L"do",   L"return",  L"break",    L"continue",
          L"discard", L"struct", L"const", L"in",    L"out",  L"uniform", L"void",     L"bool",
          L"int",     L"float",  L"vec2",  L"vec3",  L"vec4", L"mat4",    L"sampler2D"})
        lexer.AddKeyword(word, 0, true);
    for (wchar_t const unit : std::wstring(L"+*/%=<>!&|^~?:;,.()[]{}#") + MINUS)
        lexer.AddOperator(std::wstring(1, unit).c_str(), unit);
    lexer.AddComment(L"//", L"\n");
    lexer.AddComment(L"/*", L"*/");
}

std::wstring Escaped(std::wstring_view text)
{
    std::wstring escaped;
    for (wchar_t const unit : text)
        escaped += unit == L'&' ? L"&amp;" : unit == L'<' ? L"&lt;" : std::wstring(1, unit);
    return escaped;
}

wchar_t const * ClassOf(IVekTokenizer::TOKEN_KIND kind)
{
    switch (kind)
    {
    case IVekTokenizer::TOKEN_KEYWORD:
        return L"keyword";
    case IVekTokenizer::TOKEN_INTEGER:
    case IVekTokenizer::TOKEN_FLOAT:
    case IVekTokenizer::TOKEN_ERROR: // such as 0xFF
        return L"number";
    case IVekTokenizer::TOKEN_STRING:
        return L"string";
    default:
        return nullptr;
    }
}

/// What stands between tokens is blank, or a comment.
std::wstring Between(std::wstring_view text)
{
    bool const isComment = text.find_first_not_of(L" \t\r\n") != text.npos;
    return isComment ? L"<i>" + Escaped(text) + L"</i>" : Escaped(text);
}

std::wstring Coloured(std::wstring_view text, IVekTokenizer const & tokens)
{
    std::wstring page;
    std::size_t end = 0;
    for (IVekTokenizer::IToken const & token : VekTokens(tokens))
    {
        auto const begin = static_cast<std::size_t>(token.GetPosition());
        if (begin < end) // the number of an error
            continue;
        page += Between(text.substr(end, begin - end));
        end = begin + static_cast<std::size_t>(token.GetLength());
        std::wstring const shown = Escaped(text.substr(begin, end - begin));
        wchar_t const * const style = ClassOf(token.GetKind());
        page += style ? std::wstring(L"<b class=") + style + L">" + shown + L"</b>" : shown;
    }
    return page + Between(text.substr(end));
}

/// A smooth curve through the number of tokens in each line, as the points of an SVG polyline.
std::wstring Curve(IVekTokenizer const & tokens)
{
    std::vector<CVekVector3D<double>> counts{{0, 0, 0}};
    for (IVekTokenizer::IToken const & token : VekTokens(tokens))
    {
        while (counts.size() <= static_cast<std::size_t>(token.GetLine()))
            counts.emplace_back(0, 16.0 * double(counts.size()), 0);
        counts[static_cast<std::size_t>(token.GetLine())].x += 4;
    }
    CVekNurbsCurve<double> curve;
    if (!curve.CreateInterpolation(3, counts.data(), static_cast<unsigned int>(counts.size())))
        return {};
    std::vector<CVekVector3D<double>> points(curve.Tessellate(0.25, nullptr, nullptr, 0));
    curve.Tessellate(0.25, points.data(), nullptr, static_cast<unsigned int>(points.size()));
    std::wstring text;
    for (CVekVector3D<double> const & point : points)
        text.append(VekView(VekToText(CVekVector2D<float>(float(point.x), float(point.y))))).append(L" ");
    return text;
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count != 3 || !library)
        return 2;
    auto const text = ReadText(arguments[1]);
    CVekLexer lexer;
    CVekTokenizer tokens;
    SetUp(lexer);
    if (!text || !tokens.Tokenize(&lexer, Prepared(*text).c_str(), static_cast<int>(text->size())))
    {
        std::puts("the source can't be read, or isn't UTF-8");
        return 1;
    }
    std::wstring const page = L"<!DOCTYPE html><meta charset=utf-8><style>pre,svg{position:absolute;line-height:16px}"
                              L".keyword{color:#a0f}.number{color:#c40}.string{color:#080}i{color:#888}</style>\n"
                              L"<svg width=800 height=" +
                              std::to_wstring(16 * std::count(text->begin(), text->end(), L'\n') + 32) +
                              L"><polyline fill=none stroke=#9cf points=\"" + Curve(tokens) + L"\"/></svg><pre>" +
                              Coloured(*text, tokens) + L"</pre>\n";
    std::printf("%d tokens\n", tokens.GetNumTokens());
    return WriteText(arguments[2], page) ? 0 : 1;
}
