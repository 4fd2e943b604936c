#include "support/RefCountContract.h"
#include "support/Slots.h"
#include "thread/WorkerKit.h"

#include <string>
#include <thread>
#include <tuple>

using WorkerKit::Gate;
using WorkerKit::Ticks;
using WorkerKit::Until;
using WorkerKit::Workers;

TEST_F(Workers, TickUpToTheirLimit)
{
    std::tuple<char const *, unsigned int, unsigned int, bool, int> const rows[] = {
        {"each turn", 0, 3, true, 3},
        {"without callback", 0, 3, false, 0},
        {"the first turn", 5, 1, true, 1},
    };
    for (auto const & [name, interval, limit, hasCallback, expected] : rows)
    {
        SCOPED_TRACE(name);
        Ticks ticks;
        Thread thread = Started(interval, limit, hasCallback ? &ticks : nullptr);
        EXPECT_TRUE(HasEnded(thread));
        EXPECT_EQ(ticks.count, expected);
        DWORD const begin = GetTickCount();
        thread.Reset();
        EXPECT_LT(GetTickCount() - begin, 1000u) << "it is not waited for again";
        EXPECT_EQ(ticks.GetRefCount(), 1u);
    }
}

TEST_F(Workers, KeptAnIntervalCountsThousandsOfSeconds)
{
    Ticks ticks;
    Thread const thread = Started(1, 0, &ticks);
    EXPECT_TRUE(Until([&] { return ticks.count == 1; }));
    Sleep(1200);
    EXPECT_EQ(ticks.count, 1) << "1 is 1,000 seconds";
    EXPECT_EQ(thread->Stop(), WAIT_OBJECT_0);
}

TEST_F(Workers, TellTheirState)
{
    Ticks ticks;
    unsigned int idInside = 0;
    bool currentInside = false;
    Thread const thread(kernel.CreateThread(std::wstring(3000, L'n').c_str(), &ticks, true, 0, 77));
    ticks.onTick = [&]
    {
        idInside = VekGetCurrentThreadID();
        currentInside = thread->IsCurrentThread();
        Sleep(10);
    };
    EXPECT_EQ(ticks.GetRefCount(), 2u);
    EXPECT_EQ(thread->GetName().GetLength(), 3000);
    EXPECT_EQ(thread->GetHandle(), nullptr);
    EXPECT_FALSE(thread->IsRunning() || thread->IsCurrentThread() || thread->IsSuspended());
    EXPECT_EQ(thread->Start(), 1u) << "the suspend count of a thread that is created suspended";
    EXPECT_TRUE(Until([&] { return thread->IsRunning() && ticks.count > 0; }));
    EXPECT_EQ(GetThreadId(thread->GetHandle()), thread->GetThreadID());
    EXPECT_FALSE(thread->IsCurrentThread());
    EXPECT_EQ(thread->Stop(), WAIT_OBJECT_0);
    EXPECT_EQ(idInside, thread->GetThreadID());
    EXPECT_TRUE(currentInside);
    EXPECT_EQ(thread->GetHandle(), nullptr);
    EXPECT_FALSE(thread->IsRunning());
    EXPECT_EQ(thread->Stop(), WAIT_FAILED) << "there is no handle to wait for";
    EXPECT_EQ(CallSlot<bool>(thread.Get(), 21), thread->HasPendingCommands());
    ExpectRefCountContract("thread", Create().Detach());

    EXPECT_EQ(VekGetCurrentThreadID(), GetCurrentThreadId());
    EXPECT_EQ(VekGetCurrentThread(), GetCurrentThread());
}

TEST_F(Workers, CountSuspensions)
{
    Ticks ticks;
    Thread const thread = Started(0, 0, &ticks);
    EXPECT_EQ(thread->Resume(), 0);
    EXPECT_EQ(thread->Suspend(), 1);
    EXPECT_TRUE(thread->IsSuspended());
    EXPECT_TRUE(Silent(ticks));
    EXPECT_EQ(thread->Suspend(), 2);
    EXPECT_EQ(thread->Resume(), 1);
    EXPECT_TRUE(Silent(ticks));
    EXPECT_EQ(thread->Resume(), 0);
    EXPECT_FALSE(thread->IsSuspended());
    EXPECT_TRUE(Ticking(ticks));
    for (int i = 0; i < 50; ++i)
    {
        ASSERT_EQ(thread->Suspend(), 1);
        ASSERT_EQ(thread->Resume(), 0) << "also before it is really suspended";
    }
    EXPECT_TRUE(Ticking(ticks));
    thread->Suspend();
    EXPECT_EQ(thread->Stop(), WAIT_OBJECT_0) << "it is resumed to see the message";
    EXPECT_EQ(thread->Suspend(), 1) << "nobody is there to wait for";
    EXPECT_EQ(thread->Resume(), 0);
}

TEST_F(Workers, MaySuspendThemselvesAndBeforeTheirStart)
{
    Ticks ticks;
    Thread thread = Create(0, 0, &ticks);
    EXPECT_EQ(thread->Suspend(), 1);
    thread->Start();
    EXPECT_TRUE(Silent(ticks));
    EXPECT_EQ(ticks.count, 0);
    thread->Resume();
    EXPECT_TRUE(Ticking(ticks));
    thread->Suspend();
    ticks.onTick = [&]
    {
        if (ticks.count == 1000)
            thread->Suspend();
        if (ticks.count == 1100)
            thread->Suspend(), thread->Resume(); // taken back in time
    };
    ticks.count = 999;
    thread->Resume();
    EXPECT_TRUE(Until([&] { return thread->IsSuspended(); }));
    EXPECT_TRUE(Silent(ticks));
    EXPECT_EQ(ticks.count, 1000);
    ticks.count = 1099;
    EXPECT_EQ(thread->Resume(), 0);
    EXPECT_TRUE(Until([&] { return ticks.count > 1105; }));
    thread->Suspend();
    thread->Suspend();
    DWORD const begin = GetTickCount();
    thread.Reset();
    EXPECT_LT(GetTickCount() - begin, 2000u) << "the end takes every suspension back";
}

TEST_F(Workers, KeptTheRingOfMessagesIsReused)
{
    Ticks ticks;
    Thread const thread = Started(0, 0, &ticks);
    thread->Suspend();
    for (unsigned int type = 0; type < 1000; ++type)
        thread->PostControlMessage(type % 5 == 3 ? 99 : type % 5 == 2 ? 98 : type,
                                   nullptr); // none to act on
    thread->Resume();
    EXPECT_TRUE(Ticking(ticks));
    thread->Suspend();
    thread->PostControlMessage(3, nullptr);
    for (int i = 0; i < 255; ++i)
        thread->PostControlMessage(9, nullptr);
    thread->PostControlMessage(9, nullptr); // the 257th takes the stop message's place
    thread->Resume();
    EXPECT_TRUE(Ticking(ticks)) << "kept: the message was overwritten";
    thread->Suspend();
    thread->PostControlMessage(3, nullptr);
    for (int i = 0; i < 255; ++i)
        thread->PostControlMessage(9, nullptr);
    thread->Resume();
    EXPECT_TRUE(HasEnded(thread)) << "256 fit";
}

// A record that is reused while it is queued moves to the end.
TEST_F(Workers, KeepTheirMessagesInOrderWhenTheRingIsReused)
{
    Thread const thread = Started();
    CVekSignal signal;
    thread->Suspend();
    thread->PostControlMessage(9, nullptr);
    thread->PostControlMessage(2, &signal);
    for (int i = 0; i < 254; ++i)
        thread->PostControlMessage(9, nullptr);
    thread->PostControlMessage(3, nullptr); // in the first one's record
    thread->Resume();
    EXPECT_EQ(WaitForSingleObject(signal.GetHandle(), 5000), WAIT_OBJECT_0) << "the end came first";
    EXPECT_TRUE(Until([&] { return ResumeThread(thread->GetHandle()) != 0; }));
    EXPECT_TRUE(HasEnded(thread));
}

TEST_F(Workers, AcknowledgeAPostedSuspension)
{
    Ticks ticks;
    Thread thread = Started(0, 0, &ticks);
    CVekSignal signal;
    thread->PostControlMessage(2, &signal);
    signal.Lock();
    EXPECT_TRUE(Silent(ticks));
    EXPECT_FALSE(thread->IsSuspended()) << "it is not counted";
    EXPECT_EQ(ResumeThread(thread->GetHandle()), 1u);
    EXPECT_TRUE(Ticking(ticks));
    CVekSignal second;
    thread->PostControlMessage(2, &signal);
    thread->PostControlMessage(2, &second);
    signal.Lock();
    DWORD const begin = GetTickCount();
    thread.Reset();
    EXPECT_LT(GetTickCount() - begin, 2000u) << "it waits for a worker that nobody resumes";
}

TEST_F(Workers, OutliveTheirObjectInALongCall)
{
    Ticks ticks;
    Gate gate;
    ticks.onTick = [&] { gate.Pass(); };
    Thread thread = Started(0, 0, &ticks);
    EXPECT_EQ(thread->Start(), 1u) << "kept: a second start is not refused";
    EXPECT_TRUE(Until([&] { return ticks.count == 2; }));
    DWORD const begin = GetTickCount();
    thread.Reset();
    DWORD const milliseconds = GetTickCount() - begin;
    EXPECT_TRUE(milliseconds > 4900 && milliseconds < 9000) << milliseconds;
    EXPECT_GT(ticks.GetRefCount(), 1u) << "still in use";
    gate.Open();
    EXPECT_TRUE(Until([&] { return ticks.GetRefCount() == 1; }));
    EXPECT_EQ(ticks.count, 2) << "both have left their loop";
}

TEST_F(Workers, MayEndTheirOwnObject)
{
    Ticks ticks;
    IVekThread * const thread = Create(0, 0, &ticks).Detach();
    DWORD milliseconds = 0;
    unsigned int stopResult = 0;
    ticks.onTick = [&]
    {
        DWORD const begin = GetTickCount();
        stopResult = thread->Stop();
        thread->Release();
        milliseconds = GetTickCount() - begin;
    };
    thread->Start();
    EXPECT_TRUE(Until([&] { return ticks.GetRefCount() == 1; }));
    EXPECT_EQ(stopResult, static_cast<unsigned int>(WAIT_TIMEOUT)) << "it can't see its own end";
    EXPECT_LT(milliseconds, 1000u);
    EXPECT_EQ(ticks.count, 1);
}

TEST_F(Workers, EndWhileOthersWaitForTheirSuspension)
{
    Ticks ticks;
    Gate gate;
    Thread const thread = InLastTick(ticks, gate);
    std::vector<std::thread> callers;
    std::atomic<int> returned = 0;
    for (int i = 0; i < 3; ++i)
        callers.emplace_back([&] { thread->Suspend(), ++returned; });
    Sleep(50);
    EXPECT_EQ(returned, 0);
    gate.Open();
    for (std::thread & caller : callers)
        caller.join();
    EXPECT_EQ(thread->Resume(), 2) << "each call counts";
}

TEST_F(Workers, SwapTheirCallbackBetweenTicks)
{
    Ticks first, second;
    Thread const thread = Create(0, 0, &first);
    thread->SetTickCallback(&second); // not started: at once
    EXPECT_EQ(thread->GetTickCallback(), &second);
    thread->Start();
    EXPECT_TRUE(Ticking(second));
    EXPECT_EQ(first.count, 0);
    thread->SetTickCallback(&first);
    EXPECT_EQ(std::as_const(*thread).GetTickCallback(), &first);
    EXPECT_TRUE(Ticking(first));
    EXPECT_TRUE(Silent(second));
    EXPECT_EQ(second.GetRefCount(), 1u);
    CVekRef<Ticks> own(new Ticks); // swaps itself away within its tick, which is its end
    own->onTick = [&, ticks = own.Get()] { thread->SetTickCallback(&second), ticks->count = 5; };
    thread->SetTickCallback(own.Get());
    own.Reset();
    EXPECT_TRUE(Ticking(second));
    thread->Stop();
    thread->SetTickCallback(nullptr); // ended: at once
    EXPECT_EQ(thread->GetTickCallback(), nullptr);
    EXPECT_EQ(second.GetRefCount(), 1u);
}

// The swap is queued behind the worker's last tick: nobody is there to do it.
TEST_F(Workers, SwapTheCallbackOfAWorkerThatEndsMeanwhile)
{
    Ticks first, second;
    Gate gate;
    Thread const thread = InLastTick(first, gate);
    std::thread caller([&] { thread->SetTickCallback(&second); });
    EXPECT_TRUE(Until([&] { return thread->HasPendingCommands(); }));
    gate.Open();
    caller.join();
    EXPECT_EQ(thread->GetTickCallback(), &second);
    EXPECT_TRUE(first.GetRefCount() == 1 && second.GetRefCount() == 2);
}

// A callback may end as soon as the object of an ended worker is gone, whose
// thread is perhaps still leaving.
TEST_F(Workers, LetGoOfTheirCallbackWithTheirObject)
{
    Ticks ticks;
    int late = 0;
    for (int turn = 0; turn < 300; ++turn)
    {
        Thread thread = Started(0, 1, &ticks);
        while (thread->GetHandle())
            SwitchToThread();
        thread.Reset();
        late += ticks.GetRefCount() != 1;
        EXPECT_TRUE(Until([&] { return ticks.GetRefCount() == 1; }));
    }
    EXPECT_EQ(late, 0);
}
