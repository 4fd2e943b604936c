#include "VekCore.h"
#include "VekRef.h"

#include "base/LiveObjects.h"
#include "core/ProcessState.h"

#include <mutex>

// The kernel calls the container of a handler under the event-map lock, from any thread.

CVekEventHandlerContainer::CVekEventHandlerContainer()
{
    vek::CountBirth(vek::LiveClass::EventHandlerContainer);
}

CVekEventHandlerContainer::~CVekEventHandlerContainer()
{
    vek::CountEnd(vek::LiveClass::EventHandlerContainer);
    std::lock_guard const lock(vek::g_process.eventMapLock);
    RemoveEach();
    m_handlers.Free();
}

CVekEventHandler * CVekEventHandlerContainer::Add(CVekEventHandler * handler)
{
    if (!handler)
        return nullptr;
    std::lock_guard const lock(vek::g_process.eventMapLock);
    if (!m_handlers.Append(handler))
    {
        handler->Release();
        return nullptr;
    }
    handler->SetContainer(this);
    return handler;
}

void CVekEventHandlerContainer::Remove(CVekEventHandler * handler)
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    int const before = m_handlers.GetCount();
    for (int i = before; i-- > 0;)
    {
        if (m_handlers[i] == handler)
            m_handlers.RemoveAt(i);
    }
    if (m_handlers.GetCount() == before)
        return;
    // Nothing of the container is touched any more: the handler may end it while it is unsubscribed.
    handler->SetContainer(nullptr);
    // Kept: one Release, however often it was added.
    handler->Release();
}

void CVekEventHandlerContainer::RemoveAll()
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    auto const self = CVekRef<CVekEventHandlerContainer>::Share(this);
    RemoveEach();
}

void CVekEventHandlerContainer::RemoveEach()
{
    while (m_handlers.GetCount() > 0)
        Remove(m_handlers[0]);
}
