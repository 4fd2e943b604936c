#pragma once

#include "VekXML.h"

#include <string>

namespace tool
{

/// The Canonical XML 1.0, with comments, of a document whose parser kept everything. A reference to an entity that
/// isn't read stays one, and is counted.
struct XmlCanonical
{
    std::string text;
    std::size_t references = 0;
};

XmlCanonical Canonicalize(IVekXMLDocument const & document);

} // namespace tool
