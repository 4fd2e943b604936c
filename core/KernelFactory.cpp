// The kernel as the factory of services.
#include "core/Kernel.h"

#include <new>

IVekMemoryIOStream * CVekKernel::CreateMemoryIOStream()
{
    return new (std::nothrow) CVekMemoryIOStream;
}

IVekFileIOStream * CVekKernel::CreateFileIOStream()
{
    return new (std::nothrow) CVekFileIOStream;
}

// The services below are not there yet: creating one fails as it does when memory is exhausted.

IVekThread * CVekKernel::CreateThread(wchar_t const *, IVekThread::TickCallback *, bool, unsigned int, unsigned int)
{
    return nullptr;
}

void CVekKernel::ExecuteThreadCommand(CVekThreadCommand *, IVekThread *) {}

void CVekKernel::PostThreadCommand(CVekThreadCommand *, IVekThread *) {}

IVekTimer * CVekKernel::CreateTimer()
{
    return nullptr;
}

IVekCameraUIController * CVekKernel::CreateCameraUIController()
{
    return nullptr;
}

IVekProgressController * CVekKernel::CreateProgressController()
{
    return nullptr;
}

IVekLexer * CVekKernel::CreateLexer()
{
    return nullptr;
}

IVekTokenizer * CVekKernel::CreateTokenizer()
{
    return nullptr;
}

IVekRandomizer * CVekKernel::CreateRandomizer()
{
    return nullptr;
}

IVekCPUUsage * CVekKernel::CreateCPUUsage()
{
    VekLogOutput(0, L"CVekKernel::CreateCPUUsage --> Failed to create CPU usage interface");
    return nullptr;
}
