#pragma once

#include "VekXML.h"

namespace tool
{

/// Removes the white space between elements where nothing else is text: what an indentation replaces. Elements that
/// hold text, or keep their white space, are left alone with all below them.
void RemoveLayout(IVekXMLElement & root);

/// Removes text that stands outside of CDATA sections.
void RemoveText(IVekXMLElement & root);

void RemoveComments(IVekXMLDocument & document);
void RemoveDocumentType(IVekXMLDocument & document);

} // namespace tool
