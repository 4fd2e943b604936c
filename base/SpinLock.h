#pragma once

#include <atomic>

namespace vek
{

/// A lock for sections of a few instructions; waits by spinning, then by giving the processor away. Not recursive. Made
/// at compile time, so it may guard what static constructors use.
class SpinLock
{
public:
    constexpr SpinLock() noexcept = default;
    SpinLock(SpinLock const &) = delete;
    SpinLock & operator=(SpinLock const &) = delete;

    void lock() noexcept
    {
        while (m_taken.exchange(true, std::memory_order_acquire))
            Wait();
    }
    bool try_lock() noexcept { return !m_taken.exchange(true, std::memory_order_acquire); }
    void unlock() noexcept { m_taken.store(false, std::memory_order_release); }

private:
    void Wait() noexcept;

    std::atomic<bool> m_taken{false};
};

} // namespace vek
