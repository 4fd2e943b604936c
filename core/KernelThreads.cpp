// The kernel's thread commands.
#include "core/Kernel.h"

#include "base/AsOwn.h"
#include "core/ProcessState.h"
#include "thread/EndSignal.h"
#include "thread/Thread.h"

#include <mutex>

void CVekKernel::ExecuteThreadCommand(CVekThreadCommand * command, IVekThread * thread)
{
    if (!command || !thread)
        return;
    if (thread->IsCurrentThread())
        return command->Launch(); // a worker that waits for its own queue waits forever
    // Kept: held across the wait, so that one such command is under way in the whole process.
    std::lock_guard const lock(vek::g_process.threadCommandLock);
    vek::EndSignal signal(*command);
    if (!signal.GetHandle())
    {
        // One that can't be waited for is not run: it may stand on the caller's stack.
        if (command->IsAutoDelete())
            command->Release();
        return;
    }
    // Once it is queued it is the worker's: one that deletes itself may be gone.
    if (CVekThread * const worker = vek::AsOwn<CVekThread>(*thread))
        return worker->RunCommand(command, signal);
    thread->AddCommand(command);
    signal.Lock();
}

void CVekKernel::PostThreadCommand(CVekThreadCommand * command, IVekThread * thread)
{
    if (!command || !thread)
        return;
    if (thread->IsCurrentThread())
        command->Launch();
    else
        thread->AddCommand(command);
}
