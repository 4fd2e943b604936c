// Randomizer, CPU-usage meter and timer.
#include "VekLib.h"

#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

namespace
{

class Services : public testing::Test
{
protected:
    CVekLibrary m_library;
    IVekKernel & kernel = *getVekLibKernel();
};

} // namespace

TEST_F(Services, RandomValuesLieBetweenTheTwo)
{
    CVekRandomizer randomizer;
    for (auto const & [low, high] : {std::pair(-1.0f, 1.0f), {3.0f, -5.0f}, {5.0f, 5.0f}, {0.0f, 1e-30f}})
        for (int i = 0; i < 2000; ++i)
        {
            float const value = randomizer.GetRandomValue(low, high);
            ASSERT_TRUE(value >= std::min(low, high) && value <= std::max(low, high)) << value << " of " << low;
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
    // Before the first measurement the usage is 0; the first is the process's share since the system's start.
    for (auto const & [time, measures] : {std::pair(10.0, false), {10.5, false}, {11.0, false}, {11.01, true}})
    {
        usage->Update(time);
        double const share = CallSlot<double>(usage, 4);
        EXPECT_TRUE(measures ? share >= 0 && share <= 100 : share == 0) << time << ": " << share;
    }
    // A busy stretch must show; another process may hold the processor meanwhile.
    double now = 20, share = 0;
    for (; now < 120 && share == 0; now += 2)
    {
        for (DWORD const begin = GetTickCount(); GetTickCount() - begin < 50;)
            ;
        usage->Update(now);
        share = usage->GetUsage();
    }
    EXPECT_TRUE(share > 0 && share <= 100) << share;
    usage->Update(now - 1);
    EXPECT_EQ(usage->GetUsage(), share) << "exactly one second is not more than one";
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
    EXPECT_FALSE(timer->IsRunning());
    EXPECT_TRUE(timer->Start() && timer->IsRunning());
    timer->Stop();
    EXPECT_FALSE(timer->IsRunning());
    long long const stopped = timer->GetElapsedTicks();
    Sleep(20);
    EXPECT_GT(timer->GetElapsedTicks(), stopped) << "kept: it goes on after Stop";
    double const seconds = timer->GetElapsedSeconds();
    EXPECT_TRUE(seconds >= 0.015 && seconds < 10) << seconds;
    double const rate = CallSlot<double>(timer, 8, 100);
    EXPECT_TRUE(rate > 0 && rate <= 100 / seconds) << rate;
    timer->Release();
}
