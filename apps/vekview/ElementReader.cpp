#include "ElementReader.h"

#include "Console.h"
#include "LibraryText.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <utility>

namespace tool
{

namespace
{

constexpr std::size_t MOST_LINES = 20;

bool IsSeparator(wchar_t unit)
{
    return unit == L',' || unit == L' ' || unit == L'\t' || unit == L'\r' || unit == L'\n';
}

/// False for anything but numbers in range, separated.
bool ParseNumbers(std::wstring const & text, std::vector<double> & numbers)
{
    wchar_t const * place = text.c_str();
    for (;;)
    {
        while (IsSeparator(*place))
            ++place;
        if (*place == 0)
            return place == text.c_str() + text.size();
        wchar_t * end = nullptr;
        double const number = std::wcstod(place, &end);
        if (end == place || !(std::fabs(number) <= ElementReader::LARGEST) || (*end != 0 && !IsSeparator(*end)))
            return false;
        numbers.push_back(number);
        place = end;
    }
}

} // namespace

void Problems::Add(std::wstring text)
{
    if (++m_count <= MOST_LINES)
        m_lines.push_back(std::move(text));
}

ElementReader::ElementReader(IVekXMLElement const & element, std::wstring title, Problems & problems)
    : m_element(element), m_title(std::move(title)), m_problems(problems)
{
}

bool ElementReader::Has(wchar_t const * attribute)
{
    return m_element.FindAttributeIndex(attribute) >= 0;
}

bool ElementReader::Find(wchar_t const * attribute, std::wstring & text)
{
    m_known.emplace_back(attribute);
    CVekString<wchar_t> value;
    if (!m_element.GetAttributeValue(attribute, value, L""))
        return false;
    text = View(value);
    return true;
}

void ElementReader::Complain(std::wstring const & text)
{
    m_good = false;
    m_problems.Add(m_title + L": " + text);
}

void ElementReader::ComplainOf(wchar_t const * attribute, std::wstring const & text)
{
    Complain(std::wstring(L"attribute \"") + attribute + L"\" " + text);
}

std::vector<double> ElementReader::Numbers(wchar_t const * attribute, std::size_t count)
{
    std::wstring text;
    std::vector<double> numbers;
    if (!Find(attribute, text))
    {
        ComplainOf(attribute, L"is missing");
    }
    else if (!ParseNumbers(text, numbers) || (count != 0 && numbers.size() != count))
    {
        numbers.clear();
        std::wstring const wanted = count == 0   ? L"numbers"
                                    : count == 1 ? L"a number"
                                                 : Format(L"%u numbers", static_cast<unsigned int>(count));
        ComplainOf(attribute, L"is not " + wanted + L" up to 1e9: \"" + Printable(text, 60) + L"\"");
    }
    return numbers;
}

Point ElementReader::RequiredPoint(wchar_t const * attribute)
{
    std::vector<double> const numbers = Numbers(attribute, 3);
    return numbers.empty() ? Point() : Point(numbers[0], numbers[1], numbers[2]);
}

Point ElementReader::OptionalPoint(wchar_t const * attribute, Point const & otherwise)
{
    m_known.emplace_back(attribute);
    return Has(attribute) ? RequiredPoint(attribute) : otherwise;
}

double ElementReader::OptionalNumber(wchar_t const * attribute, double otherwise, double least, double most)
{
    m_known.emplace_back(attribute);
    if (!Has(attribute))
        return otherwise;
    std::vector<double> const numbers = Numbers(attribute, 1);
    if (numbers.empty())
        return otherwise;
    if (numbers[0] >= least && numbers[0] <= most)
        return numbers[0];
    ComplainOf(attribute, Format(L"is not between %g and %g", least, most));
    return otherwise;
}

Color ElementReader::OptionalColor(Color const & otherwise)
{
    constexpr wchar_t const * ATTRIBUTE = L"color";
    m_known.emplace_back(ATTRIBUTE);
    if (!Has(ATTRIBUTE))
        return otherwise;
    std::vector<double> const numbers = Numbers(ATTRIBUTE, 0);
    auto const isByte = [](double n) { return n >= 0 && n <= 255 && n == std::floor(n); };
    if (numbers.size() >= 3 && numbers.size() <= 4 && std::all_of(numbers.begin(), numbers.end(), isByte))
        return Color(static_cast<unsigned char>(numbers[0]), static_cast<unsigned char>(numbers[1]),
                     static_cast<unsigned char>(numbers[2]), 255);
    if (m_good)
        ComplainOf(ATTRIBUTE, L"is not 3 or 4 whole numbers from 0 to 255");
    return otherwise;
}

std::wstring ElementReader::OptionalText(wchar_t const * attribute)
{
    std::wstring text;
    Find(attribute, text);
    return text;
}

std::size_t ElementReader::OptionalChoice(wchar_t const * attribute, std::vector<std::wstring_view> const & names)
{
    std::wstring text, wanted;
    if (!Find(attribute, text))
        return 0;
    auto const found = std::find(names.begin(), names.end(), text);
    if (found != names.end())
        return static_cast<std::size_t>(found - names.begin());
    for (std::wstring_view const name : names)
        wanted.append(wanted.empty() ? L"" : L" or ").append(L"\"").append(name).append(L"\"");
    ComplainOf(attribute, L"is not " + wanted + L": \"" + Printable(text, 60) + L"\"");
    return 0;
}

bool ElementReader::Finish()
{
    for (int i = 0; i < m_element.GetNumAttributes(); ++i)
    {
        CVekString<wchar_t> const & name = m_element.GetAttributeName(i);
        if (std::find(m_known.begin(), m_known.end(), View(name)) == m_known.end())
            Complain(L"unknown attribute \"" + PrintableName(name) + L"\"");
    }
    return m_good;
}

} // namespace tool
