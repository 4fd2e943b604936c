#pragma once

#include "VekXML.h"

#include <cstdint>

namespace tool
{

/// What a tree of elements holds, counted in one walk.
struct XmlCount
{
    std::uint64_t elements = 0;
    std::uint64_t attributes = 0;
    std::uint64_t cdataSections = 0;
    std::uint64_t depth = 0;     // 1 for a lone root
    std::uint64_t tagLevels = 0; // the sum over all start and end tags of their level: what an indentation multiplies
};

XmlCount CountXml(IVekXMLElement * root);

} // namespace tool
