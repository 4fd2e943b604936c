#include "lex/Language.h"

#include "VekLib.h"

#include "Console.h"
#include "LibraryText.h"
#include "Platform.h"
#include "XmlFile.h"

#include <algorithm>
#include <array>

namespace tool
{

namespace
{

constexpr std::array<wchar_t const *, 3> KNOWN = {L"C", L"GLSL", L"OBJ"}; // resources of the program
constexpr std::size_t LONGEST_DELIMITER = 16;

std::vector<std::wstring> Split(std::wstring_view text)
{
    std::vector<std::wstring> words;
    constexpr wchar_t const * BLANKS = L" \t\r\n";
    for (std::size_t begin = text.find_first_not_of(BLANKS); begin != std::wstring_view::npos;)
    {
        std::size_t const end = std::min(text.find_first_of(BLANKS, begin), text.size());
        words.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(BLANKS, end);
    }
    return words;
}

std::wstring Value(IVekXMLElement const & element, wchar_t const * name)
{
    CVekString<wchar_t> value;
    element.GetAttributeValue(name, value, L"");
    return std::wstring(View(value));
}

bool Is(CVekString<wchar_t> const & name, wchar_t const * text)
{
    return name.Compare(text, false) == 0;
}

/// Reads one element of a language; on failure says what is wrong with it.
std::wstring ReadElement(IVekXMLElement const & element, Language & language)
{
    std::vector<std::wstring> words = Split(Value(element, L"text"));
    if (Is(element.GetName(), L"comment"))
    {
        Language::Comment comment = {Value(element, L"start"), Value(element, L"end")};
        if (comment.start.empty())
            return L"a comment has no \"start\"";
        if (comment.end.empty())
            comment.end = L"\n";
        if (std::max(comment.start.size(), comment.end.size()) > LONGEST_DELIMITER)
            return L"a comment's delimiter is longer than 16 characters";
        language.comments.push_back(std::move(comment));
        return {};
    }
    bool const isKeywords = Is(element.GetName(), L"keywords");
    if (!isKeywords && !Is(element.GetName(), L"operators"))
        return L"has an unknown element: " + PrintableName(element.GetName());
    if (words.empty())
        return PrintableName(element.GetName()) + L" without \"text\"";
    if (isKeywords)
    {
        std::wstring const kind = Value(element, L"kind");
        bool caseSensitive = true;
        element.GetAttributeValue(L"case", caseSensitive, true);
        language.keywords.push_back({kind.empty() ? L"keyword" : Printable(kind, 40), caseSensitive, std::move(words)});
    }
    else
        std::move(words.begin(), words.end(), std::back_inserter(language.operators));
    return {};
}

std::unique_ptr<Language> ReadLanguage(IVekXMLDocument & document, std::wstring const & subject)
{
    IVekXMLElement & root = *document.GetRootElement();
    if (!Is(root.GetName(), L"language"))
    {
        Fail(subject, L"is no language: its outermost element is not \"language\"");
        return nullptr;
    }
    auto language = std::make_unique<Language>();
    std::wstring const name = Value(root, L"name");
    std::wstring const escape = Value(root, L"escape");
    language->name = name.empty() ? subject : name;
    language->files = Split(Value(root, L"files"));
    language->escape = escape.empty() ? L'\0' : escape[0];
    std::wstring const quote = Value(root, L"quote");
    language->quote = quote.empty() ? L'\0' : quote[0];
    root.GetAttributeValue(L"signed", language->isSigned, false);
    for (int i = 0; i < root.GetNumChildren(); ++i)
        if (std::wstring const fault = ReadElement(*root.GetChild(i), *language); !fault.empty())
        {
            Fail(subject, fault);
            return nullptr;
        }
    std::stable_sort(language->operators.begin(), language->operators.end(),
                     [](std::wstring const & a, std::wstring const & b) { return a.size() < b.size(); });
    return language;
}

std::unique_ptr<Language> ReadKnown(wchar_t const * name)
{
    HRSRC const found = FindResourceW(nullptr, name, MAKEINTRESOURCEW(10)); // RT_RCDATA
    HGLOBAL const loaded = found ? LoadResource(nullptr, found) : nullptr;
    void const * const bytes = loaded ? LockResource(loaded) : nullptr;
    CVekRef<IVekXMLDocument> const document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    CVekXMLParser parser;
    if (!bytes || !document || !parser.ParseXMLMemory(bytes, SizeofResource(nullptr, found), document.Get()))
    {
        Fail(name, L"this language can't be read from the program");
        return nullptr;
    }
    return ReadLanguage(*document, name);
}

} // namespace

std::unique_ptr<Language> FindLanguage(std::wstring const & name)
{
    for (wchar_t const * const known : KNOWN)
        if (VekStrCompareW(known, name.c_str(), false) == 0)
            return ReadKnown(known);
    if (name.find_first_of(L"./\\") == std::wstring::npos)
    {
        Fail(name, L"is neither a language (c, glsl, obj) nor a language's file");
        return nullptr;
    }
    CVekRef<IVekXMLDocument> const document = LoadXml(name);
    return document ? ReadLanguage(*document, name) : nullptr;
}

std::unique_ptr<Language> LanguageOfFile(std::wstring const & path)
{
    std::size_t const dot = path.find_last_of(L"./\\:");
    std::wstring const ending = dot != std::wstring::npos && path[dot] == L'.' ? path.substr(dot + 1) : L"";
    for (wchar_t const * const known : KNOWN)
    {
        std::unique_ptr<Language> language = ReadKnown(known);
        if (!language || std::any_of(language->files.begin(), language->files.end(),
                                     [&ending](std::wstring const & file)
                                     { return VekStrCompareW(file.c_str(), ending.c_str(), false) == 0; }))
            return language;
    }
    return ReadKnown(KNOWN[0]);
}

} // namespace tool
