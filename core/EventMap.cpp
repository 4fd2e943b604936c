#include "core/EventMap.h"

#include "core/EventEntry.h"

#include <string.h>

#include <new>

namespace vek
{

EventMap::~EventMap()
{
    while (m_entries.GetCount() > 0)
    {
        EventEntry * const entry = m_entries[0];
        m_entries.RemoveAt(0);
        delete entry;
    }
    m_entries.Free();
}

bool EventMap::Register(GUID const & id) noexcept
{
    bool found;
    int const index = Find(id, found);
    if (found)
        return false;
    auto * const entry = new (std::nothrow) EventEntry(id);
    if (entry && m_entries.Insert(index, entry))
        return true;
    delete entry;
    return false;
}

void EventMap::Unregister(GUID const & id) noexcept
{
    bool found;
    int const index = Find(id, found);
    if (!found)
        return;
    EventEntry * const entry = m_entries[index];
    m_entries.RemoveAt(index);
    delete entry;
}

EventEntry * EventMap::Get(GUID const & id) const noexcept
{
    bool found;
    int const index = Find(id, found);
    return found ? m_entries[index] : nullptr;
}

int EventMap::Find(GUID const & id, bool & found) const noexcept
{
    found = false;
    int low = 0;
    int high = m_entries.GetCount();
    while (low < high)
    {
        int const middle = low + (high - low) / 2;
        int const order = memcmp(&m_entries[middle]->Id(), &id, sizeof(GUID));
        if (order == 0)
        {
            found = true;
            return middle;
        }
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

} // namespace vek
