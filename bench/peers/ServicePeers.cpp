#include "Peers.h"
#include "VekLib.h"

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace bench
{

namespace
{

// --- tracked memory
// ---------------------------------------------------------------------------------------------------

constexpr std::size_t LIVE_BLOCKS = 10000;
constexpr int TURNS = 50000;

/// Seconds for one free and one allocation of 16 to 128 bytes, any of so many live blocks being the next to go.
template <class Allocate, class Free>
Work Replacing(Allocate allocate, Free release)
{
    return [=]
    {
        std::vector<void *> blocks(LIVE_BLOCKS);
        for (void *& block : blocks)
            block = allocate(64u);
        std::uint32_t random = 1;
        Stopwatch watch;
        for (int turn = 0; turn < TURNS; ++turn)
        {
            random = random * 1664525u + 1013904223u;
            void *& block = blocks[(random >> 8) % LIVE_BLOCKS];
            release(block);
            block = allocate(16 + random % 113);
            *static_cast<char *>(block) = 1;
        }
        double const seconds = watch.Lap() / TURNS;
        for (void * const block : blocks)
            release(block);
        return seconds;
    };
}

void AddTracked(Duels & duels)
{
    duels.Add("tracked free and allocate, 16 to 128 bytes", "malloc", 0,
              Replacing([](unsigned int size) { return VekAllocMemory(size, __FILE__, __LINE__); },
                        [](void * block) { VekDeallocMemory(block, __FILE__, __LINE__); }),
              Replacing([](unsigned int size) { return std::malloc(size); }, [](void * block) { std::free(block); }));
}

// --- events
// -----------------------------------------------------------------------------------------------------------

constexpr GUID EVENT = {0x5B1E2A02, 0x7C1D, 0x4E0B, {1, 2, 3, 4, 5, 6, 7, 8}};

class CriticalSection
{
public:
    CriticalSection() { InitializeCriticalSection(&m_section); }
    ~CriticalSection() { DeleteCriticalSection(&m_section); }
    CriticalSection(CriticalSection const &) = delete;
    CriticalSection & operator=(CriticalSection const &) = delete;

    void lock() { EnterCriticalSection(&m_section); }
    void unlock() { LeaveCriticalSection(&m_section); }
    CRITICAL_SECTION * Get() { return &m_section; }

private:
    CRITICAL_SECTION m_section;
};

class Handler final : public CVekEventHandler
{
public:
    bool OnEvent(CVekEventData *) override { return ++calls != 0; }
    unsigned int calls = 0;
};

/// Registers a handler for as long as it lives.
struct Subscription
{
    Subscription()
    {
        getVekLibKernel()->RegisterEvent(EVENT);
        getVekLibKernel()->AddEventHandler(EVENT, &handler);
    }
    ~Subscription() { getVekLibKernel()->UnregisterEvent(EVENT); }
    Subscription(Subscription const &) = delete;
    Subscription & operator=(Subscription const &) = delete;

    Handler handler;
};

/// A function behind a lock that may be taken again, as the library's handlers are.
struct LockedFunction
{
    CriticalSection lock;
    unsigned int calls = 0;
    std::function<bool(CVekEventData *)> function = [this](CVekEventData *) { return ++calls != 0; };

    bool Fire(CVekEventData * data)
    {
        std::lock_guard<CriticalSection> const guard(lock);
        return function(data);
    }
};

void AddEvents(Duels & duels)
{
    auto const subscription = std::make_shared<Subscription>();
    auto const locked = std::make_shared<LockedFunction>();
    duels.Expect(getVekLibKernel()->FireEvent(EVENT, nullptr) && subscription->handler.calls == 1 &&
                     locked->Fire(nullptr) && locked->calls == 1,
                 "events");
    duels.Add("FireEvent, one handler", "std::function, locked", 0,
              Repeat(2000, [subscription] { getVekLibKernel()->FireEvent(EVENT, nullptr); }),
              Repeat(2000, [locked] { locked->Fire(nullptr); }));
}

// --- workers
// ----------------------------------------------------------------------------------------------------------

constexpr int COMMANDS = 2000;

/// A thread with a queue of functions, of what the system has.
class PlainWorker
{
public:
    PlainWorker()
    {
        InitializeConditionVariable(&m_changed);
        m_thread = CreateThread(nullptr, 0, Begin, this, 0, nullptr);
    }
    ~PlainWorker()
    {
        Post(nullptr);
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
    }
    PlainWorker(PlainWorker const &) = delete;
    PlainWorker & operator=(PlainWorker const &) = delete;

    /// An empty function ends the thread.
    void Post(std::function<void()> function)
    {
        std::lock_guard<CriticalSection> const guard(m_lock);
        m_queue.push_back(std::move(function));
        WakeConditionVariable(&m_changed);
    }

private:
    static DWORD WINAPI Begin(void * self) { return static_cast<PlainWorker *>(self)->Run(); }
    DWORD Run()
    {
        while (std::function<void()> const function = Take())
            function();
        return 0;
    }
    std::function<void()> Take()
    {
        std::lock_guard<CriticalSection> const guard(m_lock);
        while (m_queue.empty())
            SleepConditionVariableCS(&m_changed, m_lock.Get(), INFINITE);
        std::function<void()> function = std::move(m_queue.front());
        m_queue.pop_front();
        return function;
    }

    CriticalSection m_lock;
    CONDITION_VARIABLE m_changed;
    std::deque<std::function<void()>> m_queue;
    HANDLE m_thread;
};

class Count final : public CVekThreadCommand
{
public:
    explicit Count(long volatile & done) : m_done(done) {}
    void Execute() override { InterlockedIncrement(&m_done); }

private:
    long volatile & m_done;
};

/// Seconds for each of the commands, from the first post until all are posted, or until all are done.
template <class Post>
Work Posting(bool untilDone, Post post)
{
    return [untilDone, post, done = std::make_shared<long volatile>(0)]
    {
        *done = 0;
        Stopwatch watch;
        for (int i = 0; i < COMMANDS; ++i)
            post(*done);
        double seconds = watch.Lap();
        while (*done < COMMANDS)
            Sleep(0);
        seconds += untilDone ? watch.Lap() : 0;
        return seconds / COMMANDS;
    };
}

CVekRef<IVekThread> StartWorker()
{
    CVekRef<IVekThread> thread{getVekLibKernel()->CreateThread(L"peers", nullptr, false, 0, 0)};
    thread->Start();
    return thread;
}

void AddWorkers(Duels & duels)
{
    CVekRef<IVekThread> const own = StartWorker();
    auto const plain = std::make_shared<PlainWorker>();
    auto const post = [own](long volatile & done) { getVekLibKernel()->PostThreadCommand(new Count(done), own.Get()); };
    auto const postPlain = [plain](long volatile & done) { plain->Post([&done] { InterlockedIncrement(&done); }); };
    duels.Add("PostThreadCommand, the call alone", "thread with a queue", 0, Posting(false, post),
              Posting(false, postPlain));
    duels.Add("PostThreadCommand, until 2,000 are done", "thread with a queue", 0, Posting(true, post),
              Posting(true, postPlain));
    duels.Add("start and stop of a worker", "thread with a queue", 0, Repeat(5, [] { StartWorker()->Stop(); }),
              Repeat(5, [] { PlainWorker const worker; }));
}

} // namespace

void AddServices(Duels & duels)
{
    AddTracked(duels);
    AddEvents(duels);
    AddWorkers(duels);
}

} // namespace bench
