// The part of a worker that runs on its own thread.
#include "VekLib.h"

#include "thread/Worker.h"

#include <windows.h>

#include <iterator>

namespace vek
{
namespace
{

// How debuggers are told a thread's name.
constexpr DWORD NAME_EXCEPTION = 0x406D1388;
constexpr size_t NAME_SIZE = 1024;

LONG CALLBACK ContinueNaming(EXCEPTION_POINTERS * exception)
{
    return exception->ExceptionRecord->ExceptionCode == NAME_EXCEPTION ? EXCEPTION_CONTINUE_EXECUTION
                                                                       : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void Worker::Run()
{
    NameThread();
    auto const timer = CVekRef<IVekTimer>::Adopt(getVekLibKernel()->CreateTimer());
    m_running = true;
    bool isFirstTick = true;
    unsigned int tickCount = 0;
    do
    {
        // Whoever has asked it to stop waits for it.
        if (!m_stopIsQueued.exchange(false))
            Sleep(1);
        RunCommands();
        if (HandleMessages() || m_abandoned)
            break;
        if (tickInterval == 0 || isFirstTick || IsTickDue(timer.Get()))
        {
            Tick(timer.Get());
            isFirstTick = false;
            ++tickCount;
        }
    } while (maxTickCount == 0 || tickCount < maxTickCount);
    EndRun();
}

void Worker::NameThread() const
{
    char narrow[NAME_SIZE];
    size_t length = 0;
    for (wchar_t const * text = name; length < NAME_SIZE - 1 && text[length]; ++length)
        narrow[length] = static_cast<char>(text[length]);
    narrow[length] = 0;
    ULONG_PTR const arguments[] = {0x1000, reinterpret_cast<ULONG_PTR>(narrow), GetCurrentThreadId(), 0};
    // First in the row: a host's own handlers, which may take any exception for a crash, don't see this one.
    void * const handler = AddVectoredExceptionHandler(1, ContinueNaming);
    if (!handler)
        return;
    RaiseException(NAME_EXCEPTION, 0, std::size(arguments), arguments);
    RemoveVectoredExceptionHandler(handler);
}

void Worker::RunCommands()
{
    while (m_commandCount != 0 && !m_abandoned)
    {
        if (CVekThreadCommand * const command = TakeCommand())
            command->Launch();
    }
}

bool Worker::HandleMessages()
{
    if (m_parkLater.exchange(false))
        Park(nullptr);
    while (m_messageCount != 0 && !m_abandoned)
    {
        ThreadMessage message = {};
        if (!TakeMessage(message))
            break;
        if (message.type == MESSAGE_SUSPEND)
            Park(static_cast<CVekSignal *>(message.parameter));
        else if (message.type == MESSAGE_STOP)
            return true;
    }
    return false;
}

void Worker::Park(CVekSignal * signal)
{
    m_isParking = true; // before all conditions are looked at: Unpark looks at it after changing them
    if (signal)
        signal->SetSignal();
    bool const isTakenBack = !signal && m_suspendCount == 0;
    if (!isTakenBack && !m_mustNotPark)
        SuspendThread(GetCurrentThread());
    m_isParking = false;
}

bool Worker::IsTickDue(IVekTimer * timer) const
{
    // Kept: elapsed seconds against the interval times 1000; hosts pick their intervals by it. Not a number is not due.
    return timer && static_cast<double>(tickInterval) * 1000.0 < timer->GetElapsedSeconds();
}

void Worker::Tick(IVekTimer * timer)
{
    // Shared: it may be swapped within its own tick.
    if (auto const callback = ShareCallback())
        callback->OnTick();
    if (tickInterval != 0 && timer)
        timer->Start();
}

void Worker::EndRun()
{
    UnlinkMessages();
    ReleaseCommands();
    CVekSingleLock const lock(&m_stateLock, true);
    m_running = false;
    // Of two threads of one object the later one counts.
    if (m_threadID == GetCurrentThreadId())
        m_hasEnded = true;
}

void Worker::ReleaseCommands()
{
    while (CVekThreadCommand * const command = TakeCommand())
        Drop(command);
}

} // namespace vek
