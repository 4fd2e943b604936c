#include "Benches.h"

#include "Harness.h"
#include "VekLib.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace bench
{

namespace
{

class Nothing final : public CVekThreadCommand
{
public:
    Nothing() : CVekThreadCommand(false) {}
    void Execute() override {}
};

template <class Work>
void AddRow(Table & table, char const * name, int count, Work const & work)
{
    std::vector<double> times;
    Stopwatch watch;
    for (int i = 0; i < count; ++i)
    {
        watch.Lap();
        work();
        times.push_back(watch.Lap() * 1e6);
    }
    std::sort(times.begin(), times.end());
    table.Add({name, Number(times[times.size() / 2], 0), Number(times[times.size() * 99 / 100], 0)});
}

} // namespace

void MeasureThreads(bool quick)
{
    int const count = quick ? 300 : 2000;
    IVekKernel & kernel = *getVekLibKernel();
    CVekRef<IVekThread> thread{kernel.CreateThread(L"bench", nullptr, false, 0, 0)};
    thread->Start();
    Nothing command;
    Table table({"microseconds", "median", "99 %"});
    AddRow(table, "Sleep(1)", count, [] { Sleep(1); });
    AddRow(table, "ExecuteThreadCommand", count, [&] { kernel.ExecuteThreadCommand(&command, thread.Get()); });
    AddRow(table, "Suspend and Resume", count / 4, [&] { thread->Suspend(), thread->Resume(); });
    thread.Reset(); // ends the worker
    std::printf("Worker threads: a worker looks into its queue once per Sleep(1).\n\n");
    table.Print();
    std::printf("\n");
}

} // namespace bench
