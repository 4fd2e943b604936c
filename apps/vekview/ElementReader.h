#pragma once

#include "Scene.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// What is wrong with a scene file, as lines for the user; only the first ones are kept.
class Problems
{
public:
    void Add(std::wstring text);
    bool None() const { return m_count == 0; }
    std::vector<std::wstring> const & Lines() const { return m_lines; }
    std::size_t Count() const { return m_count; }

private:
    std::vector<std::wstring> m_lines;
    std::size_t m_count = 0;
};

/// Reads an element's attributes, strictly: whatever is missing, malformed, out of range or unknown is a problem.
class ElementReader
{
public:
    /// No coordinate is larger.
    static constexpr double LARGEST = 1e9;

    /// The title names the element in problems, such as "box 2".
    ElementReader(IVekXMLElement const & element, std::wstring title, Problems & problems);

    bool Has(wchar_t const * attribute);
    /// Numbers separated by commas or blanks; with a problem, and empty, when it is not that many (0 for any number).
    std::vector<double> Numbers(wchar_t const * attribute, std::size_t count);
    Point RequiredPoint(wchar_t const * attribute);
    Point OptionalPoint(wchar_t const * attribute, Point const & otherwise);
    double OptionalNumber(wchar_t const * attribute, double otherwise, double least, double most);
    /// Three or four whole numbers from 0 to 255.
    Color OptionalColor(Color const & otherwise);
    std::wstring OptionalText(wchar_t const * attribute);
    /// The position of the attribute's value in a list of names; 0 when the attribute is missing.
    std::size_t OptionalChoice(wchar_t const * attribute, std::vector<std::wstring_view> const & names);

    std::wstring const & Title() const { return m_title; }
    void Complain(std::wstring const & text);
    /// Complains of attributes that nothing asked for. True when there was no problem with this element.
    bool Finish();

private:
    bool Find(wchar_t const * attribute, std::wstring & text);
    void ComplainOf(wchar_t const * attribute, std::wstring const & text);

    IVekXMLElement const & m_element;
    std::wstring m_title;
    Problems & m_problems;
    std::vector<std::wstring_view> m_known;
    bool m_good = true;
};

} // namespace tool
