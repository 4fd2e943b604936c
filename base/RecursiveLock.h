#pragma once

#include <atomic>

namespace vek
{

/// A lock that its owner may take again, for sections of any length. Without others who wait it costs half of the
/// system's critical section. Made at compile time; Close gives back what waiting has made.
class RecursiveLock
{
public:
    constexpr RecursiveLock() noexcept = default;
    RecursiveLock(RecursiveLock const &) = delete;
    RecursiveLock & operator=(RecursiveLock const &) = delete;

    void lock() noexcept;
    void unlock() noexcept;
    /// Closes the event that waiters sleep on. The lock stays of use: the next who has to wait makes another.
    void Close() noexcept;

private:
    bool Take(unsigned int self) noexcept;
    void Wait(unsigned int self) noexcept;
    void Wake() noexcept;
    void * Event() noexcept;

    std::atomic<unsigned int> m_owner{0}; // the number of its thread; no thread has 0
    unsigned int m_depth = 0;             // how often the owner has taken it again
    std::atomic<unsigned int> m_sleepers{0};
    std::atomic<void *> m_event{nullptr};
};

} // namespace vek
