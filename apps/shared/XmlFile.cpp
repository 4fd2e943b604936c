#include "XmlFile.h"

#include "VekLib.h"

#include "Console.h"
#include "FileErrors.h"

namespace tool
{

namespace
{

CVekRef<IVekXMLDocument> CreateDocument()
{
    return CVekRef<IVekXMLDocument>(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
}

/// What the interface's parser doesn't tell: a file that ends early is a good one to it.
VekXMLError Read(std::wstring const & path, IVekXMLDocument * document)
{
    CVekXMLParser parser;
    if (document)
        parser.ParseXMLFile(path.c_str(), document);
    return parser.GetError();
}

} // namespace

CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path)
{
    CVekRef<IVekXMLDocument> document = CreateDocument();
    VekXMLError const error = Read(path, document.Get());
    if (error.code == VEK_XML_ERROR_NONE)
        return document;
    FailAt(path, error.line, error.column,
           error.code == VEK_XML_ERROR_FILE ? WhyUnreadable(path, Describe(error).c_str()) : Describe(error));
    return nullptr;
}

CVekRef<IVekXMLDocument> TryLoadXml(std::wstring const & path)
{
    CVekSetDebugOutputLevel const silence(-1);
    CVekRef<IVekXMLDocument> document = CreateDocument();
    if (Read(path, document.Get()).code != VEK_XML_ERROR_NONE)
        document.Reset();
    return document;
}

std::wstring Describe(VekXMLError const & error)
{
    switch (error.code)
    {
    case VEK_XML_ERROR_NOT_STARTED:
    case VEK_XML_ERROR_MEMORY:
        return L"is too large for memory";
    case VEK_XML_ERROR_FILE:
        return error.systemCode ? L"can't be read: " + ErrorText(error.systemCode) : L"can't be read";
    case VEK_XML_ERROR_EMPTY:
        return L"contains no element";
    default:
        return Printable(error.text);
    }
}

} // namespace tool
