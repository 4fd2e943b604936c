#pragma once

#include "xml/XmlItems.h"

namespace tool
{

/// Compares two documents whose parsers kept everything, and prints what differs: a line for each, which begins with
/// the path that the other commands take, or with a sign for what only one of them holds.
class XmlDifference
{
public:
    /// True when they are the same, but for what canonical forms don't tell.
    bool Compare(IVekXMLDocument const & first, IVekXMLDocument const & second);

private:
    using Element = IVekXMLElement const;
    // What is alike is looked for this far ahead.
    static constexpr std::size_t REACH = 256;

    /// Two elements, one of each document, and how far their children are compared.
    struct Level
    {
        std::wstring name;
        XmlItems first, second;
        std::size_t i = 0, j = 0;
    };

    void Enter(std::wstring const & name, Element & first, Element & second);
    void Step();
    /// Passes over items that only one of both has.
    bool Skip(Level & level);
    void CompareAttributes(Element & first, Element & second);
    void Report(wchar_t const * sign, std::wstring const & what);
    void ReportItem(wchar_t const * sign, XmlItem const & item);
    void ReportChange(std::wstring const & what, std::wstring_view before, std::wstring_view after);
    void Print(std::wstring const & line);
    /// To the element at hand, or to a child of it.
    std::wstring PathTo(std::wstring const & child) const;

    XmlFingerprints const * m_first = nullptr;
    XmlFingerprints const * m_second = nullptr;
    std::vector<Level> m_levels;
    bool m_isSame = true;
};

} // namespace tool
