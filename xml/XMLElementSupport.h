#pragma once

#include "VekXML.h"

#include "base/AsOwn.h"

#include <atomic>

namespace vek
{

/// What IsPlain compares with first; null until it has met a table that is not equal.
extern std::atomic<void const *> plainTable;
bool IsPlainTable(void const * table) noexcept;

/// Whether the element's class is exactly the library's, so that nothing of it is overridden.
inline bool IsPlain(IVekXMLElement const & element) noexcept
{
    void const * const table = TableOf(element);
    return table == plainTable.load(std::memory_order_relaxed) || IsPlainTable(table);
}

/// The library's own element behind an interface pointer, or one of a class that a host derived from it; null for a
/// null pointer and for a foreign implementation, of which nothing but the address of its table is read.
CVekXMLElement * ToLibraryElement(IVekXMLElement * element) noexcept;

/// Has the XML manager make an element of that name and appends it to the parent, which gets the only reference to it.
/// Null when there is no manager or memory is exhausted.
IVekXMLElement * AddNewElement(IVekXMLElement & parent, wchar_t const * name) noexcept;

/// An empty text that holds no memory and is never destroyed, so that references to it stay good to the end.
CVekString<wchar_t> const & EmptyText() noexcept;

/// Logs a message whose one placeholder is "%s" although it is for an index: the index is given as its text.
void LogIndexAsText(wchar_t const * format, int index) noexcept;

} // namespace vek
