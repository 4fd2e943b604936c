#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

/// Reads an XML file; on failure tells the user why and where, and gives null.
CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path);

/// As LoadXml, but null without a word for a file that can't be read whole.
CVekRef<IVekXMLDocument> TryLoadXml(std::wstring const & path);

/// What was wrong, in words.
std::wstring Describe(VekXMLError const & error);

} // namespace tool
