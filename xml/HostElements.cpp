#include "xml/HostElements.h"

#include "base/AddressTable.h"
#include "base/SpinLock.h"

#include <mutex>

namespace vek
{
namespace
{

// Never destroyed: elements of the host's own static lifetime leave at the very end.
union Addresses
{
    constexpr Addresses() noexcept : table() {}
    Addresses(Addresses const &) = delete;
    Addresses & operator=(Addresses const &) = delete;
    ~Addresses() {}

    AddressTable table;
};

constinit SpinLock g_lock;
constinit Addresses g_addresses;
constinit HostElements::Ending * g_endings = nullptr;

} // namespace

bool HostElements::Enter(CVekXMLElement & element) noexcept
{
    std::lock_guard const guard(g_lock);
    return g_addresses.table.Add(&element);
}

CVekPointerArray<CVekXMLElement> * HostElements::Leave(CVekXMLElement & element) noexcept
{
    std::lock_guard const guard(g_lock);
    g_addresses.table.Remove(&element);
    for (Ending const * ending = g_endings; ending; ending = ending->m_next)
    {
        if (ending->m_element == &element)
            return ending->m_list;
    }
    return nullptr;
}

bool HostElements::Has(void const * address) noexcept
{
    std::lock_guard const guard(g_lock);
    return g_addresses.table.Has(address);
}

HostElements::Ending::Ending(CVekXMLElement & element, CVekPointerArray<CVekXMLElement> & list) noexcept
    : m_element(&element), m_list(&list)
{
    std::lock_guard const guard(g_lock);
    m_next = g_endings;
    g_endings = this;
}

HostElements::Ending::~Ending()
{
    std::lock_guard const guard(g_lock);
    Ending ** link = &g_endings;
    while (*link != this)
        link = &(*link)->m_next;
    *link = m_next;
}

} // namespace vek
