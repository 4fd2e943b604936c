#pragma once

#include "VekXML.h"

#include "xml/XMLOutput.h"

namespace vek
{

/// Writes the document type declaration with its element rules and attribute lists. False when the nesting of groups
/// can't be followed for want of memory; failed writes are the output's.
bool WriteDocumentType(XMLOutput & output, IVekXMLDocument & document, int indentation) noexcept;

} // namespace vek
