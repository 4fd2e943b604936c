#include "xml/XmlDiff.h"

#include "Console.h"
#include "XmlFile.h"
#include "xml/XmlCanonical.h"
#include "xml/XmlDifference.h"
#include "xml/XmlLayout.h"

namespace tool
{

int RunXmlCanon(std::wstring const & path)
{
    CVekRef<IVekXMLDocument> const document = LoadXml(path, VEK_XML_KEEP_ALL);
    if (!document)
        return EXIT_FAILED;
    XmlCanonical const canonical = Canonicalize(*document);
    if (canonical.references > 0)
        return Fail(path, L"has no canonical form: it refers to an entity that isn't read");
    Console::Out().WriteBytes(canonical.text);
    return EXIT_DONE;
}

int RunXmlDiff(std::wstring const & first, std::wstring const & second, bool ignoresLayout)
{
    CVekRef<IVekXMLDocument> const a = LoadXml(first, VEK_XML_KEEP_ALL);
    CVekRef<IVekXMLDocument> const b = a ? LoadXml(second, VEK_XML_KEEP_ALL) : nullptr;
    if (!b)
        return EXIT_FAILED;
    if (ignoresLayout)
    {
        RemoveLayout(*a->GetRootElement());
        RemoveLayout(*b->GetRootElement());
    }
    return XmlDifference().Compare(*a, *b) ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
