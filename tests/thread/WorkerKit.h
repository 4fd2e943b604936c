// What the tests of worker threads share.
#pragma once

#include "VekLib.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>

namespace WorkerKit
{

// Polls until it is so; false after some seconds.
template <class Condition>
bool Until(Condition const & condition)
{
    for (int i = 0; i < 5000; ++i)
    {
        if (condition())
            return true;
        Sleep(2);
    }
    return false;
}

class Ticks final : public CVekRefCounted<IVekThread::TickCallback>
{
public:
    void OnTick() override
    {
        ++count;
        if (onTick)
            onTick();
    }
    std::atomic<int> count = 0;
    std::function<void()> onTick;
};

class Command final : public CVekThreadCommand
{
public:
    explicit Command(std::function<void()> work, bool autoDelete = true)
        : CVekThreadCommand(autoDelete), m_work(std::move(work))
    {
    }
    ~Command() override { ++s_destroyed; }
    void Execute() override { m_work(); }

    static inline std::atomic<int> s_destroyed = 0;

private:
    std::function<void()> m_work;
};

// Waits until it is opened, for good.
struct Gate
{
    void Open() { signal.SetSignal(); }
    void Pass() const { WaitForSingleObject(signal.GetHandle(), INFINITE); }
    CVekSignal signal;
};

class Workers : public testing::Test
{
protected:
    CVekLibrary m_library;

    using Thread = CVekRef<IVekThread>;

    Thread Create(unsigned int interval = 0, unsigned int limit = 0, Ticks * callback = nullptr)
    {
        return Thread(kernel.CreateThread(L"worker", callback, true, interval, limit));
    }
    Thread Started(unsigned int interval = 0, unsigned int limit = 0, Ticks * callback = nullptr)
    {
        Thread thread = Create(interval, limit, callback);
        EXPECT_EQ(thread->Start(), 1u);
        return thread;
    }
    // In its last tick, until the gate is opened.
    Thread InLastTick(Ticks & ticks, Gate & gate)
    {
        ticks.count = 0;
        ticks.onTick = [&gate] { gate.Pass(); };
        Thread thread = Started(0, 1, &ticks);
        EXPECT_TRUE(Until([&] { return ticks.count == 1; }));
        return thread;
    }
    static bool HasEnded(Thread const & thread)
    {
        return Until([&] { return !thread->GetHandle() && !thread->IsRunning(); });
    }
    // Whether it still ticks.
    static bool Ticking(Ticks const & ticks)
    {
        int const before = ticks.count;
        return Until([&] { return ticks.count > before; });
    }
    static bool Silent(Ticks const & ticks)
    {
        int const before = ticks.count;
        Sleep(60);
        return ticks.count == before;
    }

    IVekKernel & kernel = *getVekLibKernel();
};

} // namespace WorkerKit
