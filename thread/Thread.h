#pragma once

#include "VekThread.h"

#include "core/Ref.h"
#include "thread/Worker.h"

/// The library's worker thread: the face of what it shares with the thread of the operating system.
class CVekThread final : public CVekRefCounted<IVekThread>
{
public:
    CVekThread(wchar_t const * name, TickCallback * callback, bool createFlag, unsigned int tickInterval,
               unsigned int maxTickCount);
    CVekThread(CVekThread const &) = delete;
    CVekThread & operator=(CVekThread const &) = delete;
    ~CVekThread() override;

    /// The thread as the library's own class; null for one that a host has implemented.
    static CVekThread * From(IVekThread * thread) noexcept;
    /// False when the shared part could not be allocated: the object is of no use.
    bool IsUsable() const { return static_cast<bool>(m_worker); }
    /// Waits until the command has run, or the worker has ended without running it.
    void WaitForCommand(CVekThreadCommand * command, CVekSignal & signal) { m_worker->WaitForCommand(command, signal); }

    void SetTickCallback(TickCallback * callback) override;
    TickCallback * GetTickCallback(void) override;
    TickCallback const * GetTickCallback(void) const override;
    CVekString<wchar_t> const & GetName(void) const override;
    unsigned int GetTickInterval(void) override;
    unsigned int GetMaxTickCount(void) override;
    void * GetHandle(void) override;
    unsigned int GetThreadID(void) override;
    bool GetCreateFlag(void) override;
    bool IsCurrentThread(void) override;
    bool IsRunning(void) override;
    bool IsSuspended(void) override;
    unsigned int Start(void) override;
    long Suspend(void) override;
    long Resume(void) override;
    unsigned int Stop(void) override;
    void PostControlMessage(unsigned int type, void * parameter) override;
    void AddCommand(CVekThreadCommand * command) override;
    bool HasPendingCommands(void) override;

private:
    vek::Ref<vek::Worker> m_worker;
};
