#include "XmlFile.h"

#include "Console.h"
#include "FileErrors.h"

#include <algorithm>
#include <iterator>

namespace tool
{

namespace
{

constexpr unsigned int UNICODE_PAGES[] = {0, 65001, 1200, 1201, 20127};

} // namespace

CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path, VEK_XML_KEEP keep, bool * isUnicode)
{
    CVekXMLParser parser;
    CVekRef<IVekXMLDocument> document =
        ReadXml(parser, keep, [&](IVekXMLDocument & target) { parser.ParseXMLFile(path.c_str(), &target); });
    if (isUnicode)
        *isUnicode = std::find(std::begin(UNICODE_PAGES), std::end(UNICODE_PAGES), parser.GetSourceCodePage()) !=
                     std::end(UNICODE_PAGES);
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
