#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

/// Reads an XML file; on failure tells the user why, after the library's own messages, and gives null.
CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path);

/// As LoadXml, but null without a word for a file that can't be read whole.
CVekRef<IVekXMLDocument> TryLoadXml(std::wstring const & path);

/// Why a document that was read without an error is still not a whole one (CVekXMLParser::IsComplete).
wchar_t const * WhyIncomplete(IVekXMLDocument const & document);

} // namespace tool
