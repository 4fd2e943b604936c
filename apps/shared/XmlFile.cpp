#include "XmlFile.h"

#include "VekLib.h"

#include "Console.h"
#include "FileErrors.h"

namespace tool
{

namespace
{

enum class Reading
{
    Done,
    Failed,
    Incomplete
};

CVekRef<IVekXMLDocument> CreateDocument()
{
    return CVekRef<IVekXMLDocument>(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
}

Reading Read(std::wstring const & path, IVekXMLDocument & document)
{
    // The interface's parser takes a file that ends early for a good one; the class can tell.
    CVekXMLParser parser;
    if (!parser.ParseXMLFile(path.c_str(), &document))
        return Reading::Failed;
    return parser.IsComplete() ? Reading::Done : Reading::Incomplete;
}

} // namespace

CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path)
{
    CVekRef<IVekXMLDocument> document = CreateDocument();
    Reading const reading = document ? Read(path, *document) : Reading::Failed;
    if (reading == Reading::Done)
        return document;
    Fail(path,
         reading == Reading::Incomplete ? WhyIncomplete(*document) : WhyUnreadable(path, L"can't be read as XML"));
    return nullptr;
}

CVekRef<IVekXMLDocument> TryLoadXml(std::wstring const & path)
{
    CVekSetDebugOutputLevel const silence(-1);
    CVekRef<IVekXMLDocument> document = CreateDocument();
    if (document && Read(path, *document) != Reading::Done)
        document.Reset();
    return document;
}

wchar_t const * WhyIncomplete(IVekXMLDocument const & document)
{
    return document.GetRootElement()->GetName().IsEmpty() ? L"contains no element"
                                                          : L"ends before its outermost element is closed";
}

} // namespace tool
