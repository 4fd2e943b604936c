#pragma once

#include "VekEdit.h"

#include <string>
#include <vector>

namespace tool
{

/// Changes of a document whose parser kept everything. They throw when memory is exhausted.

/// Replaces the characters of a text or the like.
void SetCharacters(IVekXMLElement & node, std::wstring const & text);
/// Sets the attribute of that index, -1 for a new one, to a value that is given as it is.
void SetValue(IVekXMLElement & element, int index, std::wstring const & name, std::wstring const & value);
/// Gives the attribute of that index another name.
void RenameValue(IVekXMLElement & element, int index, std::wstring const & newName);
/// A new child, the last one, with such characters.
IVekXMLElement & AddNamed(IVekXMLElement & parent, wchar_t const * name, std::wstring const & text);

/// The elements from the root to one below it, both included; parsed ones know of no parents.
std::vector<IVekXMLElement *> WayTo(IVekXMLElement & root, IVekXMLElement const & element);

} // namespace tool
