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
    Thread const thread = Create();
    std::string calls;
    int const destroyed = Command::s_destroyed;
    for (char name : {'a', 'b', 'c'})
        thread->AddCommand(new Command([&calls, name] { calls += name; }));
    thread->AddCommand(new Command(
        [&]
        {
            calls += 'd';
            thread->AddCommand(new Command([&] { calls += 'g'; }));
            kernel.PostThreadCommand(new Command([&] { calls += 'e'; }), thread.Get());
            kernel.ExecuteThreadCommand(new Command([&] { calls += 'f'; }), thread.Get());
        }));
    thread->AddCommand(nullptr);
    kernel.PostThreadCommand(nullptr, thread.Get());
    kernel.ExecuteThreadCommand(nullptr, thread.Get());
    EXPECT_TRUE(thread->HasPendingCommands());
    thread->Start();
    EXPECT_TRUE(Until([&] { return Command::s_destroyed - destroyed == 7; }));
    Command last([&] { calls += '.'; }, false);
    kernel.ExecuteThreadCommand(&last, thread.Get());
    kernel.ExecuteThreadCommand(&last, nullptr);
    kernel.PostThreadCommand(&last, nullptr);
    EXPECT_EQ(calls, "abcdefg.") << "on the worker itself they run at once";
    EXPECT_TRUE(last.GetRefCount() == 1 && !last.GetEndSignal());
    EXPECT_FALSE(thread->HasPendingCommands());
}

TEST_F(Workers, QueueACommandOnce)
{
    Thread const thread = Create();
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
}

TEST_F(Workers, LaunchSetsTheSignalAndReleases)
{
    CVekSignal signal;
    auto * const command = new Command([] {});
    command->AddRef();
    EXPECT_TRUE(command->IsAutoDelete());
    command->SetEndSignal(&signal);
    CallSlot(command, Behind(4));
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
    CVekRef<Deciding> const deciding(new Deciding);
    deciding->AddRef();
    deciding->Launch();
    EXPECT_EQ(deciding->GetRefCount(), 1u);
}

TEST_F(Workers, RunCommandsOnceTheyAreResumed)
{
    Thread const thread = Started();
    thread->Suspend();
    std::atomic<int> runs = 0;
    std::thread caller([&] { kernel.ExecuteThreadCommand(new Command([&] { ++runs; }), thread.Get()); });
    EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
    kernel.PostThreadCommand(new Command([&] { ++runs; }), thread.Get());
    Sleep(30);
    EXPECT_EQ(runs, 0);
    thread->Resume();
    caller.join();
    EXPECT_TRUE(Until([&] { return runs == 2; }));
}

TEST_F(Workers, RunCommandsOfEachOther)
{
    Thread const first = Started();
    Thread const second = Started();
    std::atomic<int> runs = 0;
    std::atomic<bool> finished = false;
    auto const onSecond = [&]
    {
        kernel.ExecuteThreadCommand(new Command([&] { runs += second->IsCurrentThread(); }), second.Get());
        finished = true;
    };
    kernel.PostThreadCommand(new Command(onSecond), first.Get());
    EXPECT_TRUE(Until([&] { return finished.load(); }));
    EXPECT_EQ(runs, 1);
}

// The command is queued behind the worker's last tick: nobody runs it.
TEST_F(Workers, EndWhileOthersWaitForTheirCommand)
{
    for (bool const autoDelete : {true, false})
    {
        SCOPED_TRACE(autoDelete);
        Ticks ticks;
        Gate gate;
        Thread const thread = InLastTick(ticks, gate);
        bool ran = false;
        CVekRef<Command> const command(new Command([&] { ran = true; }, autoDelete));
        std::thread caller([&] { kernel.ExecuteThreadCommand(CVekRef(command).Detach(), thread.Get()); });
        EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
        gate.Open();
        caller.join();
        for (char const * when : {"it has ended meanwhile", "it has ended before"})
        {
            SCOPED_TRACE(when);
            EXPECT_FALSE(ran || thread->HasPendingCommands());
            EXPECT_EQ(command->GetRefCount(), autoDelete ? 1u : 2u);
            EXPECT_EQ(command->GetEndSignal(), nullptr) << "it stood on the stack of who waited";
            if (autoDelete)
                command->AddRef();
            kernel.ExecuteThreadCommand(command.Get(), thread.Get());
        }
        if (!autoDelete)
            command->Release();
    }
}

// It may own what belongs to the worker's thread.
TEST_F(Workers, EndACommandThatIsWaitedForThemselves)
{
    struct Watched final : CVekThreadCommand
    {
        explicit Watched(std::string & text) : endings(text) {}
        ~Watched() override { endings += std::to_string(VekGetCurrentThreadID()) + ";"; }
        unsigned int AddRef() override { return endings += "counted;", CVekThreadCommand::AddRef(); }
        void Execute() override { endings += std::to_string(GetRefCount()) + " in "; }
        std::string & endings;
    };
    Thread const thread = Started();
    std::string endings, expected;
    for (int turn = 0; turn < 100; ++turn)
    {
        kernel.ExecuteThreadCommand(new Watched(endings), thread.Get());
        Command next([] {}, false); // behind whose end the other's has come
        kernel.ExecuteThreadCommand(&next, thread.Get());
        expected += "1 in " + std::to_string(thread->GetThreadID()) + ";";
    }
    EXPECT_EQ(endings, expected);
}

TEST_F(Workers, WaitForAWorkerThatStartsLater)
{
    Thread const thread = Create();
    std::atomic<bool> ran = false;
    std::thread caller([&] { kernel.ExecuteThreadCommand(new Command([&] { ran = true; }), thread.Get()); });
    EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
    thread->Start();
    caller.join();
    EXPECT_TRUE(ran);
}

TEST_F(Workers, KeptCommandsLeftBehindAreNotRun)
{
    Ticks ticks;
    Gate gate;
    Thread thread = InLastTick(ticks, gate);
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
    thread = Create();
    CVekRef<Command> const left(new Command([] {}));
    thread->AddCommand(left.Get());
    thread.Reset();
    EXPECT_EQ(left->GetRefCount(), 1u) << "kept: the object's end unlinks, but does not release";
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
