#include "Benches.h"

#include "Harness.h"
#include "VekLib.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdio>

namespace bench
{

namespace
{

constexpr GUID EVENT = {0x5B1E2A01, 0x7C1D, 0x4E0B, {1, 2, 3, 4, 5, 6, 7, 8}};

class Handler final : public CVekEventHandler
{
public:
    bool OnEvent(CVekEventData *) override { return ++calls == 0; }
    unsigned int calls = 0;
};

class Callback final : public CVekRefCounted<IVekProgressController::Callback>
{
public:
    bool OnProgress(double taskProgress, double, wchar_t const *, int) override
    {
        sum += taskProgress;
        return true;
    }
    double sum = 0;
};

class Catcher final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    void OnLogOutput(int, wchar_t const *) override { ++calls; }
    unsigned int calls = 0;
};

/// The best time of one call, over rounds of so many.
template <class Work>
double Time(int rounds, int calls, Work const & work)
{
    Best best;
    for (int round = 0; round < rounds; ++round)
    {
        Stopwatch watch;
        for (int i = 0; i < calls; ++i)
            work();
        best.Add(watch.Lap() / calls);
    }
    return best.Seconds() * 1e9;
}

void AddEvents(Table & table, int rounds)
{
    constexpr int COUNT = 1000;
    IVekKernel & kernel = *getVekLibKernel();
    std::vector<Handler> handlers(COUNT);
    kernel.RegisterEvent(EVENT);
    table.Add({"FireEvent without handlers", Number(Time(rounds, 200, [&] { kernel.FireEvent(EVENT, nullptr); }), 0)});
    for (Handler & handler : handlers)
        kernel.AddEventHandler(EVENT, &handler);
    double const fired = Time(rounds, 100, [&] { kernel.FireEvent(EVENT, nullptr); }) / COUNT;
    CVekEventHandler * volatile direct = handlers.data();
    double const called = Time(rounds, 100000, [&] { direct->OnEvent(nullptr); });
    table.Add({"FireEvent with 1,000 handlers, each", Number(fired, 1)});
    table.Add({"direct virtual call of OnEvent", Number(called, 1)});
    kernel.UnregisterEvent(EVENT);
}

void AddLog(Table & table, int rounds)
{
    IVekKernel & kernel = *getVekLibKernel();
    Catcher catcher;
    kernel.AddCatchLogOutput(&catcher);
    table.Add({"suppressed message",
               Number(Time(rounds, 100000, [] { VekLogOutput(1, L"%s::%s --> %d", L"Class", L"Method", 5); }), 1)});
    table.Add({"delivered message (debugger and one catcher)",
               Number(Time(rounds, 50, [] { VekLogOutput(0, L"%s::%s --> %d", L"Class", L"Method", 5); }), 0)});
    kernel.RemoveCatchLogOutput(&catcher);
}

void AddProgress(Table & table, int rounds)
{
    Callback callback;
    CVekRef<IVekProgressController> const controller{getVekLibKernel()->CreateProgressController()};
    table.Add({"Progress without task", Number(Time(rounds, 100000, [&] { controller->Progress(0.0); }), 1)});
    controller->SetCallback(&callback);
    controller->BeginTask(L"task", 100, 0.001, 0);
    table.Add({"Progress with callback", Number(Time(rounds, 100000, [&] { controller->Progress(-1.0); }), 1)});
    IVekProgressController::Callback * volatile direct = &callback;
    table.Add({"direct virtual call of OnProgress",
               Number(Time(rounds, 100000, [&] { direct->OnProgress(1, 2, L"task", 0); }), 1)});
}

} // namespace

void MeasureServices(bool quick)
{
    int const rounds = quick ? 5 : 20;
    Table table({"call", "ns"});
    AddEvents(table, rounds);
    AddLog(table, rounds);
    AddProgress(table, rounds);
    std::printf("Services: the best time of one call.\n\n");
    table.Print();
    std::printf("\n");
}

} // namespace bench
