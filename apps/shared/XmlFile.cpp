#include "XmlFile.h"

#include "Console.h"
#include "FileErrors.h"

namespace tool
{

CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path, VEK_XML_KEEP keep, unsigned int * codePage)
{
    CVekXMLParser parser;
    CVekRef<IVekXMLDocument> document =
        ReadXml(parser, keep, [&](IVekXMLDocument & target) { parser.ParseXMLFile(path.c_str(), &target); });
    if (codePage)
        *codePage = parser.GetSourceCodePage();
    if (!document)
        FailAt(path, parser.GetError());
    return document;
}

void FailAt(std::wstring const & path, VekXMLError const & error)
{
    FailAt(path, error.line, error.column,
           error.code == VEK_XML_ERROR_FILE ? WhyUnreadable(path, Describe(error).c_str()) : Describe(error));
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
