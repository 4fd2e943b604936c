// Randomizer, CPU-usage meter and timer.
#include "VekLib.h"

#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

namespace
{

class Services : public testing::Test
{
protected:
    Services() { VekLibInit(); }
    ~Services() override { VekLibDeinit(); }

    IVekKernel & kernel = *getVekLibKernel();
};

} // namespace

TEST_F(Services, RandomValuesLieBetweenTheTwo)
{
    CVekRandomizer randomizer;
    struct Row
    {
        float low, high;
    };
    for (Row const row : {Row{-1, 1}, Row{3, -5}, Row{5, 5}, Row{0, 1e-30f}})
    {
        SCOPED_TRACE(row.low);
        std::srand(7);
        for (int i = 0; i < 2000; ++i)
        {
            float const value = randomizer.GetRandomValue(row.low, row.high);
            ASSERT_TRUE(value >= std::min(row.low, row.high) && value <= std::max(row.low, row.high)) << value;
        }
    }
    // One sequence, the runtime's own.
    std::srand(7);
    auto const part = static_cast<float>(std::rand() / 32767.0);
    std::srand(7);
    EXPECT_EQ(CallSlot<float>(&randomizer, 3, 2.0f, 10.0f), 2.0f + part * 8.0f);
}

TEST_F(Services, KeptANewRandomizerSeedsForAll)
{
    time_t second;
    int expected, value;
    do
    {
        second = time(nullptr);
        CVekRandomizer const randomizer;
        value = std::rand();
        std::srand(static_cast<unsigned int>(second));
        expected = std::rand();
    } while (time(nullptr) != second);
    EXPECT_EQ(value, expected);
}

TEST_F(Services, CPUUsageIsMeasuredAfterMoreThanASecond)
{
    IVekCPUUsage * const usage = kernel.CreateCPUUsage();
    struct Row
    {
        double time;
        bool measures;
    };
    // Before the first measurement the usage is 0; the first is the process's share since the system's start.
    for (Row const row : {Row{10, false}, Row{10.5, false}, Row{11, false}, Row{11.01, true}, Row{12.01, true}})
    {
        CallSlot(usage, 3, row.time);
        double const share = CallSlot<double>(usage, 4);
        EXPECT_TRUE(row.measures ? share >= 0 && share <= 100 : share == 0) << row.time << ": " << share;
    }
    // A busy stretch must show; another process may hold the processor meanwhile.
    double now = 20;
    usage->Update(now);
    double share = 0;
    for (int turn = 0; turn < 50 && share == 0; ++turn)
    {
        for (DWORD const begin = GetTickCount(); GetTickCount() - begin < 50;)
            ;
        usage->Update(now += 2);
        share = usage->GetUsage();
    }
    EXPECT_TRUE(share > 0 && share <= 100) << share;
    double const last = usage->GetUsage();
    usage->Update(now + 1);
    EXPECT_EQ(usage->GetUsage(), last) << "exactly one second is not more than one";
    usage->Release();
}

TEST_F(Services, TimerTellsTheTimeSinceItsStart)
{
    // Tells a time of its own, as both go through the table.
    class Fixed : public CVekTimer
    {
    public:
        long long GetElapsedTicks() override { return ticks; }
        long long ticks = 0;
    } fixed;
    auto const frequency = static_cast<double>(kernel.GetPerformanceFrequency());
    EXPECT_EQ(fixed.GetRate(30), 30.0) << "kept: the count itself when no time has passed";
    fixed.ticks = 12345;
    EXPECT_EQ(fixed.GetElapsedSeconds(), 12345 / frequency);
    EXPECT_EQ(fixed.GetRate(30), 30 / (12345 / frequency));
    EXPECT_EQ(fixed.GetRate(0), 0.0);

    IVekTimer * const timer = kernel.CreateTimer();
    EXPECT_FALSE(CallSlot<bool>(timer, 5));
    EXPECT_TRUE(CallSlot<bool>(timer, 3));
    EXPECT_TRUE(CallSlot<bool>(timer, 5));
    CallSlot(timer, 4);
    EXPECT_FALSE(CallSlot<bool>(timer, 5));
    long long const stopped = CallSlot<long long>(timer, 7);
    Sleep(20);
    EXPECT_GT(CallSlot<long long>(timer, 7), stopped) << "kept: it goes on after Stop";
    double const seconds = CallSlot<double>(timer, 6);
    EXPECT_TRUE(seconds >= 0.015 && seconds < 10) << seconds;
    double const rate = CallSlot<double>(timer, 8, 100);
    EXPECT_TRUE(rate > 0 && rate <= 100 / seconds) << rate;
    timer->Release();
}

TEST_F(Services, CountReferences)
{
    ExpectRefCountContract("randomizer", kernel.CreateRandomizer());
    ExpectRefCountContract("CPU usage", kernel.CreateCPUUsage());
    ExpectRefCountContract("timer", kernel.CreateTimer());
}

TEST_F(Services, CreateFailsWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    LogCapture log;
    log.Clear();
    VekGuard::FailFrom(1);
    void * const made[] = {kernel.CreateThread(L"", nullptr, false, 0, 0), kernel.CreateTimer(),
                           kernel.CreateProgressController(), kernel.CreateRandomizer()};
    EXPECT_TRUE(VekGuard::FailReset());
    for (void const * const object : made)
        EXPECT_EQ(object, nullptr);
    EXPECT_EQ(log.Take(), L"") << "no message";
    VekGuard::FailAllocation(1);
    EXPECT_EQ(kernel.CreateCPUUsage(), nullptr);
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_EQ(log.Take(), L"CVekKernel::CreateCPUUsage --> Failed to create CPU usage interface");
    // The shared part of a thread object, or its name, fails.
    for (std::size_t failing = 2; failing < 5; ++failing)
    {
        VekGuard::FailAllocation(failing);
        IVekThread * const thread = kernel.CreateThread(L"name", nullptr, false, 0, 0);
        VekGuard::FailReset();
        if (thread)
            thread->Release();
    }
}
