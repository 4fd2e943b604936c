#pragma once

#include "VekExport.h"

#include <guiddef.h>

namespace vek
{

/// One registered event.
class EventEntry
{
public:
    explicit EventEntry(GUID const & id) noexcept : m_id(id) {}
    EventEntry(EventEntry const &) = delete;
    EventEntry & operator=(EventEntry const &) = delete;
    virtual ~EventEntry() = default;

    GUID const & Id() const noexcept { return m_id; }

private:
    GUID m_id;
};

} // namespace vek
