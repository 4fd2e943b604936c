#include "xml/XmlLayout.h"

#include "VekRef.h"

#include "LibraryText.h"
#include "WalkTree.h"
#include "xml/XmlNode.h"
#include "xml/XmlProlog.h"

#include <new>
#include <vector>

namespace tool
{

namespace
{

/// Keeps the children that are not to be removed, in time in proportion to their number.
template <class IsRemoved>
void RemoveChildren(IVekXMLElement & element, IsRemoved isRemoved)
{
    std::vector<CVekRef<IVekXMLElement>> kept;
    int const count = element.GetNumChildren();
    for (int i = 0; i < count; ++i)
    {
        IVekXMLElement * const child = element.GetChild(i);
        if (isRemoved(*child))
            continue;
        kept.push_back(CVekRef<IVekXMLElement>::Share(child));
    }
    if (kept.size() == static_cast<std::size_t>(count))
        return;
    element.RemoveAllChildren();
    for (CVekRef<IVekXMLElement> const & child : kept)
        element.AddChild(child.Get(), -1);
    if (static_cast<std::size_t>(element.GetNumChildren()) != kept.size())
        throw std::bad_alloc();
}

void RemoveParts(IVekXMLDocument & document, XmlPrologPart::Kind kind)
{
    std::wstring const prolog = PrologWithout(View(VekGetXMLProlog(document)), kind);
    std::wstring const epilog = PrologWithout(View(VekGetXMLEpilog(document)), kind);
    if (!VekSetXMLProlog(document, prolog.c_str()) || !VekSetXMLEpilog(document, epilog.c_str()))
        throw std::bad_alloc();
}

} // namespace

void RemoveLayout(IVekXMLElement & root)
{
    WalkTree(&root,
             [](IVekXMLElement * element, std::size_t)
             {
                 if (IsMixed(*element))
                     return false;
                 RemoveChildren(*element, [](IVekXMLElement const & child) { return KindOf(child) == XmlNode::Text; });
                 return true;
             });
}

void RemoveText(IVekXMLElement & root)
{
    auto const isText = [](IVekXMLElement const & child)
    { return KindOf(child) == XmlNode::Text || KindOf(child) == XmlNode::Reference; };
    WalkTree(&root,
             [isText](IVekXMLElement * element, std::size_t)
             {
                 RemoveChildren(*element, isText);
                 return true;
             });
}

void RemoveComments(IVekXMLDocument & document)
{
    RemoveParts(document, XmlPrologPart::Kind::Comment);
    WalkTree(document.GetRootElement(),
             [](IVekXMLElement * element, std::size_t)
             {
                 RemoveChildren(*element,
                                [](IVekXMLElement const & child) { return KindOf(child) == XmlNode::Comment; });
                 return true;
             });
}

void RemoveDocumentType(IVekXMLDocument & document)
{
    RemoveParts(document, XmlPrologPart::Kind::DocumentType);
    document.RemoveAllDTDRules();
    document.RemoveAllDTDAttributeLists();
    document.SetDocumentType(L"");
}

} // namespace tool
