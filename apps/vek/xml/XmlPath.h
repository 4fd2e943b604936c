#pragma once

#include "VekXML.h"

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// The way from a document's root to an element: names separated by slashes, each with tests in brackets, as
/// "group[2]/mesh[@name='hull']".
class XmlPath
{
public:
    struct Test
    {
        std::size_t number = 0; // the one of those that passed the tests in front of it, from 1; 0: an attribute's test
        std::wstring attribute;
        std::wstring value;
        bool hasValue = false;
    };
    struct Step
    {
        std::wstring name; // "*" for any
        std::vector<Test> tests;
    };

    /// False for a text that is no path.
    bool Parse(std::wstring_view text);

    std::vector<Step> const & Steps() const { return m_steps; }
    /// The first element that the way leads to; null when there is none. The steps that were possible are counted, and
    /// the first element there is stored.
    IVekXMLElement * Find(IVekXMLElement & root, std::size_t & possible, IVekXMLElement *& last) const;
    IVekXMLElement * Find(IVekXMLElement & root) const;

private:
    std::vector<Step> m_steps;
};

/// The index of an attribute, -1 for none: that of exactly this name, or else one whose ASCII letters differ in case.
int FindAttribute(IVekXMLElement const & element, std::wstring const & name);

} // namespace tool
