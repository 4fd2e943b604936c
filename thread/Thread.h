#pragma once

#include "VekRef.h"
#include "VekThread.h"

#include "thread/Worker.h"

/// The library's worker thread: the face of what it shares with the thread of the operating system.
class CVekThread final : public CVekRefCounted<IVekThread>
{
public:
    /// A thread without its shared part, of no use but to tell its class by.
    CVekThread();
    CVekThread(wchar_t const * name, TickCallback * callback, bool createFlag, unsigned int tickInterval,
               unsigned int maxTickCount);
    CVekThread(CVekThread const &) = delete;
    CVekThread & operator=(CVekThread const &) = delete;
    ~CVekThread() override;

    /// False when the shared part could not be allocated: the object is of no use.
    bool IsUsable() const { return static_cast<bool>(m_worker); }
    /// Queues a command and waits until it has set its end signal, or the worker has ended without running it.
    void RunCommand(CVekThreadCommand * command, CVekSignal & endSignal) { m_worker->RunCommand(command, endSignal); }

    void SetTickCallback(TickCallback * callback) override;
    TickCallback * GetTickCallback() override;
    TickCallback const * GetTickCallback() const override;
    CVekString<wchar_t> const & GetName() const override;
    unsigned int GetTickInterval() override;
    unsigned int GetMaxTickCount() override;
    void * GetHandle() override;
    unsigned int GetThreadID() override;
    bool GetCreateFlag() override;
    bool IsCurrentThread() override;
    bool IsRunning() override;
    bool IsSuspended() override;
    unsigned int Start() override;
    long Suspend() override;
    long Resume() override;
    unsigned int Stop() override;
    void PostControlMessage(unsigned int type, void * parameter) override;
    void AddCommand(CVekThreadCommand * command) override;
    bool HasPendingCommands() override;

private:
    CVekRef<vek::Worker> m_worker;
};
