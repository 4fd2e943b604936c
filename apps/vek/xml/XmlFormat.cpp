#include "xml/XmlFormat.h"

#include "Console.h"
#include "XmlFile.h"
#include "xml/XmlLayout.h"

namespace tool
{

int RunXmlFormat(std::wstring const & path, std::wstring const & target, FormatOptions const & options)
{
    unsigned int before = 0, after = 0;
    CVekRef<IVekXMLDocument> document = LoadXml(path, VEK_XML_KEEP_ALL, &before);
    if (!document)
        return EXIT_FAILED;
    if (options.noDocumentType)
        RemoveDocumentType(*document);
    if (options.stripComments)
        RemoveComments(*document);
    if (options.stripText)
        RemoveText(*document->GetRootElement());
    RemoveLayout(*document->GetRootElement());
    if (!SaveXml(std::move(document), target, options.indentation, &after))
        return EXIT_FAILED;
    if (after != before)
        Note(target, L"written as UTF-8");
    return EXIT_DONE;
}

} // namespace tool
