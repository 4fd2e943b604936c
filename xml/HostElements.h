#pragma once

#include "VekXML.h"

namespace vek
{

/// Elements that were made by the class's public constructors may be of a class that a host has derived, whose table
/// tells nothing: their addresses are known here for as long as they live. The library's own ways of making elements
/// leave them out. Safe from any thread.
class HostElements
{
public:
    /// False when memory is exhausted: the element is not known then.
    static bool Enter(CVekXMLElement & element) noexcept;
    /// The element ends. Gives back the list that its children are to join, see Ending; null for none.
    static CVekPointerArray<CVekXMLElement> * Leave(CVekXMLElement & element) noexcept;
    static bool Has(void const * address) noexcept;

    /// While it lives, the children of the element, should it end, join a list instead of being released within the
    /// element's destructor: so a tree of such elements takes no recursion.
    class Ending
    {
    public:
        Ending(CVekXMLElement & element, CVekPointerArray<CVekXMLElement> & list) noexcept;
        Ending(Ending const &) = delete;
        Ending & operator=(Ending const &) = delete;
        ~Ending();

    private:
        friend class HostElements;

        CVekXMLElement const * m_element;
        CVekPointerArray<CVekXMLElement> * m_list;
        Ending * m_next;
    };
};

} // namespace vek
