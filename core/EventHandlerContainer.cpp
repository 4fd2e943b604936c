#include "VekCore.h"

#include "core/Ref.h"

CVekEventHandlerContainer::CVekEventHandlerContainer() = default;

CVekEventHandlerContainer::~CVekEventHandlerContainer()
{
    RemoveEach();
    m_handlers.Free();
}

CVekEventHandler * CVekEventHandlerContainer::Add(CVekEventHandler * handler)
{
    if (!handler)
        return nullptr;
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
    auto const self = vek::Ref<CVekEventHandlerContainer>::Share(this);
    RemoveEach();
}

void CVekEventHandlerContainer::RemoveEach()
{
    while (m_handlers.GetCount() > 0)
        Remove(m_handlers[0]);
}
