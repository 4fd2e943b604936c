#include "support/RefCountContract.h"
#include "support/Slots.h"
#include "thread/WorkerKit.h"

#include <string>
#include <thread>

using WorkerKit::Command;
using WorkerKit::Gate;
using WorkerKit::Ticks;
using WorkerKit::Until;
using WorkerKit::Workers;

TEST_F(Workers, RunCommandsInOrder)
{
    IVekThread * const thread = Create();
    std::string calls;
    int const destroyed = Command::s_destroyed;
    for (char name : {'a', 'b', 'c'})
        thread->AddCommand(new Command([&calls, name] { calls += name; }));
    thread->AddCommand(new Command(
        [&]
        {
            calls += 'd';
            thread->AddCommand(new Command([&] { calls += 'g'; }));
            kernel.PostThreadCommand(new Command([&] { calls += 'e'; }), thread);
            kernel.ExecuteThreadCommand(new Command([&] { calls += 'f'; }), thread);
        }));
    thread->AddCommand(nullptr);
    EXPECT_TRUE(thread->HasPendingCommands());
    thread->Start();
    EXPECT_TRUE(Until([&] { return Command::s_destroyed - destroyed == 7; }));
    Command last([&] { calls += '.'; }, false);
    kernel.ExecuteThreadCommand(&last, thread);
    EXPECT_EQ(calls, "abcdefg.") << "on the worker itself they run at once";
    EXPECT_EQ(last.GetRefCount(), 1u);
    EXPECT_EQ(last.GetEndSignal(), nullptr);
    EXPECT_FALSE(thread->HasPendingCommands());
    thread->Release();
}

TEST_F(Workers, IgnoreNothing)
{
    IVekThread * const thread = Create();
    Command command([] {}, false);
    kernel.ExecuteThreadCommand(nullptr, thread);
    kernel.ExecuteThreadCommand(&command, nullptr);
    kernel.PostThreadCommand(nullptr, thread);
    kernel.PostThreadCommand(&command, nullptr);
    EXPECT_FALSE(thread->HasPendingCommands());
    thread->Release();
}

TEST_F(Workers, QueueACommandOnce)
{
    IVekThread * const thread = Create();
    std::string calls;
    Command a([&] { calls += 'a'; }, false);
    Command b([&] { calls += 'b'; }, false);
    for (Command * const command : {&a, &b, &a, &b, &b})
        thread->AddCommand(command);
    Command copy(a); // carries a's links
    thread->AddCommand(&copy);
    thread->Start();
    EXPECT_TRUE(Until([&] { return !thread->HasPendingCommands(); }));
    thread->Stop();
    EXPECT_EQ(calls, "aba") << "a, b and the copy of a";
    thread->Release();
}

TEST_F(Workers, LaunchSetsTheSignalAndReleases)
{
    CVekSignal signal;
    auto * const command = new Command([] {});
    command->AddRef();
    EXPECT_TRUE(command->IsAutoDelete());
    command->SetEndSignal(&signal);
    CallSlot(command, 5);
    EXPECT_EQ(WaitForSingleObject(signal.GetHandle(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(command->GetRefCount(), 1u);
    Command other([] {}, false);
    command->SetNext(&other);
    command->SetPrev(&other);
    Command const copy(*command);
    EXPECT_TRUE(copy.GetNext() == &other && copy.GetPrev() == &other && copy.GetEndSignal() == &signal);
    EXPECT_TRUE(copy.IsAutoDelete());
    EXPECT_EQ(copy.GetRefCount(), 1u);
    ExpectRefCountContract("command", command);

    // Execute may still decide whether it is released.
    struct Deciding final : CVekThreadCommand
    {
        Deciding() : CVekThreadCommand(false) {}
        void Execute() override { SetAutoDelete(true); }
    };
    auto * const deciding = new Deciding;
    deciding->AddRef();
    CallSlot(deciding, 6);
    EXPECT_TRUE(deciding->IsAutoDelete());
    deciding->Launch();
    EXPECT_EQ(deciding->Release(), 0u);
}

TEST_F(Workers, RunCommandsOnceTheyAreResumed)
{
    IVekThread * const thread = Started();
    thread->Suspend();
    std::atomic<int> runs = 0;
    std::thread caller([&] { kernel.ExecuteThreadCommand(new Command([&] { ++runs; }), thread); });
    EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
    kernel.PostThreadCommand(new Command([&] { ++runs; }), thread);
    Sleep(30);
    EXPECT_EQ(runs, 0);
    thread->Resume();
    caller.join();
    EXPECT_TRUE(Until([&] { return runs == 2; }));
    thread->Release();
}

TEST_F(Workers, RunCommandsOfEachOther)
{
    IVekThread * const first = Started();
    IVekThread * const second = Started();
    std::atomic<int> runs = 0;
    std::atomic<bool> finished = false;
    auto const onSecond = [&]
    {
        kernel.ExecuteThreadCommand(new Command([&] { runs += second->IsCurrentThread(); }), second);
        finished = true;
    };
    kernel.PostThreadCommand(new Command(onSecond), first);
    EXPECT_TRUE(Until([&] { return finished.load(); }));
    EXPECT_EQ(runs, 1);
    first->Release();
    second->Release();
}

// The command is queued behind the worker's last tick: nobody runs it.
TEST_F(Workers, EndWhileOthersWaitForTheirCommand)
{
    for (bool autoDelete : {true, false})
    {
        SCOPED_TRACE(autoDelete);
        Ticks ticks;
        Gate gate;
        ticks.onTick = [&] { gate.Pass(); };
        IVekThread * const thread = Started(0, 1, &ticks);
        EXPECT_TRUE(Until([&] { return ticks.count == 1; }));
        int const destroyed = Command::s_destroyed;
        bool ran = false;
        auto * const command = new Command([&] { ran = true; }, autoDelete);
        std::thread caller([&] { kernel.ExecuteThreadCommand(command, thread); });
        EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
        gate.Open();
        caller.join();
        EXPECT_FALSE(ran);
        EXPECT_EQ(Command::s_destroyed - destroyed, autoDelete ? 1 : 0);
        if (!autoDelete)
            command->Release();

        auto * const late = new Command([&] { ran = true; }, autoDelete);
        kernel.ExecuteThreadCommand(late, thread);
        EXPECT_FALSE(ran) << "it has ended before";
        EXPECT_EQ(Command::s_destroyed - destroyed, autoDelete ? 2 : 1);
        if (!autoDelete)
            late->Release();
        EXPECT_FALSE(thread->HasPendingCommands());
        thread->Release();
    }
}

TEST_F(Workers, WaitForAWorkerThatStartsLater)
{
    IVekThread * const thread = Create();
    std::atomic<bool> ran = false;
    std::thread caller([&] { kernel.ExecuteThreadCommand(new Command([&] { ran = true; }), thread); });
    EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
    thread->Start();
    caller.join();
    EXPECT_TRUE(ran);
    thread->Release();
}

TEST_F(Workers, KeptCommandsLeftBehindAreNotRun)
{
    Ticks ticks;
    Gate gate;
    ticks.onTick = [&] { gate.Pass(); };
    IVekThread * thread = Started(0, 1, &ticks);
    EXPECT_TRUE(Until([&] { return ticks.count == 1; }));
    CVekSignal signal;
    bool ran = false;
    Command kept([&] { ran = true; }, false);
    auto * const released = new Command([&] { ran = true; });
    int const destroyed = Command::s_destroyed;
    for (Command * const command : {&kept, released})
    {
        command->SetEndSignal(&signal);
        thread->AddCommand(command);
    }
    gate.Open();
    EXPECT_TRUE(HasEnded(thread));
    EXPECT_FALSE(ran);
    EXPECT_EQ(Command::s_destroyed - destroyed, 1) << "kept: one that deletes itself is released";
    EXPECT_EQ(WaitForSingleObject(signal.GetHandle(), 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "kept: no end signal";
    thread->Release();

    thread = Create();
    auto * const left = new Command([] {});
    thread->AddCommand(left);
    thread->Release();
    EXPECT_EQ(left->GetRefCount(), 1u) << "kept: the object's end unlinks, but does not release";
    EXPECT_EQ(left->GetPrev(), nullptr);
    left->Release();
}

// A host's own thread class: it runs what it is given at once.
TEST_F(Workers, MayBeAHostsOwn)
{
    struct Direct final : CVekRefCounted<IVekThread>
    {
        void SetTickCallback(TickCallback *) override {}
        TickCallback * GetTickCallback() override { return nullptr; }
        TickCallback const * GetTickCallback() const override { return nullptr; }
        CVekString<wchar_t> const & GetName() const override { return name; }
        unsigned int GetTickInterval() override { return 0; }
        unsigned int GetMaxTickCount() override { return 0; }
        void * GetHandle() override { return nullptr; }
        unsigned int GetThreadID() override { return 0; }
        bool GetCreateFlag() override { return false; }
        bool IsCurrentThread() override { return false; }
        bool IsRunning() override { return true; }
        bool IsSuspended() override { return false; }
        unsigned int Start() override { return 0; }
        long Suspend() override { return 0; }
        long Resume() override { return 0; }
        unsigned int Stop() override { return 0; }
        void PostControlMessage(unsigned int, void *) override {}
        void AddCommand(CVekThreadCommand * command) override { command->Launch(); }
        bool HasPendingCommands() override { return false; }
        CVekString<wchar_t> name;
    } thread;
    int runs = 0;
    kernel.ExecuteThreadCommand(new Command([&] { ++runs; }), &thread);
    kernel.PostThreadCommand(new Command([&] { ++runs; }), &thread);
    EXPECT_EQ(runs, 2);
}

TEST_F(Workers, WithstandEverybodyAtOnce)
{
    constexpr int CALLERS = 4;
    constexpr int COUNT = 3;
    Ticks ticks;
    IVekThread * threads[COUNT];
    for (IVekThread *& thread : threads)
        thread = Started(0, 0, &ticks);
    std::atomic<int> posted = 0, run = 0, executed = 0, wrong = 0;
    int const destroyed = Command::s_destroyed;
    DWORD const begin = GetTickCount();
    auto const work = [&](unsigned int seed)
    {
        for (unsigned int turn = seed * 7; GetTickCount() - begin < 1500; ++turn)
        {
            IVekThread * const thread = threads[turn % COUNT];
            auto const make = [&] { return new Command([&] { ++run; }); };
            switch (turn * 2654435761u >> 29)
            {
            case 0:
                thread->Suspend();
                thread->Resume();
                break;
            case 1:
                thread->Suspend();
                thread->PostControlMessage(40, nullptr);
                thread->Suspend();
                thread->Resume();
                thread->Resume();
                break;
            case 2:
            {
                Command command([&] { ++executed; }, false);
                int const before = executed;
                kernel.ExecuteThreadCommand(&command, thread);
                wrong += executed == before;
                break;
            }
            case 3:
                kernel.ExecuteThreadCommand(make(), thread);
                ++posted;
                break;
            case 4:
                thread->SetTickCallback(&ticks);
                break;
            case 5:
                kernel.PostThreadCommand(new Command([&, thread, make] { thread->AddCommand(make()), ++run; }), thread);
                posted += 2;
                break;
            default:
                thread->AddCommand(make());
                ++posted;
            }
        }
    };
    std::vector<std::thread> callers;
    for (unsigned int i = 0; i < CALLERS; ++i)
        callers.emplace_back(work, i);
    for (std::thread & caller : callers)
        caller.join();
    EXPECT_TRUE(Until([&] { return run == posted; })) << run << " of " << posted;
    EXPECT_EQ(wrong, 0);
    for (IVekThread * const thread : threads)
    {
        EXPECT_FALSE(thread->IsSuspended());
        EXPECT_EQ(thread->Stop(), WAIT_OBJECT_0);
        thread->Release();
    }
    EXPECT_EQ(ticks.GetRefCount(), 1u);
    EXPECT_EQ(Command::s_destroyed - destroyed, posted + executed);
}
