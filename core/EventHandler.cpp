#include "VekLib.h"

#include "base/LiveObjects.h"

#include <guiddef.h>

#include <string.h>

namespace
{

// What the event of a handler is while it belongs to none.
constexpr GUID NOT_SUBSCRIBED = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

} // namespace

CVekEventData::~CVekEventData() = default;

CVekEventHandler::CVekEventHandler() : m_container(nullptr)
{
    vek::CountBirth(vek::LiveClass::EventHandler);
    static_assert(sizeof m_event == sizeof(GUID) && alignof(GUID) <= 4);
    memcpy(m_event, &NOT_SUBSCRIBED, sizeof m_event);
}

CVekEventHandler::~CVekEventHandler()
{
    vek::CountEnd(vek::LiveClass::EventHandler);
}

GUID const & CVekEventHandler::GetEvent() const
{
    return reinterpret_cast<GUID const &>(m_event);
}

void CVekEventHandler::OnSubscribed(GUID const & id)
{
    memmove(m_event, &id, sizeof m_event);
}

void CVekEventHandler::OnUnsubscribed()
{
    memcpy(m_event, &NOT_SUBSCRIBED, sizeof m_event);
    if (m_container)
        m_container->Remove(this);
}

void CVekEventHandler::SetContainer(CVekEventHandlerContainer * container)
{
    m_container = container;
    if (container || memcmp(m_event, &NOT_SUBSCRIBED, sizeof m_event) == 0)
        return;
    GUID const event = GetEvent(); // the handler forgets its own while it is unsubscribed
    getVekLibKernel()->RemoveEventHandler(event, this);
}
