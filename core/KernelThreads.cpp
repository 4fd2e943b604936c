// The kernel's thread commands.
#include "core/Kernel.h"

#include "base/AsOwn.h"
#include "core/ProcessState.h"
#include "thread/Thread.h"

void CVekKernel::ExecuteThreadCommand(CVekThreadCommand * command, IVekThread * thread)
{
    if (!command || !thread)
        return;
    if (thread->IsCurrentThread())
        return command->Launch(); // a worker that waits for its own queue waits forever
    // Kept: held across the wait, so that one such command is under way in the whole process.
    CVekSingleLock const lock(&vek::GetProcessState().threadCommandLock, true);
    // The command may release itself on the worker before it is looked at here.
    auto const own = CVekRef<CVekThreadCommand>::Share(command);
    CVekSignal signal;
    if (!signal.GetHandle())
        return; // a command that can't be waited for is not run: it may stand on the caller's stack
    command->SetEndSignal(&signal);
    thread->AddCommand(command);
    if (CVekThread * const worker = vek::AsOwn<CVekThread>(*thread))
        worker->WaitForCommand(command, signal);
    else
        signal.Lock();
    command->SetEndSignal(nullptr);
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
