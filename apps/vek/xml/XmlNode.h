#pragma once

#include "VekXML.h"

#include <cstddef>
#include <string_view>

namespace tool
{

/// What an element of a document stands for whose parser kept everything.
enum class XmlNode
{
    Element,
    Text,
    Section,
    Reference, // to an entity that isn't read
    Comment,
    Instruction
};

XmlNode KindOf(IVekXMLElement const & element);

/// The characters of its CDATA section, which are those of a text, a comment or the like.
std::wstring_view Characters(IVekXMLElement const & element);

bool IsBlank(wchar_t unit);
/// Whether there is nothing but white space.
bool IsBlank(std::wstring_view text);

/// Whether text stands between an element's children, or its white space is to be kept: then it is no layout.
bool IsMixed(IVekXMLElement const & element);

} // namespace tool
