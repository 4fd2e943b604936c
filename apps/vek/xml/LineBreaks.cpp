#include "xml/LineBreaks.h"

#include "LibraryText.h"
#include "WalkTree.h"

#include <algorithm>
#include <charconv>

namespace tool
{

namespace
{

constexpr std::string_view EOL_TEXT = "<EOL>";
constexpr std::size_t LONGEST_REFERENCE = 16;

/// What a reference such as "&#x0A" stands for; U+FFFF for any that is neither a number nor an angle bracket.
unsigned int Decode(std::string_view reference)
{
    unsigned int character = 0xFFFF;
    if (reference == "&lt")
        return '<';
    if (reference == "&gt")
        return '>';
    if (reference.starts_with("&#x"))
        std::from_chars(reference.data() + 3, reference.data() + reference.size(), character, 16);
    else if (reference.starts_with("&#"))
        std::from_chars(reference.data() + 2, reference.data() + reference.size(), character);
    return character;
}

/// Replaces the breaks for which next() is true.
template <class Next>
std::wstring Restored(std::wstring_view value, Next next)
{
    std::wstring restored;
    for (;;)
    {
        std::size_t const at = value.find(LIBRARY_LINE_BREAK);
        restored += value.substr(0, at);
        if (at == std::wstring_view::npos)
            return restored;
        restored += next() ? LINE_BREAK : LIBRARY_LINE_BREAK;
        value.remove_prefix(at + LIBRARY_LINE_BREAK.size());
    }
}

template <class Use>
void ForEachBrokenValue(IVekXMLElement * root, Use use)
{
    WalkTree(root,
             [&use](IVekXMLElement * element, std::size_t)
             {
                 for (int i = 0; i < element->GetNumAttributes(); ++i)
                 {
                     if (View(element->GetAttributeValue(i)).find(LIBRARY_LINE_BREAK) != std::wstring_view::npos)
                         use(*element, i);
                 }
                 return true;
             });
}

std::size_t CountBreaks(IVekXMLElement * root)
{
    std::size_t count = 0;
    ForEachBrokenValue(root, [&count](IVekXMLElement & element, int index)
                       { Restored(View(element.GetAttributeValue(index)), [&count] { return ++count > 0; }); });
    return count;
}

} // namespace

void LineBreakScanner::Take(unsigned int unit)
{
    if (unit == ';' && !m_reference.empty())
    {
        TakeCharacter(Decode(m_reference));
        m_reference.clear();
    }
    else if (unit == '&')
        m_reference.assign(1, '&');
    else if (m_reference.empty())
        TakeCharacter(unit == '\n' ? ' ' : unit); // only a reference survives a parser
    else if (m_reference.size() < LONGEST_REFERENCE && !(unit == '0' && (m_reference == "&#" || m_reference == "&#x")))
        m_reference.push_back(static_cast<char>(unit < 0x80 ? unit : 0x7F));
}

void LineBreakScanner::TakeCharacter(unsigned int character)
{
    if (character == '\n')
        m_found.push_back(true);
    if (character == static_cast<unsigned char>(EOL_TEXT[m_matched]))
        ++m_matched;
    else
        m_matched = character == '<' ? 1 : 0;
    if (m_matched < EOL_TEXT.size())
        return;
    m_found.push_back(false);
    m_matched = 0;
}

void RestoreLineBreaks(IVekXMLElement * root, LineBreaks const & ofFile)
{
    // What a document type adds, or what was dropped, makes the counts differ: then only a file that has nothing but
    // the text keeps it.
    bool const isKnown = CountBreaks(root) == ofFile.size();
    bool const isReal = ofFile.empty() || std::count(ofFile.begin(), ofFile.end(), true) > 0;
    std::size_t next = 0;
    ForEachBrokenValue(root,
                       [&](IVekXMLElement & element, int index)
                       {
                           std::wstring const restored = Restored(View(element.GetAttributeValue(index)), [&]
                                                                  { return isKnown ? bool(ofFile[next++]) : isReal; });
                           element.SetAttributeValue(index, VEK_VARIANT(restored.c_str())); // stored as it is
                       });
}

std::wstring EscapeValue(std::wstring_view value)
{
    constexpr std::pair<wchar_t, std::wstring_view> ESCAPES[] = {
        {L'&', L"&amp;"}, {L'<', L"&lt;"}, {L'>', L"&gt;"}, {L'\'', L"&apos;"}, {L'"', L"&quot;"}, {L'\n', LINE_BREAK},
    };
    std::wstring escaped;
    for (wchar_t const unit : value)
    {
        auto const found = std::find_if(std::begin(ESCAPES), std::end(ESCAPES),
                                        [unit](auto const & escape) { return escape.first == unit; });
        if (found == std::end(ESCAPES))
            escaped.push_back(unit);
        else
            escaped.append(found->second);
    }
    return escaped;
}

} // namespace tool
