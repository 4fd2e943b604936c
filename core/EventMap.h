#pragma once

#include "VekCore.h"

namespace vek
{

class EventEntry;

/// The registered events, ordered by the sixteen bytes of their identifiers. The kernel calls it under the event-map
/// lock. Handlers may call the kernel while an event ends: an entry is out of the map before it is deleted.
class EventMap
{
public:
    EventMap() noexcept = default;
    EventMap(EventMap const &) = delete;
    EventMap & operator=(EventMap const &) = delete;
    ~EventMap();

    /// Adds an event; false when it is there already or there is no memory for it.
    bool Register(GUID const & id) noexcept;
    /// Deletes an event; nothing when it is not there.
    void Unregister(GUID const & id) noexcept;
    /// The event's entry; null when it is not there.
    EventEntry * Get(GUID const & id) const noexcept;

private:
    /// The index of the event; the complement of the place where it belongs when it is not there.
    int Find(GUID const & id) const noexcept;

    CVekPointerArray<EventEntry> m_entries;
};

} // namespace vek
