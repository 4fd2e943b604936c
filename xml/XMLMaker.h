#pragma once

#include "VekXML.h"

#include "base/Pool.h"
#include "text/StringAccess.h"
#include "xml/XMLNameCache.h"

#include <stddef.h>

namespace vek
{

/// Makes the elements of one parse and what belongs to them, one behind the other in a row of the pool. Objects of one
/// stretch of it share the text of a name or a short value, which lasts as long as the last of them: a name in a file
/// can't take memory for longer than what stands beside it. All operations give null or false when memory is exhausted.
class XMLMaker
{
public:
    CVekXMLElement * MakeElement(wchar_t const * name) noexcept;
    /// With a section of those bytes. The name is a literal, whose address tells that it is the same again.
    CVekXMLElement * MakeNode(wchar_t const * name, void const * section, size_t size) noexcept;
    CVekXMLAttribute * MakeAttribute(XMLNameCache::Name & name, wchar_t const * value, int length) noexcept;
    /// Appends a child, whose reference goes to the parent. The first one makes room for so many.
    bool AppendChild(CVekXMLElement & parent, CVekXMLElement * child, int expected) noexcept
    {
        CVekPointerArray<CVekXMLElement> & children = parent.m_children;
        return (children.GetCount() < children.GetCapacity() || MakeRoomForChild(children, expected)) &&
               children.Append(child);
    }
    /// Makes room for so many more.
    bool ReserveAttributes(CVekXMLElement & element, int count) noexcept;
    /// As the element's AddCDATASection.
    bool AddSection(CVekXMLElement & element, unsigned char const * bytes, int size) noexcept;
    /// Nothing more is made.
    void End() noexcept { m_row.End(); }

private:
    struct Remembered
    {
        XMLSharedText shared;
        size_t length;
    };
    struct NodeName
    {
        wchar_t const * literal;
        size_t length;
        XMLSharedText shared;
    };
    static constexpr size_t REMEMBERED = 256;
    // Few values that are longer come again.
    static constexpr size_t SHORT_VALUE = 16;

    template <class T>
    bool MakeRoom(CVekPointerArray<T> & array, int count) noexcept;
    bool MakeRoomForChild(CVekPointerArray<CVekXMLElement> & children, int expected) noexcept;
    static void Embed(CVekXMLElement & element, char * place, void const * section, size_t size) noexcept;
    Remembered & Remember(wchar_t const * text, size_t length) noexcept;
    CVekString<wchar_t> Share(XMLSharedText & shared, char * place, wchar_t const * text, size_t length) const noexcept;
    bool IsKnown(XMLSharedText const & shared) const noexcept { return shared.stretch == m_row.Stretch(); }

    // The known text is null where it is to be looked up.
    CVekXMLElement * Make(wchar_t const * name, size_t length, XMLSharedText * known, void const * section,
                          size_t size) noexcept;

    PoolRow m_row;
    CVekString<wchar_t> m_name = StringAccess<wchar_t>::Blockless(); // of the next node, empty in between
    NodeName m_node = {nullptr, 0, {nullptr, 0}};                    // the last one's
    Remembered m_texts[REMEMBERED] = {}; // the last ones met, each at the place that its characters tell
};

} // namespace vek
