#include "xml/XmlGet.h"

#include "Console.h"
#include "LibraryText.h"
#include "WalkTree.h"
#include "XmlFile.h"
#include "xml/XmlNode.h"
#include "xml/XmlPath.h"
#include "xml/XmlValue.h"

namespace tool
{

namespace
{

/// The text of an element and of all below it.
std::wstring TextOf(IVekXMLElement & element)
{
    std::wstring text;
    WalkTree(&element,
             [&text](IVekXMLElement const * node, std::size_t)
             {
                 XmlNode const kind = KindOf(*node);
                 std::wstring_view const characters = Characters(*node);
                 if (kind == XmlNode::Reference)
                     text.append(L"&").append(characters).append(L";");
                 else if (kind != XmlNode::Comment && kind != XmlNode::Instruction)
                     text += characters;
                 return true;
             });
    return text;
}

} // namespace

int RunXmlGet(std::wstring const & path, std::wstring const & elementPath,
              std::optional<std::wstring> const & attribute)
{
    CVekRef<IVekXMLDocument> const document = LoadXml(path, VEK_XML_KEEP_ALL);
    XmlPath way;
    if (!document)
        return EXIT_FAILED;
    if (!way.Parse(elementPath))
        return Fail(path, Quoted(elementPath) + L" is no path");
    IVekXMLElement * const element = way.Find(*document->GetRootElement());
    if (!element)
        return Fail(path, L"no element " + Quoted(elementPath));
    int const index = attribute ? FindAttribute(*element, *attribute) : -1;
    if (attribute && index == -1)
        return Fail(path, (way.Steps().empty() ? L"the root element" : Quoted(elementPath)) + L" has no attribute " +
                              Quoted(*attribute));
    std::wstring const value = attribute ? ReadValue(View(element->GetAttributeValue(index))) : TextOf(*element);
    Console & out = Console::Out();
    out.Write(out.IsConsole() ? Printable(value) : value);
    out.Write(L"\n");
    return EXIT_DONE;
}

} // namespace tool
