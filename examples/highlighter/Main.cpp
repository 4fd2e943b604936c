// Shows a source text in colours, as a page for a browser, with a curve beside it of how much there is in each line:
//     example_highlighter SOURCE PAGE.html
#include <VekLib.h>
#include <VekStd.h>

#include <algorithm>
#include <cstdio>

namespace
{

std::wstring Escaped(std::wstring_view text)
{
    std::wstring escaped;
    for (wchar_t const unit : text)
        escaped += unit == L'&' ? L"&amp;" : unit == L'<' ? L"&lt;" : std::wstring(1, unit);
    return escaped;
}

/// The tag that a piece stands in, and its attributes; null for none. What is no token is blank, or a comment.
wchar_t const * TagOf(VekPiece const & piece)
{
    if (!piece.token)
        return piece.text.find_first_not_of(L" \t\r\n") != piece.text.npos ? L"i" : nullptr;
    auto const kind = piece.token->GetKind();
    if (kind & (IVekTokenizer::TOKEN_INTEGER | IVekTokenizer::TOKEN_FLOAT | IVekTokenizer::TOKEN_ERROR)) // such as 0xFF
        return L"b class=number";
    if (kind == IVekTokenizer::TOKEN_KEYWORD)
        return L"b class=keyword";
    return kind == IVekTokenizer::TOKEN_STRING ? L"b class=string" : nullptr;
}

std::wstring Coloured(std::wstring_view text, IVekTokenizer const & tokens)
{
    std::wstring page;
    for (VekPiece const & piece : VekPieces(tokens, text))
    {
        std::wstring const shown = Escaped(piece.text);
        wchar_t const * const tag = TagOf(piece);
        page += tag ? std::wstring(L"<") + tag + L">" + shown + L"</" + *tag + L">" : shown;
    }
    return page;
}

/// A smooth curve through the number of tokens in each line, as the points of an SVG polyline.
std::wstring Curve(IVekTokenizer const & tokens)
{
    std::vector<CVekVector3D<double>> counts{{0, 0, 0}};
    for (IVekTokenizer::IToken const & token : VekTokens(tokens))
    {
        while (counts.back().y < 16 * token.GetLine())
            counts.emplace_back(0, counts.back().y + 16, 0);
        counts.back().x += 4;
    }
    std::wstring points;
    for (CVekVector3D<double> const & point : VekTessellate(VekInterpolate(3, counts), 0.25))
        points += VekToStd(VekToText(CVekVector2D<float>(CVekVector2D(point.x, point.y)))) + L" ";
    return points;
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count != 3 || !library)
        return 2;
    CVekLexer lexer;
    VekAddKeywords(lexer, L"if else for while do return break continue discard struct const in out uniform void bool "
                          L"int float vec2 vec3 vec4 mat4 sampler2D");
    VekAddOperators(lexer, L"+ - * / % = < > ! & | ^ ~ ? : ; , . ( ) [ ] { } #");
    lexer.AddComment(L"//", L"\n");
    lexer.AddComment(L"/*", L"*/");
    CVekTokenizer tokens;
    auto const text = VekReadTextFile(arguments[1]);
    if (!text || !VekTokenizeSource(tokens, lexer, *text))
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
    return VekWriteTextFile(arguments[2], page) ? 0 : 1;
}
