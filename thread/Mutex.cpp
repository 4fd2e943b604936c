#include "VekThread.h"

#include <windows.h>

CVekMutex::CVekMutex() : m_handle(CreateMutexW(nullptr, FALSE, nullptr)) {}

CVekMutex::~CVekMutex()
{
    if (m_handle)
        CloseHandle(m_handle);
    m_handle = nullptr;
}

bool CVekMutex::Lock()
{
    WaitForSingleObject(m_handle, INFINITE);
    return true;
}

bool CVekMutex::Unlock()
{
    ReleaseMutex(m_handle);
    return true;
}

void * CVekMutex::GetHandle() const
{
    return m_handle;
}
