#include "xml/XmlNode.h"

#include "LibraryText.h"

#include <algorithm>

namespace tool
{

XmlNode KindOf(IVekXMLElement const & element)
{
    std::wstring_view const name = View(element.GetName());
    if (!name.starts_with(L'#'))
        return XmlNode::Element;
    return name == L"#text"               ? XmlNode::Text
           : name == L"#cdata-section"    ? XmlNode::Section
           : name == L"#entity-reference" ? XmlNode::Reference
           : name == L"#comment"          ? XmlNode::Comment
                                          : XmlNode::Instruction;
}

std::wstring_view Characters(IVekXMLElement const & element)
{
    return {reinterpret_cast<wchar_t const *>(element.GetCDATASection()),
            static_cast<std::size_t>(std::max(element.GetCDATASectionSize(), 0)) / sizeof(wchar_t)};
}

bool IsBlank(wchar_t unit)
{
    return unit == L' ' || unit == L'\n' || unit == L'\t' || unit == L'\r';
}

bool IsBlank(std::wstring_view text)
{
    return std::all_of(text.begin(), text.end(), [](wchar_t unit) { return IsBlank(unit); });
}

bool IsMixed(IVekXMLElement const & element)
{
    int const space = element.FindAttributeIndex(L"xml:space");
    bool hasMarkup = false, hasText = element.HasCDATASection(), hasBlanks = false;
    for (int i = 0; i < element.GetNumChildren() && !hasText; ++i)
    {
        IVekXMLElement const & child = *element.GetChild(i);
        XmlNode const kind = KindOf(child);
        bool const isBlank = kind == XmlNode::Text && IsBlank(Characters(child));
        hasBlanks |= isBlank;
        hasMarkup |= kind != XmlNode::Text;
        hasText = !isBlank && (kind == XmlNode::Text || kind == XmlNode::Section || kind == XmlNode::Reference);
    }
    return hasText || (hasBlanks && !hasMarkup) ||
           (space != -1 && View(element.GetAttributeValue(space)) == L"preserve");
}

} // namespace tool
