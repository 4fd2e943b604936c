#include "xml/XmlCount.h"

#include "WalkTree.h"

namespace tool
{

XmlCount CountXml(IVekXMLElement * root)
{
    XmlCount count;
    WalkTree(root,
             [&count](IVekXMLElement * element, std::size_t level)
             {
                 bool const hasContent = element->GetNumChildren() > 0 || element->HasCDATASection();
                 ++count.elements;
                 count.attributes += static_cast<std::uint64_t>(element->GetNumAttributes());
                 count.cdataSections += element->HasCDATASection() ? 1 : 0;
                 count.depth = level >= count.depth ? level + 1 : count.depth;
                 count.tagLevels += hasContent ? 2 * level : level;
                 return true;
             });
    return count;
}

} // namespace tool
