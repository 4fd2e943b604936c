#pragma once

#include "VekLib.h"
#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

/// Reads an XML file, with what is to be kept of it; on failure tells the user why and where, and gives null. Where
/// asked for, tells the code page of its encoding.
CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path, VEK_XML_KEEP keep = VEK_XML_KEEP_NOTHING,
                                 unsigned int * codePage = nullptr);

/// The new document of a parse that keeps so much; null for one that failed or ended early, which the parse's result
/// doesn't tell, as the parser's error does.
template <class Parse>
CVekRef<IVekXMLDocument> ReadXml(CVekXMLParser & parser, VEK_XML_KEEP keep, Parse parse)
{
    CVekRef<IVekXMLDocument> document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    if (document && parser.SetKeepAll(keep))
        parse(*document);
    if (parser.GetError().code != VEK_XML_ERROR_NONE)
        document.Reset();
    return document;
}

/// Tells the user why and where a file could not be parsed.
void FailAt(std::wstring const & path, VekXMLError const & error);

/// What was wrong, in words.
std::wstring Describe(VekXMLError const & error);

} // namespace tool
