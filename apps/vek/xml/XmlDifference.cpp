#include "xml/XmlDifference.h"

#include "Console.h"
#include "LibraryText.h"
#include "xml/XmlCanonical.h"
#include "xml/XmlPath.h"
#include "xml/XmlValue.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr std::size_t SHOWN = 80;         // characters of a value
constexpr std::size_t SHOWN_LEVELS = 100; // of a path

/// The index of an attribute of exactly this name, -1 for none.
int IndexOf(IVekXMLElement const & element, std::wstring_view name)
{
    int const index = FindAttribute(element, std::wstring(name));
    return index != -1 && View(element.GetAttributeName(index)) == name ? index : -1;
}

/// How far ahead the first item is for which it is true; 0 for none.
template <class Is>
std::size_t FindAhead(XmlItems const & items, std::size_t from, std::size_t reach, Is is)
{
    for (std::size_t ahead = 1; ahead <= reach && from + ahead < items.size(); ++ahead)
    {
        if (is(items[from + ahead]))
            return ahead;
    }
    return 0;
}

} // namespace

bool XmlDifference::Compare(IVekXMLDocument const & first, IVekXMLDocument const & second)
{
    if (Canonicalize(first).text == Canonicalize(second).text)
        return true;
    Element & a = *first.GetRootElement();
    Element & b = *second.GetRootElement();
    XmlFingerprints const ofFirst(a), ofSecond(b);
    m_first = &ofFirst;
    m_second = &ofSecond;
    if (View(a.GetName()) != View(b.GetName()))
        ReportChange(L"root element", View(a.GetName()), View(b.GetName()));
    Enter({}, a, b);
    while (!m_levels.empty())
        Step();
    if (m_isSame)
        Report(L"", L"comments or instructions in front of the root element, or behind it");
    return false;
}

void XmlDifference::Enter(std::wstring const & name, Element & first, Element & second)
{
    m_levels.push_back({name, m_first->ItemsOf(first), m_second->ItemsOf(second)});
    CompareAttributes(first, second);
}

void XmlDifference::Step()
{
    Level & level = m_levels.back();
    bool const isFirstDone = level.i == level.first.size(), isSecondDone = level.j == level.second.size();
    if (isFirstDone && isSecondDone)
        m_levels.pop_back();
    else if (isSecondDone)
        ReportItem(L"- ", level.first[level.i++]);
    else if (isFirstDone)
        ReportItem(L"+ ", level.second[level.j++]);
    else if (level.first[level.i].fingerprint == level.second[level.j].fingerprint)
    {
        ++level.i;
        ++level.j;
    }
    else if (!Skip(level))
    {
        XmlItem const & a = level.first[level.i++];
        XmlItem const & b = level.second[level.j++];
        if (a.kind == XmlNode::Element)
            Enter(a.name, *a.node, *b.node);
        else
            ReportChange(a.kind == XmlNode::Text      ? L"text"
                         : a.kind == XmlNode::Comment ? L"comment"
                                                      : L"processing instruction",
                         a.text, b.text);
    }
}

bool XmlDifference::Skip(Level & level)
{
    XmlItem const & a = level.first[level.i];
    XmlItem const & b = level.second[level.j];
    bool const isPair = a.IsLike(b);
    // A pair is one unless either has its very twin further on; text has too many of them.
    auto const isTwin = [isPair](XmlItem const & item, XmlItem const & other)
    { return item.kind != XmlNode::Text && (isPair ? item.fingerprint == other.fingerprint : item.IsLike(other)); };
    std::size_t const inSecond =
        FindAhead(level.second, level.j, REACH, [&](XmlItem const & other) { return isTwin(a, other); });
    std::size_t const inFirst = FindAhead(level.first, level.i, inSecond ? inSecond : REACH,
                                          [&](XmlItem const & other) { return isTwin(b, other); });
    bool const isOfOneName = a.kind == b.kind && (!a.node || View(a.node->GetName()) == View(b.node->GetName()));
    if (isOfOneName && !inFirst && !inSecond)
        return false;
    std::size_t const fromFirst = inFirst ? inFirst : inSecond ? 0 : 1;
    std::size_t const fromSecond = inFirst ? 0 : inSecond ? inSecond : 1;
    for (std::size_t n = 0; n < fromFirst; ++n)
        ReportItem(L"- ", level.first[level.i++]);
    for (std::size_t n = 0; n < fromSecond; ++n)
        ReportItem(L"+ ", level.second[level.j++]);
    return true;
}

void XmlDifference::CompareAttributes(Element & first, Element & second)
{
    for (int i = 0; i < first.GetNumAttributes(); ++i)
    {
        std::wstring const name(View(first.GetAttributeName(i)));
        std::wstring const value = ReadValue(View(first.GetAttributeValue(i)));
        int const other = IndexOf(second, name);
        if (other == -1)
            Report(L"- ", L"@" + Printable(name, SHOWN) + L": " + Quoted(value, SHOWN));
        else if (std::wstring const changed = ReadValue(View(second.GetAttributeValue(other))); changed != value)
            ReportChange(L"@" + Printable(name, SHOWN), value, changed);
    }
    for (int i = 0; i < second.GetNumAttributes(); ++i)
    {
        std::wstring const name(View(second.GetAttributeName(i)));
        if (IndexOf(first, name) == -1)
            Report(L"+ ",
                   L"@" + Printable(name, SHOWN) + L": " + Quoted(ReadValue(View(second.GetAttributeValue(i))), SHOWN));
    }
}

void XmlDifference::ReportItem(wchar_t const * sign, XmlItem const & item)
{
    if (item.kind == XmlNode::Element)
        Print(sign + PathTo(item.name));
    else
        Report(sign, (item.kind == XmlNode::Text      ? L"text: "
                      : item.kind == XmlNode::Comment ? L"comment: "
                                                      : L"processing instruction: ") +
                         Quoted(item.text, SHOWN));
}

void XmlDifference::ReportChange(std::wstring const & what, std::wstring_view before, std::wstring_view after)
{
    // Of long ones, from shortly before the difference on.
    auto const differs = std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first;
    std::size_t const same = static_cast<std::size_t>(differs - before.begin());
    std::size_t const skipped =
        std::max(before.size(), after.size()) > SHOWN && same > SHOWN / 4 ? same - SHOWN / 4 : 0;
    std::wstring const dots = skipped ? L"..." : L"";
    Report(L"", what + L": " + dots + Quoted(before.substr(skipped), SHOWN) + L" -> " + dots +
                    Quoted(after.substr(skipped), SHOWN));
}

void XmlDifference::Report(wchar_t const * sign, std::wstring const & what)
{
    Print(sign + PathTo({}) + L" " + what);
}

void XmlDifference::Print(std::wstring const & line)
{
    m_isSame = false;
    Console::Out().Write(line + L"\n");
}

std::wstring XmlDifference::PathTo(std::wstring const & child) const
{
    std::wstring path;
    for (std::size_t i = 1; i < m_levels.size() && i <= SHOWN_LEVELS; ++i)
        path += (i > 1 ? L"/" : L"") + Printable(m_levels[i].name, SHOWN);
    if (m_levels.size() > SHOWN_LEVELS + 1)
        path += L"/...";
    if (!child.empty())
        path += (path.empty() ? L"" : L"/") + Printable(child, SHOWN);
    return path.empty() ? L"/" : path;
}

} // namespace tool
