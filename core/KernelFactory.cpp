// The kernel as the factory of services.
#include "core/Kernel.h"

#include "thread/Thread.h"

#include <new>

IVekThread * CVekKernel::CreateThread(wchar_t const * name, IVekThread::TickCallback * callback, bool createFlag,
                                      unsigned int tickInterval, unsigned int maxTickCount)
{
    auto thread = CVekRef<CVekThread>::Adopt(new (std::nothrow)
                                                 CVekThread(name, callback, createFlag, tickInterval, maxTickCount));
    return thread && thread->IsUsable() ? thread.Detach() : nullptr;
}

IVekTimer * CVekKernel::CreateTimer()
{
    return new (std::nothrow) CVekTimer;
}

IVekMemoryIOStream * CVekKernel::CreateMemoryIOStream()
{
    return new (std::nothrow) CVekMemoryIOStream;
}

IVekFileIOStream * CVekKernel::CreateFileIOStream()
{
    return new (std::nothrow) CVekFileIOStream;
}

IVekProgressController * CVekKernel::CreateProgressController()
{
    return new (std::nothrow) CVekProgressController;
}

IVekRandomizer * CVekKernel::CreateRandomizer()
{
    return new (std::nothrow) CVekRandomizer;
}

IVekCPUUsage * CVekKernel::CreateCPUUsage()
{
    auto * const usage = new (std::nothrow) CVekCPUUsage;
    if (!usage)
        VekLogOutput(0, L"CVekKernel::CreateCPUUsage --> Failed to create CPU usage interface");
    return usage;
}

IVekCameraUIController * CVekKernel::CreateCameraUIController()
{
    return new (std::nothrow) CVekCameraUIController;
}

IVekLexer * CVekKernel::CreateLexer()
{
    return new (std::nothrow) CVekLexer;
}

IVekTokenizer * CVekKernel::CreateTokenizer()
{
    return new (std::nothrow) CVekTokenizer;
}
