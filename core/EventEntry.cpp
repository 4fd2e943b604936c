#include "core/EventEntry.h"

#include "VekRef.h"

#include "base/Compiler.h"

// A walk unlinks itself before its end, which the compiler does not see across the handlers' calls.
VEK_IGNORE_WARNING("-Wdangling-pointer")

namespace vek
{

EventEntry::~EventEntry()
{
    // Whoever is walking stops, as the last handler is taken from before him, and does not come back here.
    for (Walk * walk = m_walks; walk; walk = walk->outer)
        walk->entry = nullptr;
    while (!m_handlers.Empty())
        RemoveHandler(m_handlers.First()->Pointer());
}

bool EventEntry::AddHandler(CVekEventHandler * handler)
{
    if (!m_handlers.AppendTail(handler))
        return false;
    handler->AddRef();
    GUID const id = m_id; // the handler may end the event
    handler->OnSubscribed(id);
    return true;
}

void EventEntry::RemoveHandler(CVekEventHandler * handler)
{
    if (!m_handlers.Contains(handler))
        return;
    for (Walk * walk = m_walks; walk; walk = walk->outer)
    {
        while (walk->next && walk->next->Pointer() == handler)
            walk->next = walk->next->Previous();
    }
    m_handlers.Remove(handler);
    handler->OnUnsubscribed();
    // Kept: one Release, however often it was added.
    handler->Release();
}

EventEntry::Walk::Walk(EventEntry & owner) noexcept : entry(&owner), next(owner.m_handlers.Last()), outer(owner.m_walks)
{
    owner.m_walks = this;
}

EventEntry::Walk::~Walk()
{
    if (entry)
        entry->m_walks = outer;
}

bool EventEntry::Fire(CVekEventData * data)
{
    bool handled = false;
    Walk walk(*this);
    while (walk.next)
    {
        auto const handler = CVekRef<CVekEventHandler>::Share(walk.next->Pointer());
        walk.next = walk.next->Previous();
        if (handler->OnEvent(data))
            handled = true;
    }
    return handled;
}

} // namespace vek
