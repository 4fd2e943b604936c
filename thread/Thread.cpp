#include "thread/Thread.h"

#include "VekLib.h"

#include "base/LiveObjects.h"
#include "thread/MemberFunctor.h"

#include <new>

CVekThread::CVekThread()
{
    vek::CountBirth(vek::LiveClass::Thread);
}

CVekThread::CVekThread(wchar_t const * name, TickCallback * callback, bool createFlag, unsigned int tickInterval,
                       unsigned int maxTickCount)
    : m_worker(CVekRef<vek::Worker>::Adopt(new (std::nothrow)
                                               vek::Worker(name, callback, createFlag, tickInterval, maxTickCount)))
{
    vek::CountBirth(vek::LiveClass::Thread);
}

CVekThread::~CVekThread()
{
    vek::CountEnd(vek::LiveClass::Thread);
    if (m_worker)
        m_worker->Leave();
}

void CVekThread::SetTickCallback(TickCallback * callback)
{
    if (IsCurrentThread())
        return m_worker->SwapCallback(callback);
    if (m_worker->SwapCallbackAtRest(callback))
        return;
    // While the worker runs, the callback is only ever swapped by itself, between two ticks.
    MemberFunctor1<CVekThread *, void (CVekThread::*)(TickCallback *), TickCallback *> command(
        this, &CVekThread::SetTickCallback, callback);
    getVekLibKernel()->ExecuteThreadCommand(&command, this);
    if (!command.HasRun())
        m_worker->SwapCallbackAtRest(callback); // it has ended meanwhile
}

IVekThread::TickCallback * CVekThread::GetTickCallback()
{
    return m_worker->GetCallback();
}

IVekThread::TickCallback const * CVekThread::GetTickCallback() const
{
    return m_worker->GetCallback();
}

CVekString<wchar_t> const & CVekThread::GetName() const
{
    return m_worker->name;
}

unsigned int CVekThread::GetTickInterval()
{
    return m_worker->tickInterval;
}

unsigned int CVekThread::GetMaxTickCount()
{
    return m_worker->maxTickCount;
}

void * CVekThread::GetHandle()
{
    return m_worker->GetHandle();
}

unsigned int CVekThread::GetThreadID()
{
    return m_worker->GetThreadID();
}

bool CVekThread::GetCreateFlag()
{
    return m_worker->createFlag;
}

bool CVekThread::IsCurrentThread()
{
    return m_worker->IsCurrentThread();
}

bool CVekThread::IsRunning()
{
    return m_worker->IsRunning();
}

bool CVekThread::IsSuspended()
{
    return m_worker->IsSuspended();
}

unsigned int CVekThread::Start()
{
    return m_worker->Start();
}

long CVekThread::Suspend()
{
    return m_worker->Suspend();
}

long CVekThread::Resume()
{
    return m_worker->Resume();
}

unsigned int CVekThread::Stop()
{
    return m_worker->Stop();
}

void CVekThread::PostControlMessage(unsigned int type, void * parameter)
{
    m_worker->Post(type, parameter);
}

void CVekThread::AddCommand(CVekThreadCommand * command)
{
    if (command)
        m_worker->AddCommand(command);
}

bool CVekThread::HasPendingCommands()
{
    return m_worker->HasPendingCommands();
}
