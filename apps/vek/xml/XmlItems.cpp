#include "xml/XmlItems.h"

#include "LibraryText.h"
#include "xml/XmlPath.h"
#include "xml/XmlValue.h"

#include <algorithm>

namespace tool
{

namespace
{

std::uint64_t Mix(std::uint64_t state, std::uint64_t value)
{
    state = (state ^ value) * 0x9E3779B97F4A7C15ULL;
    return state ^ state >> 29;
}

std::uint64_t Mix(std::uint64_t state, std::wstring_view text)
{
    state = Mix(state, std::uint64_t{text.size()});
    for (wchar_t const unit : text)
        state = Mix(state, static_cast<std::uint64_t>(unit));
    return state;
}

std::wstring Folded(std::wstring_view name)
{
    std::wstring folded(name);
    for (wchar_t & unit : folded)
        unit = unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    return folded;
}

/// What tells an element from others of its name.
std::wstring IdentityOf(IVekXMLElement const & element)
{
    for (wchar_t const * const name : {L"id", L"xml:id", L"name"})
    {
        int const index = FindAttribute(element, name);
        if (index != -1)
            return std::wstring(View(element.GetAttributeValue(index)));
    }
    return {};
}

void Number(XmlItems & items)
{
    std::unordered_map<std::wstring, std::size_t> counts, numbers;
    for (XmlItem const & item : items)
        counts[Folded(item.name)] += item.kind == XmlNode::Element ? 1 : 0;
    for (XmlItem & item : items)
    {
        std::wstring const key = Folded(item.name);
        if (item.kind == XmlNode::Element && counts[key] > 1)
            item.name += L"[" + std::to_wstring(++numbers[key]) + L"]";
    }
}

} // namespace

bool XmlItem::IsLike(XmlItem const & other) const
{
    if (kind != other.kind)
        return false;
    return kind != XmlNode::Element ||
           (View(node->GetName()) == View(other.node->GetName()) && IdentityOf(*node) == IdentityOf(*other.node));
}

XmlFingerprints::XmlFingerprints(IVekXMLElement const & root)
{
    std::vector<std::pair<IVekXMLElement const *, int>> path = {{&root, 0}};
    while (!path.empty())
    {
        auto & [element, child] = path.back();
        if (child < element->GetNumChildren())
            path.emplace_back(element->GetChild(child++), 0);
        else
        {
            Add(*element);
            path.pop_back();
        }
    }
}

void XmlFingerprints::Add(IVekXMLElement const & element)
{
    std::uint64_t state = Mix(0, View(element.GetName()));
    std::uint64_t attributes = 0; // in any order
    for (int i = 0; i < element.GetNumAttributes(); ++i)
        attributes += Mix(Mix(1, View(element.GetAttributeName(i))), ReadValue(View(element.GetAttributeValue(i))));
    state = Mix(state, attributes);
    if (KindOf(element) != XmlNode::Element)
        state = Mix(state, Characters(element));
    else
    {
        for (XmlItem const & item : ItemsOf(element))
            state = Mix(state, item.fingerprint);
    }
    m_known[&element] = state;
}

XmlItems XmlFingerprints::ItemsOf(IVekXMLElement const & element) const
{
    XmlItems items;
    auto const addText = [&items](std::wstring_view text)
    {
        if (text.empty())
            return;
        if (items.empty() || items.back().kind != XmlNode::Text)
            items.push_back({XmlNode::Text, nullptr, {}, {}, 0});
        items.back().text += text;
        items.back().fingerprint = Mix(2, items.back().text);
    };
    addText(Characters(element));
    for (int i = 0; i < element.GetNumChildren(); ++i)
    {
        IVekXMLElement const & child = *element.GetChild(i);
        XmlNode const kind = KindOf(child);
        std::wstring const characters(kind == XmlNode::Element ? std::wstring_view() : Characters(child));
        if (kind == XmlNode::Text || kind == XmlNode::Section)
            addText(characters);
        else if (kind == XmlNode::Reference)
            addText(L"&" + characters + L";");
        else
            items.push_back({kind, &child, characters,
                             kind == XmlNode::Element ? std::wstring(View(child.GetName())) : std::wstring(),
                             Of(child)});
    }
    Number(items);
    return items;
}

} // namespace tool
