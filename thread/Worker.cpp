#include "thread/Worker.h"

#include <windows.h>

#include <mutex>

namespace vek
{
namespace
{

// Kept: a tiny stack is asked for, which the system rounds up to its minimum.
constexpr SIZE_T STACK_SIZE = 16;
constexpr DWORD STOP_MILLISECONDS = 5000;
constexpr DWORD RESUME_FAILED = static_cast<DWORD>(-1);

DWORD WINAPI WorkerEntry(void * parameter)
{
    auto const worker = CVekRef<Worker>::Adopt(static_cast<Worker *>(parameter));
    worker->Run();
    return 0;
}

/// Closes a handle of its own with the scope.
class HandleScope
{
public:
    explicit HandleScope(HANDLE handle) : m_handle(handle) {}
    HandleScope(HandleScope const &) = delete;
    HandleScope & operator=(HandleScope const &) = delete;
    ~HandleScope()
    {
        if (m_handle)
            CloseHandle(m_handle);
    }
    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

} // namespace

Worker::Worker(wchar_t const * threadName, IVekThread::TickCallback * callback, bool flag, unsigned int interval,
               unsigned int tickLimit)
    : name(threadName), createFlag(flag), tickInterval(interval), maxTickCount(tickLimit),
      m_callback(CVekRef<IVekThread::TickCallback>::Share(callback))
{
}

Worker::~Worker()
{
    UnlinkCommands();
    UnlinkMessages();
    if (m_handle)
        CloseHandle(m_handle);
}

unsigned int Worker::Start()
{
    CVekSingleLock const lock(&m_stateLock, true);
    // Kept: a second start is not refused; the first thread goes on without being known.
    if (m_handle)
        CloseHandle(m_handle);
    m_hasEnded = false;
    AddRef(); // the thread's own
    DWORD id = 0;
    m_handle = ::CreateThread(nullptr, STACK_SIZE, WorkerEntry, this, CREATE_SUSPENDED, &id);
    m_threadID = id;
    if (m_handle)
        return ::ResumeThread(m_handle);
    Release();
    return RESUME_FAILED;
}

void * Worker::GetHandle()
{
    CVekSingleLock const lock(&m_stateLock, true);
    return IsAtRest() ? nullptr : m_handle;
}

void * Worker::DuplicateHandle()
{
    CVekSingleLock const lock(&m_stateLock, true);
    HANDLE copy = nullptr;
    if (!IsAtRest())
        ::DuplicateHandle(GetCurrentProcess(), m_handle, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return copy;
}

unsigned int Worker::Stop()
{
    if (IsSuspended())
        Resume();
    return StopAndWait();
}

unsigned int Worker::StopAndWait()
{
    // Before the message: a worker that meets it at once has no handle any more.
    HandleScope const thread(DuplicateHandle());
    Post(MESSAGE_STOP, nullptr);
    if (IsCurrentThread())
        return WAIT_TIMEOUT; // it can't see its own end
    return WaitForSingleObject(thread.Get(), STOP_MILLISECONDS);
}

void Worker::Leave()
{
    if (GetHandle())
    {
        m_mustNotPark = true;
        m_suspendCount = 0;
        Unpark();
        StopAndWait();
    }
    m_abandoned = true;
    SwapCallbackAtRest(nullptr); // a worker that is still in a long call lets go of it after that
    UnlinkCommands();
}

// --- suspension ------------------------------------------------------------------------------------------------------

long Worker::Suspend()
{
    if (IsCurrentThread())
        return SuspendLater(); // it can't wait for itself
    // Of several threads one waits for the acknowledgement and the others for that one.
    CVekSingleLock const lock(&m_suspendLock, true);
    return m_suspendCount > 0 || SuspendAndWait() ? ++m_suspendCount : SuspendLater();
}

long Worker::SuspendLater()
{
    long const count = ++m_suspendCount;
    m_parkLater = true;
    return count;
}

bool Worker::SuspendAndWait()
{
    HandleScope const thread(DuplicateHandle());
    CVekSignal signal;
    if (!thread.Get() || !signal.GetHandle())
        return false;
    ThreadMessage message = {nullptr, nullptr, MESSAGE_SUSPEND, &signal}; // not of the ring, which may be reused
    Append(message);
    HANDLE const handles[] = {signal.GetHandle(), thread.Get()};
    WaitForMultipleObjects(2, handles, FALSE, INFINITE);
    // A worker that ended has not met it: it must not stay in the queue.
    CVekSingleLock const lock(&m_messageLock, true);
    m_messages.Remove(&message);
    m_messageCount = m_messages.GetCount();
    return true;
}

long Worker::Resume()
{
    // Of several threads that take back the last suspension one lets the worker go on.
    long count = m_suspendCount;
    do
    {
        if (count <= 0)
            return 0;
    } while (!m_suspendCount.compare_exchange_weak(count, count - 1));
    if (count == 1)
        Unpark();
    return count - 1;
}

unsigned long Worker::ResumeOnce()
{
    CVekSingleLock const lock(&m_stateLock, true);
    return IsAtRest() ? RESUME_FAILED : ::ResumeThread(m_handle);
}

void Worker::Unpark()
{
    for (;;)
    {
        bool const isParking = m_isParking;
        DWORD const count = ResumeOnce();
        if (count == RESUME_FAILED || count == 1 || (count == 0 && !isParking))
            return;
        if (count == 0)
            Sleep(0); // it has acknowledged, but not yet suspended itself
    }
}

// --- queues ----------------------------------------------------------------------------------------------------------

void Worker::Append(ThreadMessage & message)
{
    CVekSingleLock const lock(&m_messageLock, true);
    m_messages.AddTail(&message);
    m_messageCount = m_messages.GetCount();
}

void Worker::Post(unsigned int type, void * parameter)
{
    CVekSingleLock const lock(&m_messageLock, true);
    ThreadMessage & message = m_ring[m_writeIndex];
    m_writeIndex = (m_writeIndex + 1) % RING_SIZE;
    // Kept: the ring is not checked for overflow; a record that is still queued carries the new message, at the end.
    m_messages.Remove(&message);
    message.type = type;
    message.parameter = parameter;
    m_messages.AddTail(&message);
    m_messageCount = m_messages.GetCount();
    if (type == MESSAGE_STOP)
        m_stopIsQueued = true;
}

bool Worker::TakeMessage(ThreadMessage & message)
{
    CVekSingleLock const lock(&m_messageLock, true);
    ThreadMessage const * const head = m_messages.RemoveHead();
    m_messageCount = m_messages.GetCount();
    if (head)
        message = *head;
    return head != nullptr;
}

void Worker::UnlinkMessages()
{
    CVekSingleLock const lock(&m_messageLock, true);
    m_messages.RemoveAll(false);
    m_messageCount = 0;
    m_stopIsQueued = false;
}

void Worker::AddCommand(CVekThreadCommand * command)
{
    std::lock_guard const lock(m_commandLock);
    // A copied command carries its source's links, and one that is queued already must not be queued twice.
    if (command->GetPrev() || command->GetNext() || m_commands.GetHead() == command)
    {
        CVekThreadCommand const * queued = m_commands.GetHead();
        while (queued && queued != command)
            queued = queued->GetNext();
        if (queued)
            return;
        command->SetPrev(nullptr);
        command->SetNext(nullptr);
    }
    m_commands.AddTail(command);
    CountCommands();
}

CVekThreadCommand * Worker::TakeCommand()
{
    std::lock_guard const lock(m_commandLock);
    CVekThreadCommand * const command = m_commands.RemoveHead();
    CountCommands();
    return command;
}

void Worker::RunCommand(CVekThreadCommand * command, CVekSignal & endSignal)
{
    m_awaited = &endSignal;
    AddCommand(command);
    if (!WaitForEnd(endSignal))
        DropAwaited(endSignal); // if it came too late for the worker to do so
    m_awaited = nullptr;
}

bool Worker::WaitForEnd(CVekSignal & endSignal)
{
    // A worker that has not started may yet be: its end can't be waited for, only looked for.
    constexpr DWORD LOOK_MILLISECONDS = 10;
    for (bool hasEnded = false; !hasEnded;)
    {
        HandleScope const thread(DuplicateHandle());
        HANDLE const handles[] = {endSignal.GetHandle(), thread.Get()};
        hasEnded = m_hasEnded;
        DWORD const result = thread.Get() ? WaitForMultipleObjects(2, handles, FALSE, INFINITE)
                                          : WaitForSingleObject(handles[0], hasEnded ? 0 : LOOK_MILLISECONDS);
        if (result == WAIT_OBJECT_0)
            return true;
        hasEnded = hasEnded || thread.Get();
    }
    return false;
}

void Worker::DropAwaited(CVekSignal const & endSignal)
{
    CVekThreadCommand * command = nullptr;
    {
        std::lock_guard const lock(m_commandLock);
        // Known by its signal: the command itself may be gone, and another may stand at its address.
        command = m_commands.GetHead();
        while (command && command->GetEndSignal() != &endSignal)
            command = command->GetNext();
        if (command)
            m_commands.Remove(command);
        CountCommands();
    }
    if (command)
        Drop(command);
}

void Worker::Drop(CVekThreadCommand * command)
{
    // Kept: its end signal is not set. Who waits for it goes on by himself, and the signal with him.
    if (command->GetEndSignal() == m_awaited)
        command->SetEndSignal(nullptr);
    if (command->IsAutoDelete())
        command->Release();
}

void Worker::UnlinkCommands()
{
    std::lock_guard const lock(m_commandLock);
    m_commands.RemoveAll(false);
    CountCommands();
}

// --- the callback ----------------------------------------------------------------------------------------------------

IVekThread::TickCallback * Worker::GetCallback()
{
    CVekSingleLock const lock(&m_stateLock, true);
    return m_callback.Get();
}

CVekRef<IVekThread::TickCallback> Worker::ShareCallback()
{
    CVekSingleLock const lock(&m_stateLock, true);
    return m_callback;
}

void Worker::SwapCallback(IVekThread::TickCallback * callback)
{
    auto swapped = CVekRef<IVekThread::TickCallback>::Share(callback); // released after the lock
    CVekSingleLock const lock(&m_stateLock, true);
    m_callback.Swap(swapped);
}

bool Worker::SwapCallbackAtRest(IVekThread::TickCallback * callback)
{
    CVekRef<IVekThread::TickCallback> swapped;     // released after the lock
    CVekSingleLock const lock(&m_stateLock, true); // nobody starts it meanwhile
    if (!IsAtRest())
        return false;
    swapped = CVekRef<IVekThread::TickCallback>::Share(callback);
    m_callback.Swap(swapped);
    return true;
}

} // namespace vek
