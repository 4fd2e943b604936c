#include "VekThread.h"

#include <windows.h>

// Kept: the maximum comes before the initial count, the other way round than the system has them.
CVekSemaphore::CVekSemaphore(unsigned int maximumCount, unsigned int initialCount)
    : m_handle(CreateSemaphoreW(nullptr, static_cast<LONG>(initialCount), static_cast<LONG>(maximumCount), nullptr))
{
}

CVekSemaphore::~CVekSemaphore()
{
    if (m_handle)
        CloseHandle(m_handle);
    m_handle = nullptr;
}

bool CVekSemaphore::Lock()
{
    WaitForSingleObject(m_handle, INFINITE);
    return true;
}

bool CVekSemaphore::Unlock()
{
    LONG previousCount;
    ReleaseSemaphore(m_handle, 1, &previousCount);
    return true;
}

void * CVekSemaphore::GetHandle() const
{
    return m_handle;
}
