#include "xml/XMLElementSupport.h"

#include "VekLib.h"
#include "VekRef.h"
#include "text/Names.h"
#include "xml/HostElements.h"

#include <stdio.h>

#include <iterator>
#include <utility>

namespace vek
{

constinit std::atomic<void const *> plainTable{nullptr};

bool IsPlainTable(void const * table) noexcept
{
    void const * const own = OwnTable<CVekXMLElement, IVekXMLElement>();
    plainTable.store(own, std::memory_order_relaxed);
    return table == own;
}

CVekXMLElement * ToLibraryElement(IVekXMLElement * element) noexcept
{
    return element && (IsPlain(*element) || HostElements::Has(element)) ? static_cast<CVekXMLElement *>(element)
                                                                        : nullptr;
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

CVekString<wchar_t> const & EmptyText() noexcept
{
    union Holder
    {
        Holder() : text() { CVekString<wchar_t> const block(std::move(text)); }
        ~Holder() {}

        CVekString<wchar_t> text;
    };
    static Holder const holder;
    return holder.text;
}

void LogIndexAsText(wchar_t const * format, int index) noexcept
{
    wchar_t text[16];
    _snwprintf(text, std::size(text), L"%d", index);
    VekLogOutput(0, format, text);
}

} // namespace vek
