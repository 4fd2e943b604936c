#include "xml/XmlProlog.h"

#include "xml/XmlNode.h"

#include <algorithm>

namespace tool
{

namespace
{

using Kind = XmlPrologPart::Kind;

/// The length up to the mark's end, or of all when there is none.
std::size_t LengthTo(std::wstring_view text, std::wstring_view mark, std::size_t from)
{
    std::size_t const at = text.find(mark, from);
    return at == text.npos ? text.size() : at + mark.size();
}

/// Of a declaration "<!...>", with those that stand in it.
std::size_t DeclarationLength(std::wstring_view text)
{
    std::size_t nesting = 0;
    for (std::size_t i = 0; i < text.size();)
    {
        std::wstring_view const rest = text.substr(i);
        std::size_t length = 1;
        if (rest.starts_with(L"<!--"))
            length = LengthTo(rest, L"-->", 4);
        else if (rest.starts_with(L"<?"))
            length = LengthTo(rest, L"?>", 2);
        else if (rest[0] == L'"' || rest[0] == L'\'')
            length = LengthTo(rest, rest.substr(0, 1), 1);
        else if (rest[0] == L'<')
            ++nesting;
        else if (rest[0] == L'>' && --nesting == 0)
            return i + 1;
        i += length;
    }
    return text.size();
}

XmlPrologPart FirstPart(std::wstring_view text)
{
    if (text.starts_with(L"<?xml") && text.size() > 5 && IsBlank(text[5]))
        return {Kind::Declaration, text.substr(0, LengthTo(text, L"?>", 2))};
    if (text.starts_with(L"<?"))
        return {Kind::Instruction, text.substr(0, LengthTo(text, L"?>", 2))};
    if (text.starts_with(L"<!--"))
        return {Kind::Comment, text.substr(0, LengthTo(text, L"-->", 4))};
    if (text.starts_with(L"<!"))
        return {Kind::DocumentType, text.substr(0, DeclarationLength(text))};
    return {Kind::Blank, text.substr(0, std::min(text.find(L'<', 1), text.size()))};
}

} // namespace

std::vector<XmlPrologPart> SplitProlog(std::wstring_view prolog)
{
    std::vector<XmlPrologPart> parts;
    while (!prolog.empty())
    {
        parts.push_back(FirstPart(prolog));
        prolog.remove_prefix(parts.back().text.size());
    }
    return parts;
}

std::wstring PrologWithout(std::wstring_view prolog, Kind kind)
{
    std::wstring kept;
    bool isBehind = false;
    for (XmlPrologPart part : SplitProlog(prolog))
    {
        if (isBehind && part.text.starts_with(L'\n'))
            part.text.remove_prefix(1);
        isBehind = part.kind == kind;
        if (!isBehind)
            kept += part.text;
    }
    return kept;
}

} // namespace tool
