#include "VekCore.h"

#include "VekRef.h"
#include "VekText.h"
#include "base/LiveObjects.h"

#include <new>

/// A task on the stack. A callback may end the very task that is reported to it: the task stays until the last hold.
struct CVekProgressController::Task
{
    CVekString<wchar_t> name;
    double share = 0.0;    // of its parent, in percent
    double scale = 0.0;    // of the whole, in percent
    double progress = 0.0; // its own, in percent
    double step = 0.0;
    int param = 0;
    bool ended = false;
    int holds = 1; // the stack's own

    static void Drop(Task * task)
    {
        if (task && --task->holds == 0)
            delete task;
    }
};

CVekProgressController::CVekProgressController()
    : m_callback(nullptr), m_completed(false), m_cancelled(false), m_finishedShare(0.0), m_param(0), m_lostTasks(0)
{
    vek::CountBirth(vek::LiveClass::ProgressController);
    m_tasks.SetGrowthStep(CVekPointerArrayBase::GROW_DOUBLING);
}

CVekProgressController::~CVekProgressController()
{
    vek::CountEnd(vek::LiveClass::ProgressController);
    while (m_tasks.GetCount() > 0)
        RemoveTask(m_tasks.GetCount() - 1);
    m_tasks.Free();
    if (m_callback)
        m_callback->Release();
}

CVekProgressController::Task * CVekProgressController::Current() const
{
    return m_tasks.At(m_tasks.GetCount() - 1);
}

void CVekProgressController::BeginTask(wchar_t const * name, double share, double step, int param)
{
    Task const * const parent = Current();
    bool const isFirst = m_tasks.GetCount() == 0;
    if (isFirst)
    {
        m_completed = false;
        m_cancelled = false;
        m_finishedShare = 0.0;
    }
    auto * const task = new (std::nothrow) Task;
    if (task)
    {
        task->name.Assign(name);
        task->share = share;
        task->scale = isFirst ? share : share * 0.01 * ((parent ? parent->scale : 0.0) * 0.01) * 100.0;
        task->step = step;
        task->param = param;
    }
    // Kept: a task that can't be allocated is a null entry; its EndTask finds something to end.
    if (m_tasks.Append(task))
        return Progress(0.0);
    ++m_lostTasks;
    Task::Drop(task);
}

void CVekProgressController::Progress(double amount)
{
    Task * const task = Current();
    if (!task)
        return;
    task->progress += amount < 0.0 ? task->step : amount;
    if (task->progress > 100.0)
        task->progress = 100.0;
    if (m_callback)
        Report(*task);
}

void CVekProgressController::Report(Task & task)
{
    auto const callback = CVekRef<Callback>::Share(m_callback);
    ++task.holds;
    // Kept: true does not take an earlier cancellation back.
    if (!callback->OnProgress(task.progress, m_finishedShare, task.name, m_param))
        m_cancelled = true;
    Task::Drop(&task);
}

void CVekProgressController::EndTask()
{
    int const index = m_tasks.GetCount() - 1;
    if (m_lostTasks > 0)
        --m_lostTasks; // it had no room on the stack
    else if (index >= 0)
    {
        Task * const task = m_tasks[index];
        if (task)
            ++task->holds;
        Progress(100.0);
        if (!task || !task->ended) // else the callback has ended it
            RemoveTask(index);
        Task::Drop(task);
    }
}

void CVekProgressController::RemoveTask(int index)
{
    Task * const task = m_tasks[index];
    m_tasks.RemoveAt(index);
    if (task)
    {
        m_finishedShare += task->scale * 0.01 * 100.0;
        // Kept: neither limited to 100 nor reported here; the parent's next step does both.
        if (Task * const parent = Current())
            parent->progress += task->share;
        task->ended = true;
        Task::Drop(task);
    }
    if (m_tasks.GetCount() == 0)
        m_completed = true;
}

void CVekProgressController::Cancel()
{
    m_cancelled = true;
}

bool CVekProgressController::IsCancelled()
{
    return m_cancelled;
}

void CVekProgressController::Completed()
{
    m_completed = true;
}

bool CVekProgressController::IsCompleted()
{
    return m_completed;
}

void CVekProgressController::SetCallback(Callback * callback)
{
    if (callback)
        callback->AddRef();
    // Kept: stored last, so that an old callback whose Release looks finds itself still here.
    if (m_callback)
        m_callback->Release();
    m_callback = callback;
}

IVekProgressController::Callback * CVekProgressController::GetCallback()
{
    return m_callback;
}

IVekProgressController::Callback const * CVekProgressController::GetCallback() const
{
    return m_callback;
}

void CVekProgressController::SetParam(int param)
{
    m_param = param;
}
