// veklib_soak [SECONDS]: 8 threads over all that threads may share at once, for a minute unless told otherwise. Fails
// when anything answers wrongly, a thread hangs, or something is left over at the end: blocks are counted on the guard
// heap, handles and tracked blocks always.

#include "VekLib.h"
#include "VekRef.h"

#include "core/MemorySystem.h"
#include "support/FaultReport.h"
#include "support/GuardHeap.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <random>

namespace
{

constexpr int THREADS = 8;
constexpr int SHARED_WORKERS = 2;
constexpr int HANG_SECONDS = 60;
constexpr int HANG_STATUS = 97;
constexpr GUID SHARED_EVENT = {0x50AC, 0, 0, {}};

using Random = std::mt19937;
using Flag = std::shared_ptr<std::atomic<bool>>;

std::atomic<bool> g_stop{false};
std::atomic<long> g_wrong{0};
std::atomic<long> g_commands{0};
std::atomic<long> g_commandsMade{0};
std::atomic<bool> g_isExecuting{false};
std::atomic<unsigned char *> g_blocks[16]; // one thread's for another to release
std::atomic<long> g_commandsAlive{0};
std::atomic<unsigned int> g_beats[THREADS];
IVekThread * g_workers[SHARED_WORKERS];
CVekEventHandlerContainer * g_container;
CVekTypedDataReader * g_reader;

void Expect(bool right, char const * what)
{
    if (right)
        return;
    ++g_wrong;
    std::fprintf(stderr, "soak: wrong: %s\n", what);
}

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

class Handler final : public CVekEventHandler
{
public:
    bool OnEvent(CVekEventData *) override
    {
        if (++calls % 3 == 0)
            Kernel().RemoveEventHandler(SHARED_EVENT, this);
        return true;
    }
    int calls = 0;
};

class Catcher final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    void OnLogOutput(int, wchar_t const *) override { ++calls; }
    std::atomic<int> calls{0};
};

class Command final : public CVekThreadCommand
{
public:
    explicit Command(Flag done = nullptr, IVekThread * next = nullptr) : m_done(std::move(done)), m_next(next)
    {
        ++g_commandsMade;
        ++g_commandsAlive;
    }
    ~Command() override { --g_commandsAlive; }
    void Execute() override
    {
        ++g_commands;
        if (m_done)
        {
            Expect(!g_isExecuting.exchange(true), "two callers' commands are run at once");
            Sleep(1);
            *m_done = true;
            g_isExecuting = false;
        }
        if (m_next)
            m_next->AddCommand(new Command);
    }

private:
    Flag m_done;
    IVekThread * m_next;
};

// Its caller waits for the end of a command as long as the worker runs.
void ExecuteOne(IVekThread * worker)
{
    auto const done = std::make_shared<std::atomic<bool>>();
    Kernel().ExecuteThreadCommand(new Command(done), worker);
    Expect(*done, "a command is not run when its caller goes on");
}

class Tick final : public CVekRefCounted<IVekThread::TickCallback>
{
public:
    void OnTick() override { ++calls; }
    std::atomic<int> calls{0};
};

// --- one turn with each service

void UseMemory(Random & random)
{
    unsigned char * blocks[40];
    for (auto *& block : blocks)
    {
        unsigned int const size = random() % 300;
        block = VekAllocMemory(size, __FILE__, __LINE__);
        std::fill_n(block, size, static_cast<unsigned char>(size));
    }
    std::shuffle(std::begin(blocks), std::end(blocks), random);
    for (auto & shared : g_blocks)
    {
        auto *& own = blocks[random() % std::size(blocks)];
        own = shared.exchange(own);
    }
    for (auto * block : blocks)
        Expect(!block || VekDeallocMemory(block, __FILE__, __LINE__), "a tracked block is not known");
    Expect(!VekDeallocMemory(std::malloc(9), __FILE__, __LINE__), "a plain block is known");
}

void UseEvents(Random & random)
{
    GUID const own = {random(), 1, static_cast<unsigned short>(GetCurrentThreadId()), {}};
    auto * const container = new CVekEventHandlerContainer;
    Kernel().RegisterEvent(SHARED_EVENT);
    Expect(Kernel().RegisterEvent(own), "an event of its own is there already");
    for (int i = 0; i < 6; ++i)
        Kernel().AddEventHandler(i % 2 ? own : SHARED_EVENT, container->Add(new Handler));
    Expect(Kernel().FireEvent(own, nullptr), "an event finds no handler");
    Kernel().FireEvent(SHARED_EVENT, nullptr);
    container->Release();
    Expect(!Kernel().FireEvent(own, nullptr), "a handler outlives its container");
    Kernel().UnregisterEvent(own);
    Expect(!Kernel().IsEventRegistered(own), "an event outlives its end");
}

void UseWorkers(Random & random)
{
    IVekThread * const worker = g_workers[random() % SHARED_WORKERS];
    switch (random() % 7)
    {
    case 0:
        worker->Suspend();
        worker->PostControlMessage(40, nullptr);
        worker->Suspend();
        worker->Resume();
        worker->Resume();
        break;
    case 3:
        for (int i = 0; i < 40; ++i)
            worker->AddCommand(new Command);
        worker->PostControlMessage(77, nullptr); // unknown: ignored
        worker->HasPendingCommands();
        break;
    case 4:
        worker->SetTickCallback(CVekRef<Tick>(new Tick).Get());
        break;
    case 5:
        worker->AddRef();
        Expect(worker->GetName().GetLength() == 6 && worker->GetTickInterval() == 0 && worker->GetMaxTickCount() == 0 &&
                   worker->GetHandle() && worker->GetThreadID() && !worker->GetCreateFlag() &&
                   !worker->IsCurrentThread() && worker->IsRunning(),
               "a worker is not what it was made");
        worker->IsSuspended();
        worker->Release();
        break;
    case 1:
        ExecuteOne(worker);
        break;
    case 2:
        Kernel().PostThreadCommand(new Command(nullptr, worker), worker);
        break;
    default:
        CVekRef<IVekThread> own(Kernel().CreateThread(L"short", nullptr, false, 0, random() % 3));
        own->SetTickCallback(CVekRef<Tick>(new Tick).Get());
        own->Start();
        auto const done = std::make_shared<std::atomic<bool>>();
        Kernel().ExecuteThreadCommand(new Command(done), own.Get());
        if (random() % 2)
            own->Suspend();
        own.Reset();
        g_commandsMade -= !*done; // the worker may have ended before, after its ticks
    }
}

void UseLog(Random & random)
{
    for (int i = 0; i < 10; ++i)
    {
        CVekRef<Catcher> const catcher(new Catcher);
        Kernel().AddCatchLogOutput(catcher.Get());
        VekLogOutput(0, L"soak %u", random());
        VekLogOutput(1, L"suppressed %u", random());
        Expect(catcher->calls > 0, "a message is not delivered");
        Kernel().RemoveCatchLogOutput(catcher.Get());
    }
}

// Handlers in a container that all threads share.
void UseSharedContainer(Random & random)
{
    auto const handler = CVekRef<Handler>::Share(new Handler); // the container takes the other reference
    g_container->Add(handler.Get());
    Kernel().AddEventHandler(SHARED_EVENT, handler.Get());
    Kernel().IsEventRegistered(SHARED_EVENT);
    if (random() % 50 == 0)
        g_container->RemoveAll();
    else
        g_container->Remove(handler.Get());
}

void UseSettings(Random &)
{
    Expect(Kernel().SetDebugOutputLevel(0) == 0 && Kernel().GetDebugOutputLevel() == 0, "the output level changes");
    Expect(Kernel().SetBreakOnAllocation(0) == 0 && Kernel().GetBreakOnAllocation() == 0, "the break number changes");
    Expect(Kernel().GetPerformanceFrequency() > 0 && Kernel().GetCPUSpeed() > 0, "there is no counter");
    Expect(Kernel().GetAvailablePhysicalMemory() <= Kernel().GetTotalPhysicalMemory(), "memory is more than there is");
    Expect(VekLibInit(), "the library can't be started once more");
    Kernel().AddRef();
    Kernel().Release();
    VekLibDeinit();
    Expect(VekGetCurrentThreadID() == GetCurrentThreadId() && VekGetCurrentThread(), "a thread is not itself");
}

// A counter behind each kind of lock.
void UseLocks(Random & random)
{
    static CVekCriticalSection section;
    static CVekMutex mutex;
    static CVekSemaphore semaphore(1, 1);
    static CVekSignal signal;
    static long counts[3];
    CVekSyncObject * const objects[] = {&section, &mutex, &semaphore};
    unsigned int const kind = random() % 3;
    {
        CVekSingleLock const lock(objects[kind], true);
        long const before = counts[kind]++;
        Expect(counts[kind] == before + 1, "a lock lets two in");
    }
    CVekSyncObject * any[] = {&mutex, &semaphore};
    CVekMultiLock lock(2, any, false, true);
    lock.Unlock();
    signal.SetSignal();
    random() % 2 ? signal.ResetSignal() : signal.PulseSignal();
}

// One reader that all threads ask at once, the first of them making its index.
void UseSharedReader(Random & random)
{
    int const number = static_cast<int>(random() % 500);
    CVekString<wchar_t> name;
    name.AppendFormat(L"ENTRY %d", number);
    int found = -1;
    Expect(g_reader->ReadInt32(name, found, 0) && found == number, "an entry is not found");
    Expect(!g_reader->ReadInt32(L"none", found, 0), "an entry is found that isn't there");
}

CVekTypedDataReader * MakeReader()
{
    CVekRef<IVekMemoryIOStream> const stream(Kernel().CreateMemoryIOStream());
    CVekTypedDataWriter writer;
    for (int i = 0; i < 500; ++i)
    {
        CVekString<wchar_t> name;
        name.AppendFormat(L"entry %d", i);
        writer.WriteInt32(name, i);
    }
    Expect(stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 40000) && writer.Write(stream.Get()), "no typed data");
    stream->SetPosition(40000, true);
    auto * const reader = new CVekTypedDataReader;
    Expect(reader->Read(stream.Get()), "typed data can't be read");
    return reader;
}

struct Service
{
    char const * name;
    void (*use)(Random &);
    std::atomic<long> turns;
};
Service g_services[] = {{"memory", UseMemory, 0},
                        {"events", UseEvents, 0},
                        {"workers", UseWorkers, 0},
                        {"shared container", UseSharedContainer, 0},
                        {"settings, kernel", UseSettings, 0},
                        {"locks", UseLocks, 0},
                        {"log", UseLog, 0},
                        {"shared typed data", UseSharedReader, 0}};

DWORD WINAPI UseAll(void * parameter)
{
    auto const index = reinterpret_cast<std::uintptr_t>(parameter);
    Random random(static_cast<unsigned int>(index) + GetTickCount());
    while (!g_stop)
    {
        // Half of the time all threads are at the same service, another one every tenth of a second.
        Service & service = g_services[(random() % 2 ? random() : GetTickCount() / 100) % std::size(g_services)];
        service.use(random);
        ++service.turns;
        ++g_beats[index];
    }
    return 0;
}

/// Everything at once for so many seconds; false when a thread hangs.
bool Run(int seconds)
{
    VekLibInit();
    g_container = new CVekEventHandlerContainer;
    g_reader = MakeReader();
    auto * const tick = new Tick;
    for (IVekThread *& worker : g_workers)
    {
        worker = Kernel().CreateThread(L"shared", tick, false, 0, 0);
        worker->Start();
        ExecuteOne(worker); // it runs from here on
    }
    g_stop = false;
    HANDLE threads[THREADS];
    for (std::uintptr_t i = 0; i < THREADS; ++i)
        threads[i] = CreateThread(nullptr, 0, UseAll, reinterpret_cast<void *>(i), 0, nullptr);
    unsigned int last[THREADS] = {};
    int lastSecond[THREADS] = {};
    for (int second = 0; second < seconds; ++second)
    {
        Sleep(1000);
        for (int i = 0; i < THREADS; ++i)
            if (unsigned int const beat = g_beats[i]; beat != last[i])
                last[i] = beat, lastSecond[i] = second;
            else if (second - lastSecond[i] >= HANG_SECONDS)
                return false;
    }
    g_stop = true;
    bool const ended = WaitForMultipleObjects(THREADS, threads, TRUE, HANG_SECONDS * 1000) != WAIT_TIMEOUT;
    for (HANDLE const thread : threads)
        CloseHandle(thread);
    for (IVekThread * const worker : g_workers)
    {
        ExecuteOne(worker); // behind whatever is queued
        Expect(!worker->IsSuspended(), "a worker stays suspended");
        Expect(worker->Stop() == WAIT_OBJECT_0, "a worker does not stop");
        worker->Release();
    }
    Expect(tick->Release() == 0, "a worker keeps its callback");
    Expect(g_container->Release() == 0, "the shared container is held");
    for (auto & block : g_blocks)
        if (unsigned char * const left = block.exchange(nullptr))
            VekDeallocMemory(left, __FILE__, __LINE__);
    delete g_reader;
    VekLibDeinit();
    return ended;
}

DWORD HandleCount()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    int const seconds = count > 1 ? static_cast<int>(std::wcstol(arguments[1], nullptr, 10)) : 60;
    VekTest::ReportFaults("the soak");
    setvbuf(stdout, nullptr, _IONBF, 0);
    if (!Run(1)) // what library and runtime keep for good is there after that
        return HANG_STATUS;
    for (Service & service : g_services)
        service.turns = 0;
    std::size_t const blocks = VekGuard::LiveBlocks();
    std::size_t const bytes = VekGuard::LiveBytes();
    DWORD const handles = HandleCount();
    std::printf("soak: %d threads, %d seconds\n", THREADS, seconds);
    if (!Run(seconds))
        return HANG_STATUS;

    CVekMemorySystem const & memory = *CVekMemorySystem::Get();
    for (Service const & service : g_services)
        std::printf("  %-30s %9ld turns\n", service.name, service.turns.load());
    auto const leaked = static_cast<long>(VekGuard::LiveBlocks() - blocks);
    long const handlesLeft = static_cast<long>(HandleCount()) - static_cast<long>(handles);
    std::printf("  commands made %ld, run %ld, left %ld\n", g_commandsMade.load(), g_commands.load(),
                g_commandsAlive.load());
    std::printf("  tracked: %u blocks made, %u left, %u bytes left, at most %u blocks and %u bytes\n",
                memory.GetNextNumber(), memory.GetCurrentBlocks(), memory.GetCurrentBytes(), memory.GetPeakBlocks(),
                memory.GetPeakBytes());
    std::printf("  heap: %ld blocks and %ld bytes more than before; handles: %ld more\n", leaked,
                static_cast<long>(VekGuard::LiveBytes() - bytes), handlesLeft);
    std::printf("  wrong answers: %ld\n", g_wrong.load());
    bool const clean = g_wrong == 0 && g_commands == g_commandsMade && g_commandsAlive == 0 &&
                       memory.GetCurrentBlocks() == 0 && memory.GetCurrentBytes() == 0 && leaked == 0 &&
                       handlesLeft <= 0;
    std::printf("soak: %s\n", clean ? "clean" : "FAILED");
    return clean ? 0 : 1;
}
