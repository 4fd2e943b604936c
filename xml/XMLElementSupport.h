#pragma once

#include "VekXML.h"

namespace vek
{

/// The library's own element behind an interface pointer; null for a null pointer and for a foreign implementation. The
/// known element only tells what the library's elements look like, so that the usual case is one comparison.
CVekXMLElement * ToLibraryElement(IVekXMLElement * element, CVekXMLElement const & known) noexcept;

/// Has the XML manager make an element of that name and appends it to the parent, which gets the only reference to it.
/// Null when there is no manager or memory is exhausted.
IVekXMLElement * AddNewElement(IVekXMLElement & parent, wchar_t const * name) noexcept;

/// Logs a message whose one placeholder is "%s" although it is for an index: the index is given as its text.
void LogIndexAsText(wchar_t const * format, int index) noexcept;

} // namespace vek
