#pragma once

#include "VekRef.h"
#include "VekThread.h"

#include "base/SpinLock.h"
#include "thread/ThreadMessage.h"

#include <atomic>

namespace vek
{

/// What a thread object and its operating-system thread share: the queues, the callback and the state. It is counted,
/// so that a worker inside a long call outlives its thread object safely.
class Worker : public CVekRefCounted<IVekObject>
{
public:
    Worker(wchar_t const * threadName, IVekThread::TickCallback * callback, bool flag, unsigned int interval,
           unsigned int tickLimit);
    Worker(Worker const &) = delete;
    Worker & operator=(Worker const &) = delete;
    ~Worker() override;

    CVekString<wchar_t> const name;
    bool const createFlag;
    unsigned int const tickInterval;
    unsigned int const maxTickCount;

    /// The operations of IVekThread.
    unsigned int Start();
    long Suspend();
    long Resume();
    unsigned int Stop();
    void Post(unsigned int type, void * parameter);
    void AddCommand(CVekThreadCommand * command);
    bool HasPendingCommands() const { return m_commandCount != 0; }
    bool IsSuspended() const { return m_suspendCount > 0; }
    bool IsRunning() const { return m_running; }
    bool IsCurrentThread() const { return VekGetCurrentThreadID() == m_threadID && !m_hasEnded; }
    void * GetHandle();
    unsigned int GetThreadID() const { return m_threadID; }
    IVekThread::TickCallback * GetCallback();

    /// Swaps the callback, on the worker.
    void SwapCallback(IVekThread::TickCallback * callback);
    /// Swaps the callback of a worker that has not started or has ended; false for any other.
    bool SwapCallbackAtRest(IVekThread::TickCallback * callback);
    /// Queues a command and waits until it has set its end signal, or the worker has ended without running it; then it
    /// is treated as the worker's end treats commands. One call at a time.
    void RunCommand(CVekThreadCommand * command, CVekSignal & endSignal);
    /// The end of the thread object: stops the worker, which leaves its loop after a long call all the same.
    void Leave();

    /// The loop, on the worker's thread.
    void Run();

private:
    static constexpr unsigned int RING_SIZE = 256;

    void NameThread() const;
    void RunCommands();
    /// True when a stop message was met.
    bool HandleMessages();
    /// Suspends the worker's own thread once the signal is set.
    void Park(CVekSignal * signal);
    void Tick(IVekTimer * timer);
    bool IsTickDue(IVekTimer * timer) const;
    void EndRun();
    void UnlinkMessages();
    void ReleaseCommands();
    CVekRef<IVekThread::TickCallback> ShareCallback();

    /// Counts, and lets the worker suspend itself once it is in its loop (again).
    long SuspendLater();
    /// Lets the thread go on, or not suspend itself if it is about to.
    unsigned long ResumeOnce();
    void Unpark();
    /// False when there is nothing to wait for.
    bool SuspendAndWait();
    unsigned int StopAndWait();
    bool IsAtRest() const { return !m_handle || m_hasEnded; }
    /// A handle of the caller's own to the thread, to wait for; null when it does not run.
    void * DuplicateHandle();
    void Append(ThreadMessage & message);
    bool TakeMessage(ThreadMessage & message);
    CVekThreadCommand * TakeCommand();
    /// True when the signal was set, false when the worker ended first.
    bool WaitForEnd(CVekSignal & endSignal);
    /// What becomes of a command that is not run any more.
    void Drop(CVekThreadCommand * command);
    void DropAwaited(CVekSignal const & endSignal);
    void UnlinkCommands();
    void CountCommands() { m_commandCount.store(m_commands.GetCount(), std::memory_order_release); }

    std::atomic<unsigned int> m_threadID = 0;
    std::atomic<bool> m_running = false;
    std::atomic<bool> m_hasEnded = false;
    std::atomic<bool> m_abandoned = false; // the thread object is gone: leave the loop
    std::atomic<bool> m_mustNotPark = false;
    std::atomic<bool> m_isParking = false; // from before the acknowledgement to after the suspension
    std::atomic<bool> m_parkLater = false; // suspended by itself or before its start
    std::atomic<long> m_suspendCount = 0;

    CVekCriticalSection m_suspendLock; // held by who waits for the acknowledgement
    CVekCriticalSection m_stateLock;   // guards the handle and the callback
    void * m_handle = nullptr;
    CVekRef<IVekThread::TickCallback> m_callback;

    CVekCriticalSection m_messageLock;
    CVekDirectLinkedList<ThreadMessage *> m_messages;
    std::atomic<unsigned int> m_messageCount = 0;
    std::atomic<bool> m_stopIsQueued = false; // the next pass comes without sleep
    ThreadMessage m_ring[RING_SIZE] = {};
    unsigned int m_writeIndex = 0;

    SpinLock m_commandLock;
    CVekDirectLinkedList<CVekThreadCommand *> m_commands;
    std::atomic<unsigned int> m_commandCount = 0;
    std::atomic<CVekSignal *> m_awaited = nullptr; // the end signal of the command that somebody waits for
};

} // namespace vek
