#include "thread/Thread.h"

#include "VekLib.h"

#include "thread/MemberFunctor.h"

#include <string.h>

#include <new>

namespace
{

/// The table of every CVekThread, which tells one from a host's own thread class of whatever compiler.
std::atomic<void const *> g_table{nullptr};

void const * TableOf(IVekThread const & thread) noexcept
{
    void const * table;
    memcpy(&table, static_cast<void const *>(&thread), sizeof table);
    return table;
}

} // namespace

CVekThread::CVekThread(wchar_t const * name, TickCallback * callback, bool createFlag, unsigned int tickInterval,
                       unsigned int maxTickCount)
    : m_worker(vek::Ref<vek::Worker>::Adopt(new (std::nothrow)
                                                vek::Worker(name, callback, createFlag, tickInterval, maxTickCount)))
{
    g_table.store(TableOf(*this), std::memory_order_relaxed);
}

CVekThread::~CVekThread()
{
    if (m_worker)
        m_worker->Leave();
}

CVekThread * CVekThread::From(IVekThread * thread) noexcept
{
    return TableOf(*thread) == g_table.load(std::memory_order_relaxed) ? static_cast<CVekThread *>(thread) : nullptr;
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
}

IVekThread::TickCallback * CVekThread::GetTickCallback(void)
{
    return m_worker->GetCallback();
}

IVekThread::TickCallback const * CVekThread::GetTickCallback(void) const
{
    return m_worker->GetCallback();
}

CVekString<wchar_t> const & CVekThread::GetName(void) const
{
    return m_worker->name;
}

unsigned int CVekThread::GetTickInterval(void)
{
    return m_worker->tickInterval;
}

unsigned int CVekThread::GetMaxTickCount(void)
{
    return m_worker->maxTickCount;
}

void * CVekThread::GetHandle(void)
{
    return m_worker->GetHandle();
}

unsigned int CVekThread::GetThreadID(void)
{
    return m_worker->GetThreadID();
}

bool CVekThread::GetCreateFlag(void)
{
    return m_worker->createFlag;
}

bool CVekThread::IsCurrentThread(void)
{
    return m_worker->IsCurrentThread();
}

bool CVekThread::IsRunning(void)
{
    return m_worker->IsRunning();
}

bool CVekThread::IsSuspended(void)
{
    return m_worker->IsSuspended();
}

unsigned int CVekThread::Start(void)
{
    return m_worker->Start();
}

long CVekThread::Suspend(void)
{
    return m_worker->Suspend();
}

long CVekThread::Resume(void)
{
    return m_worker->Resume();
}

unsigned int CVekThread::Stop(void)
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

bool CVekThread::HasPendingCommands(void)
{
    return m_worker->HasPendingCommands();
}
