#include "xml/XmlElements.h"

#include "VekLib.h"
#include "VekRef.h"

#include "WalkTree.h"
#include "xml/XmlValue.h"

#include <new>

namespace tool
{

void SetCharacters(IVekXMLElement & node, std::wstring const & text)
{
    node.RemoveCDATASection();
    if (!text.empty() && !node.AddCDATASection(reinterpret_cast<unsigned char const *>(text.data()),
                                               static_cast<int>(text.size() * sizeof(wchar_t))))
        throw std::bad_alloc();
}

void SetValue(IVekXMLElement & element, int index, std::wstring const & name, std::wstring const & value)
{
    if (index == -1)
    {
        index = element.GetNumAttributes();
        element.AddAttribute(name.c_str(), VEK_VARIANT(L""), -1);
    }
    element.SetAttributeValue(index, VEK_VARIANT(StoreValue(value).c_str()));
}

void RenameValue(IVekXMLElement & element, int index, std::wstring const & newName)
{
    CVekString<wchar_t> const name = element.GetAttributeName(index), stored = element.GetAttributeValue(index);
    if (VekReplaceXMLAttribute(&element, name, newName.c_str(), VEK_VARIANT(L"")))
        element.SetAttributeValue(element.FindAttributeIndex(newName.c_str()),
                                  VEK_VARIANT(static_cast<wchar_t const *>(stored)));
}

IVekXMLElement & AddNamed(IVekXMLElement & parent, wchar_t const * name, std::wstring const & text)
{
    CVekRef<IVekXMLElement> const element(getVekLibKernel()->GetXMLManager()->CreateXMLElement());
    if (!element)
        throw std::bad_alloc();
    element->SetName(name);
    SetCharacters(*element, text);
    int const count = parent.GetNumChildren();
    parent.AddChild(element.Get(), -1);
    if (parent.GetNumChildren() == count)
        throw std::bad_alloc();
    return *element;
}

std::vector<IVekXMLElement *> WayTo(IVekXMLElement & root, IVekXMLElement const & element)
{
    std::vector<IVekXMLElement *> way;
    bool isFound = false;
    WalkTree(&root,
             [&](IVekXMLElement * node, std::size_t level)
             {
                 if (isFound)
                     return false;
                 way.resize(level);
                 way.push_back(node);
                 isFound = node == &element;
                 return !isFound;
             });
    return way;
}

} // namespace tool
