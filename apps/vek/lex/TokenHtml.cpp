#include "lex/TokenHtml.h"

#include "VekStd.h"

#include "Utf8.h"

namespace tool
{

namespace
{

constexpr char const * STYLE = R"(<style>
body { background: #fdfdfb; color: #222; }
pre { font: 13px/1.4 Consolas, "DejaVu Sans Mono", monospace; tab-size: 4; }
.k0 { color: #7a1fa2; font-weight: bold; } .k1 { color: #00695c; } .k2 { color: #1565c0; } .k3 { color: #ad1457; }
.o { color: #555; } .n { color: #b5500b; } .s { color: #2e7d32; } .c { color: #8a8a8a; font-style: italic; }
.x { color: #c62828; background: #ffe5e5; }
@media (prefers-color-scheme: dark) {
body { background: #1d1f21; color: #ddd; } .k0 { color: #d7a6f0; } .k1 { color: #7fd1c5; } .k2 { color: #90c2f7; }
.k3 { color: #f19bbd; } .o { color: #aaa; } .n { color: #f0b27a; } .s { color: #a5d6a7; } .x { background: #5b2020; } }
</style>)";
constexpr int KEYWORD_COLOURS = 4;

class Page
{
public:
    /// Text of a class, of none when that is empty.
    void Add(std::wstring_view text, std::string const & spanClass)
    {
        if (text.empty())
            return;
        if (!spanClass.empty())
            m_html += "<span class=\"" + spanClass + "\">";
        AddEscaped(text);
        if (!spanClass.empty())
            m_html += "</span>";
    }
    void AddEscaped(std::wstring_view text)
    {
        m_escaped.clear();
        for (wchar_t const unit : text)
        {
            if (unit == L'<')
                m_escaped += L"&lt;";
            else if (unit == L'>')
                m_escaped += L"&gt;";
            else if (unit == L'&')
                m_escaped += L"&amp;";
            else if (unit == L'"')
                m_escaped += L"&quot;";
            else if (unit < L' ' && unit != L'\n' && unit != L'\t')
            {
                if (unit != L'\r')
                    m_escaped += static_cast<wchar_t>(0x2400 + unit); // the picture of the control character
            }
            else
                m_escaped += unit;
        }
        m_html += ToUtf8(m_escaped);
    }
    /// What stands between two tokens: blanks, and comments.
    void AddGap(std::wstring_view text)
    {
        constexpr wchar_t const * BLANKS = L" \t\r\n\a";
        std::size_t const begin = text.find_first_not_of(BLANKS);
        if (begin == std::wstring_view::npos)
            return AddEscaped(text);
        std::size_t const end = text.find_last_not_of(BLANKS) + 1;
        AddEscaped(text.substr(0, begin));
        Add(text.substr(begin, end - begin), "c");
        AddEscaped(text.substr(end));
    }
    void AddMarkup(std::string_view html) { m_html += html; }
    std::string Take() { return std::move(m_html); }

private:
    std::string m_html;
    std::wstring m_escaped;
};

std::string ClassOf(IVekTokenizer::IToken const & token)
{
    switch (token.GetKind())
    {
    case IVekTokenizer::TOKEN_KEYWORD:
        return "k" + std::to_string(token.GetID() % KEYWORD_COLOURS);
    case IVekTokenizer::TOKEN_OPERATOR:
        return "o";
    case IVekTokenizer::TOKEN_INTEGER:
    case IVekTokenizer::TOKEN_FLOAT:
        return "n";
    case IVekTokenizer::TOKEN_STRING:
        return "s";
    case IVekTokenizer::TOKEN_INVALID_SYNTAX:
    case IVekTokenizer::TOKEN_ERROR:
        return "x";
    default:
        return {};
    }
}

} // namespace

std::string MakeHtml(std::wstring const & title, std::wstring const & text, Language const & language,
                     IVekTokenizer const & tokens)
{
    Page page;
    page.AddMarkup("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>");
    page.AddEscaped(title + L" (" + language.name + L")");
    page.AddMarkup("</title>\n");
    page.AddMarkup(STYLE);
    page.AddMarkup("\n</head>\n<body>\n<pre>\n");
    for (VekPiece const & piece : VekPieces(tokens, text))
    {
        if (piece.token)
            page.Add(piece.text, ClassOf(*piece.token));
        else
            page.AddGap(piece.text);
    }
    page.AddMarkup("</pre>\n</body>\n</html>\n");
    return page.Take();
}

} // namespace tool
