#include "xml/XmlPath.h"

#include "LibraryText.h"
#include "xml/XmlNode.h"
#include "xml/XmlValue.h"

#include <algorithm>

namespace tool
{

namespace
{

using Elements = std::vector<IVekXMLElement *>;

constexpr std::size_t LARGEST_NUMBER = 0x7FFFFFFF;

bool ParseNumber(std::wstring_view text, std::size_t & number)
{
    for (wchar_t const unit : text)
    {
        if (unit < L'0' || unit > L'9' || number > LARGEST_NUMBER / 10)
            return false;
        number = number * 10 + (unit - L'0');
    }
    return number > 0;
}

/// What stands in brackets.
bool ParseTest(std::wstring_view text, XmlPath::Test & test)
{
    if (!text.starts_with(L'@'))
        return ParseNumber(text, test.number);
    std::size_t const equals = text.find(L'=');
    test.attribute = text.substr(1, equals - (equals == text.npos ? 0 : 1));
    test.hasValue = equals != text.npos;
    if (!test.hasValue)
        return IsXmlName(test.attribute);
    std::wstring_view const quoted = text.substr(equals + 1);
    if (quoted.size() < 2 || quoted.front() != quoted.back() || (quoted[0] != L'\'' && quoted[0] != L'"'))
        return false;
    test.value = quoted.substr(1, quoted.size() - 2);
    return IsXmlName(test.attribute);
}

/// Where a step or a test ends: at one of the marks outside of brackets and quotes.
std::size_t FindEnd(std::wstring_view text, std::wstring_view marks)
{
    wchar_t quote = 0;
    bool isTest = false;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (quote)
            quote = text[i] == quote ? L'\0' : quote;
        else if (isTest && (text[i] == L'\'' || text[i] == L'"'))
            quote = text[i];
        else if (text[i] == L'[')
            isTest = true;
        else if (text[i] == L']' && isTest && marks.find(L']') == marks.npos)
            isTest = false;
        else if ((!isTest || text[i] == L']') && marks.find(text[i]) != marks.npos)
            return i;
    }
    return text.size();
}

bool ParseStep(std::wstring_view text, XmlPath::Step & step)
{
    std::size_t const tests = std::min(text.find(L'['), text.size());
    step.name = text.substr(0, tests);
    text.remove_prefix(tests);
    while (!text.empty())
    {
        std::size_t const end = FindEnd(text, L"]");
        if (text[0] != L'[' || end == text.size() || !ParseTest(text.substr(1, end - 1), step.tests.emplace_back()))
            return false;
        text.remove_prefix(end + 1);
    }
    return !step.name.empty();
}

bool Passes(IVekXMLElement const & element, XmlPath::Test const & test)
{
    int const index = FindAttribute(element, test.attribute);
    return index != -1 && (!test.hasValue || ReadValue(View(element.GetAttributeValue(index))) == test.value);
}

void AddMatches(IVekXMLElement & parent, XmlPath::Step const & step, Elements & found)
{
    Elements matches;
    for (int i = 0; i < parent.GetNumChildren(); ++i)
    {
        IVekXMLElement * const child = parent.GetChild(i);
        if (KindOf(*child) == XmlNode::Element &&
            (step.name == L"*" || child->GetName().Compare(step.name.c_str(), false) == 0))
            matches.push_back(child);
    }
    for (XmlPath::Test const & test : step.tests)
    {
        if (test.number == 0)
            std::erase_if(matches, [&test](IVekXMLElement const * element) { return !Passes(*element, test); });
        else
            matches = test.number <= matches.size() ? Elements{matches[test.number - 1]} : Elements();
    }
    found.insert(found.end(), matches.begin(), matches.end());
}

} // namespace

bool XmlPath::Parse(std::wstring_view text)
{
    while (!text.empty())
    {
        std::size_t const end = FindEnd(text, L"/\\");
        if (end > 0 && !ParseStep(text.substr(0, end), m_steps.emplace_back()))
            return false;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return true;
}

IVekXMLElement * XmlPath::Find(IVekXMLElement & root, std::size_t & possible, IVekXMLElement *& last) const
{
    Elements current = {&root};
    for (possible = 0; possible < m_steps.size(); ++possible)
    {
        Elements next;
        for (IVekXMLElement * const element : current)
            AddMatches(*element, m_steps[possible], next);
        last = current.front();
        if (next.empty())
            return nullptr;
        current = std::move(next);
    }
    return last = current.front();
}

IVekXMLElement * XmlPath::Find(IVekXMLElement & root) const
{
    std::size_t possible = 0;
    IVekXMLElement * last = nullptr;
    return Find(root, possible, last);
}

int FindAttribute(IVekXMLElement const & element, std::wstring const & name)
{
    int const found = element.FindAttributeIndex(name.c_str());
    if (found == -1 || View(element.GetAttributeName(found)) == name)
        return found;
    for (int i = 0; i < element.GetNumAttributes(); ++i)
    {
        if (View(element.GetAttributeName(i)) == name)
            return i;
    }
    return found;
}

} // namespace tool
