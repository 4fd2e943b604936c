#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

struct SaveOptions
{
    int indentation = 3;
    bool noDocumentType = false;
};

/// Writes a document so that either the whole new file stands at the path or nothing has changed there: it is written
/// beside it, read back and compared first. Takes the document, whose memory the comparison needs. False after telling
/// the user why.
bool SaveXml(CVekRef<IVekXMLDocument> document, std::wstring const & path, SaveOptions const & options);

} // namespace tool
