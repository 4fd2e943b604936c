// What threads do to each other, many times with other interruptions: on the guarded build each call for a lock, a
// wait, a thread or a handle lets others come in between, as a seed has it. VEK_SCHEDULES tells how many seeds,
// VEK_SCHEDULE the only one.

#include "VekLib.h"

#include "support/GuardHeap.h"
#include "support/SystemCalls.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <ostream>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr GUID EVENT = {0x5EED, 0, 0, {}};

using Random = std::mt19937;

std::atomic<int> g_alive; // commands and callbacks

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

template <class Base>
struct Counted : Base
{
    template <class... Arguments>
    explicit Counted(Arguments... arguments) : Base(arguments...)
    {
        ++g_alive;
    }
    ~Counted() override { --g_alive; }
    std::vector<int> touched = std::vector<int>(4); // seen by the guard heap when its owner is gone
};

struct Tick final : Counted<CVekRefCounted<IVekThread::TickCallback>>
{
    void OnTick() override { ++touched[0]; }
};

struct Command final : Counted<CVekThreadCommand>
{
    using Counted::Counted;
    void Execute() override { ++touched[0]; }
};

// Commands that a worker may be left with are the host's, until the worker is gone.
std::mutex g_lock;
using Posted = std::vector<std::unique_ptr<Command>>;
Posted g_posted;

Command * MakePosted()
{
    std::lock_guard const lock(g_lock);
    return g_posted.emplace_back(new Command(false)).get();
}

struct Handler final : Counted<CVekEventHandler>
{
    bool OnEvent(CVekEventData *) override
    {
        if (++touched[0] % 2)
            Kernel().RemoveEventHandler(EVENT, this);
        return true;
    }
};

struct Catcher final : Counted<CVekRefCounted<IVekCatchLogOutput>>
{
    void OnLogOutput(int, wchar_t const *) override
    {
        ++touched[0];
        if (!m_isGone.exchange(true)) // to be taken out just once
            Kernel().RemoveCatchLogOutput(this);
    }
    std::atomic<bool> m_isGone{false};
};

void Together(std::initializer_list<void (*)(Random &)> sides, unsigned int seed)
{
    std::vector<std::thread> threads;
    for (auto const side : sides)
        threads.emplace_back(
            [side, seed, number = threads.size()]
            {
                Random random(seed + static_cast<unsigned int>(number));
                for (int i = 0; i < 3; ++i)
                    side(random);
            });
    for (std::thread & thread : threads)
        thread.join();
}

IVekThread * g_worker;

void Drive(Random & random)
{
    switch (random() % 4)
    {
    case 0:
        g_worker->Suspend();
        g_worker->Resume();
        break;
    case 1:
        g_worker->SetTickCallback(CVekRef<Tick>(new Tick).Get());
        break;
    case 2:
        Kernel().ExecuteThreadCommand(new Command, g_worker);
        break;
    default:
        for (int i = 0; i < 3; ++i)
            Kernel().PostThreadCommand(MakePosted(), g_worker);
    }
}

// A worker that three threads drive; one of its ends: by itself, by a stop, by its last release.
void DriveWorker(unsigned int seed)
{
    CVekRef<IVekThread> worker(Kernel().CreateThread(L"worker", CVekRef<Tick>(new Tick).Get(), false, 0, seed % 3));
    g_worker = worker.Get();
    worker->Start();
    Together({Drive, Drive, [](Random & random) { random() % 8 ? Drive(random) : void(g_worker->Stop()); }}, seed);
    if (seed % 2)
        worker->Stop();
}

// Started and released at once, with commands waiting.
void EndSoon(Random & random)
{
    CVekRef<Tick> const tick(new Tick);
    CVekRef<IVekThread> const worker(Kernel().CreateThread(L"short", tick.Get(), false, 0, random() % 3));
    Kernel().PostThreadCommand(MakePosted(), worker.Get());
    worker->Start();
    if (random() % 2)
        worker->SetTickCallback(nullptr);
    else
        Kernel().ExecuteThreadCommand(new Command, worker.Get());
}

// Once it has ended by itself, its callback is given back with the last release.
void EndByItself(Random &)
{
    CVekRef<Tick> const tick(new Tick);
    CVekRef<IVekThread> worker(Kernel().CreateThread(L"one", tick.Get(), false, 0, 1));
    worker->Start();
    while (worker->GetHandle())
        Sleep(0);
    worker.Reset();
    EXPECT_EQ(tick->GetRefCount(), 1U);
}

void EndWorkers(unsigned int seed)
{
    Together({EndSoon, EndByItself}, seed);
}

void FireEvents(unsigned int seed)
{
    auto const add = [](Random & random)
    {
        CVekRef<CVekEventHandlerContainer> const container(new CVekEventHandlerContainer);
        Kernel().RegisterEvent(EVENT);
        for (int i = 0; i < 3; ++i)
            Kernel().AddEventHandler(EVENT, container->Add(new Handler));
        if (random() % 4 == 0)
            Kernel().UnregisterEvent(EVENT);
    };
    Together({add, add, [](Random &) { Kernel().FireEvent(EVENT, nullptr); }}, seed);
    Kernel().UnregisterEvent(EVENT);
}

void CatchMessages(unsigned int seed)
{
    auto const add = [](Random &)
    {
        CVekRef<Catcher> const catcher(new Catcher);
        Kernel().AddCatchLogOutput(catcher.Get());
        VekLogOutput(0, L"said");
    };
    Together({add, add, [](Random &) { VekLogOutput(0, L"said by another"); }}, seed);
}

// The library ends for all that still use it, and starts again.
void EndTheLibrary(unsigned int seed)
{
    CVekRef<CVekEventHandlerContainer> const container(new CVekEventHandlerContainer);
    CVekRef<Catcher> const catcher(new Catcher);
    Kernel().AddCatchLogOutput(catcher.Get());
    Kernel().RegisterEvent(EVENT);
    Kernel().AddEventHandler(EVENT, container->Add(new Handler));
    CVekRef<IVekThread> const worker(Kernel().CreateThread(L"left", CVekRef<Tick>(new Tick).Get(), false, 0, 0));
    worker->Start();
    g_worker = worker.Get();
    Together({Drive,
              [](Random &)
              {
                  VekLibDeinit();
                  VekLogOutput(0, L"said by nobody");
                  VekLibInit();
              }},
             seed);
}

struct Scenario
{
    char const * name;
    void (*run)(unsigned int seed);
};

constexpr Scenario SCENARIOS[] = {{"DriveWorker", DriveWorker},
                                  {"EndWorkers", EndWorkers},
                                  {"FireEvents", FireEvents},
                                  {"CatchMessages", CatchMessages},
                                  {"EndTheLibrary", EndTheLibrary}};

void PrintTo(Scenario const & scenario, std::ostream * out)
{
    *out << scenario.name;
}

void RunOnce(Scenario const & scenario, unsigned int seed)
{
    scenario.run(seed);
    Posted().swap(g_posted);
}

// What the library and the runtime keep from their first use on.
VekTest::WarmUp const warmUp(
    []
    {
        CVekLibrary const library;
        for (Scenario const & scenario : SCENARIOS)
            RunOnce(scenario, 1);
    });

class Schedules : public testing::TestWithParam<Scenario>
{
};

unsigned int Setting(char const * name, unsigned int otherwise)
{
    char const * const text = std::getenv(name);
    return text ? static_cast<unsigned int>(std::strtoul(text, nullptr, 10)) : otherwise;
}

TEST_P(Schedules, LeaveNothingBehind)
{
    CVekLibrary const library;
    unsigned int const only = Setting("VEK_SCHEDULE", 0);
    unsigned int const last = only ? only : Setting("VEK_SCHEDULES", VekGuard::Active ? 15 : 3);
    int leaks = 0;
    for (unsigned int seed = only ? only : 1; seed <= last; ++seed)
    {
        std::size_t const blocks = VekGuard::LiveBlocks();
        VekTest::GiveWay(seed);
        RunOnce(GetParam(), seed);
        VekTest::GiveWay(0);
        ASSERT_EQ(g_alive, 0) << "seed " << seed;
        for (int i = 0; i < 200 && VekGuard::LiveBlocks() > blocks; ++i)
            Sleep(1); // a worker gives its object back a little after the last release
        leaks += VekGuard::LiveBlocks() > blocks;
    }
    EXPECT_LE(leaks, 2) << "the runtime makes some of its locks when two meet there for the first time";
}

INSTANTIATE_TEST_SUITE_P(All, Schedules, testing::ValuesIn(SCENARIOS),
                         [](auto const & scenario) { return std::string(scenario.param.name); });

} // namespace
