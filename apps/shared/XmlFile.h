#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include <string>

namespace tool
{

/// Reads an XML file, with what is to be kept of it; on failure tells the user why and where, and gives null. Where
/// asked for, tells whether its encoding is one of Unicode or a part of UTF-8.
CVekRef<IVekXMLDocument> LoadXml(std::wstring const & path, VEK_XML_KEEP keep = VEK_XML_KEEP_NOTHING,
                                 bool * isUnicode = nullptr);

/// What was wrong, in words.
std::wstring Describe(VekXMLError const & error);

} // namespace tool
