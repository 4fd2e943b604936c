#include "xml/XMLElementSupport.h"

#include "VekLib.h"
#include "VekRef.h"
#include "base/AsOwn.h"
#include "text/Names.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <windows.h>

namespace vek
{
namespace
{

// In front of a table made by this compiler stand the object's offset, 0 for an object with one table, and the address
// of its type's record, which begins with an address. Other compilers, with which hosts implement the interface, put
// something else there, and a dynamic cast would follow it.
bool HasTypeRecord(void const * const * table) noexcept
{
    auto const * const record = static_cast<uintptr_t const *>(table[-1]);
    MEMORY_BASIC_INFORMATION memory;
    return table[-2] == nullptr && reinterpret_cast<uintptr_t>(record) % sizeof(void *) == 0 &&
           VirtualQuery(record, &memory, sizeof memory) == sizeof memory && memory.State == MEM_COMMIT &&
           memory.Type == MEM_IMAGE && *record > 0xFFFF;
}

} // namespace

CVekXMLElement * ToLibraryElement(IVekXMLElement * element, CVekXMLElement const & known) noexcept
{
    if (!element)
        return nullptr;
    auto const * const table = static_cast<void const * const *>(TableOf(*element));
    if (table == TableOf(known))
        return static_cast<CVekXMLElement *>(element);
    return HasTypeRecord(table) ? dynamic_cast<CVekXMLElement *>(element) : nullptr;
}

IVekXMLElement * AddNewElement(IVekXMLElement & parent, wchar_t const * name) noexcept
{
    IVekKernel * const kernel = getVekLibKernel();
    IVekXMLManager * const manager = kernel ? kernel->GetXMLManager() : nullptr;
    auto const child = CVekRef<IVekXMLElement>::Adopt(manager ? manager->CreateXMLElement() : nullptr);
    if (!child)
        return nullptr;
    child->SetName(name);
    if (child->GetName().GetLength() != GivenText(name).length)
        return nullptr;
    int const before = parent.GetNumChildren();
    parent.AddChild(child.Get(), -1);
    if (parent.GetNumChildren() > before && child->GetRefCount() > 1)
        return child.Get();
    // The parent did not store it. A reference that was taken for it stays with the element, which nobody else knows.
    while (child->GetRefCount() > 1)
        child->Release();
    return nullptr;
}

void LogIndexAsText(wchar_t const * format, int index) noexcept
{
    wchar_t text[16];
    _snwprintf(text, sizeof text / sizeof text[0], L"%d", index);
    VekLogOutput(0, format, text);
}

} // namespace vek
