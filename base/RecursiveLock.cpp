#include "base/RecursiveLock.h"

#include "base/ProcessEnd.h"

#include <windows.h>

namespace vek
{

void RecursiveLock::lock() noexcept
{
    unsigned int const self = GetCurrentThreadId();
    if (m_owner.load(std::memory_order_relaxed) == self)
        ++m_depth;
    else if (!Take(self))
        Wait(self);
}

void RecursiveLock::unlock() noexcept
{
    if (m_depth > 0)
    {
        --m_depth;
        return;
    }
    // A plain store, as an exchange costs as much as all the rest. This thread may therefore look for sleepers before
    // others see the lock free, and miss one who is just going to sleep: that one looks again by himself.
    m_owner.store(0, std::memory_order_release);
    if (m_sleepers.load(std::memory_order_relaxed) > 0)
        Wake();
}

bool RecursiveLock::Take(unsigned int self) noexcept
{
    unsigned int nobody = 0;
    return m_owner.compare_exchange_strong(nobody, self, std::memory_order_acquire, std::memory_order_relaxed);
}

void RecursiveLock::Wait(unsigned int self) noexcept
{
    constexpr int SPINS = 100;
    constexpr DWORD LOOK_MILLISECONDS = 5;
    for (;;)
    {
        for (int spins = 0; spins < SPINS; ++spins)
        {
            if (m_owner.load(std::memory_order_relaxed) == 0 && Take(self))
                return;
            YieldProcessor();
        }
        if (IsProcessEnding())
        {
            m_owner.store(self); // the one before is gone
            m_depth = 0;
            return;
        }
        HANDLE const event = Event();
        m_sleepers.fetch_add(1);
        bool const isTaken = Take(self);
        if (!isTaken && event)
            WaitForSingleObject(event, LOOK_MILLISECONDS);
        else if (!isTaken)
            Sleep(1);
        m_sleepers.fetch_sub(1);
        if (isTaken)
            return;
    }
}

void RecursiveLock::Wake() noexcept
{
    if (HANDLE const event = m_event.load(std::memory_order_acquire))
        SetEvent(event);
}

void * RecursiveLock::Event() noexcept
{
    void * event = m_event.load(std::memory_order_acquire);
    if (event)
        return event;
    HANDLE const made = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    if (!made || m_event.compare_exchange_strong(event, made))
        return made;
    CloseHandle(made); // another was faster
    return event;
}

void RecursiveLock::Close() noexcept
{
    if (HANDLE const event = m_event.exchange(nullptr))
        CloseHandle(event);
}

} // namespace vek
