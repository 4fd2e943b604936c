// The kernel's events. Every operation holds the event-map lock for its whole duration; the owning thread may take it
// again, so that handlers may call these operations.
#include "core/Kernel.h"

#include "core/EventEntry.h"
#include "core/EventMap.h"
#include "core/ProcessState.h"

#include <mutex>

bool CVekKernel::RegisterEvent(GUID const & id)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    return m_eventMap && m_eventMap->Register(id);
}

void CVekKernel::UnregisterEvent(GUID const & id)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    if (m_eventMap)
        m_eventMap->Unregister(id);
}

void CVekKernel::ReleaseEventMap()
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    vek::EventMap * const map = m_eventMap;
    m_eventMap = nullptr; // handlers that call the kernel while they are unsubscribed find no map
    delete map;
}

bool CVekKernel::IsEventRegistered(GUID const & id)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    return FindEvent(id) != nullptr;
}

bool CVekKernel::FireEvent(GUID const & id, CVekEventData * data)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    vek::EventEntry * const entry = FindEvent(id);
    return entry && entry->Fire(data);
}

bool CVekKernel::AddEventHandler(GUID const & id, CVekEventHandler * handler)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    vek::EventEntry * const entry = FindEvent(id);
    return entry && handler && entry->AddHandler(handler);
}

void CVekKernel::RemoveEventHandler(GUID const & id, CVekEventHandler * handler)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    if (vek::EventEntry * const entry = FindEvent(id))
        entry->RemoveHandler(handler);
}

vek::EventEntry * CVekKernel::FindEvent(GUID const & id) const
{
    return m_eventMap ? m_eventMap->Get(id) : nullptr;
}
