#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

constexpr int USUAL_INDENTATION = 3;

/// Writes a document with all that is in it, indented where its white space is only layout, which has to be removed,
/// so that either the whole new file stands at the path or nothing has changed there: it is read back and compared
/// first. Takes the document, whose memory the comparison needs. Tells
/// the code page of its encoding. False after telling the user why.
bool SaveXml(CVekRef<IVekXMLDocument> document, std::wstring const & path, int indentation,
             unsigned int * codePage = nullptr);

} // namespace tool
