#pragma once

#include "VekCore.h"

#include "base/PointerList.h"

#include <guiddef.h>

namespace vek
{

/// One registered event and its subscriptions. The kernel calls it under the event-map lock, which its owning thread
/// may take again: handlers change the event, or end it, while they are being called.
class EventEntry
{
public:
    explicit EventEntry(GUID const & id) noexcept : m_id(id) {}
    EventEntry(EventEntry const &) = delete;
    EventEntry & operator=(EventEntry const &) = delete;
    /// Unsubscribes every handler.
    virtual ~EventEntry();

    GUID const & Id() const noexcept { return m_id; }

    /// Subscribes the handler once more and tells it; false when memory is exhausted.
    bool AddHandler(CVekEventHandler * handler);
    /// Ends all subscriptions of the handler, tells it and releases it once; nothing for one that is not subscribed.
    void RemoveHandler(CVekEventHandler * handler);
    /// Calls the handlers, the last subscribed first; true when any of them returned true. The entry may be gone then.
    bool Fire(CVekEventData * data);

private:
    using Node = PointerList<CVekEventHandler>::Node;

    /// A walk through the subscriptions, on the stack of Fire. Walks within walks are linked.
    struct Walk
    {
        explicit Walk(EventEntry & owner) noexcept;
        Walk(Walk const &) = delete;
        Walk & operator=(Walk const &) = delete;
        ~Walk();

        EventEntry * entry; // null once the entry is gone
        Node * next;        // the subscription to be called next
        Walk * outer;
    };

    GUID m_id;
    PointerList<CVekEventHandler> m_handlers;
    Walk * m_walks = nullptr;
};

} // namespace vek
