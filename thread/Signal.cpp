#include "VekThread.h"

#include <windows.h>

CVekSignal::CVekSignal() : m_handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

CVekSignal::~CVekSignal()
{
    if (m_handle)
        CloseHandle(m_handle);
    m_handle = nullptr;
}

bool CVekSignal::Lock(void)
{
    WaitForSingleObject(m_handle, INFINITE);
    ResetEvent(m_handle);
    return true;
}

bool CVekSignal::Unlock(void)
{
    return true;
}

void * CVekSignal::GetHandle(void) const
{
    return m_handle;
}

bool CVekSignal::SetSignal(void)
{
    SetEvent(m_handle);
    return true;
}

bool CVekSignal::ResetSignal(void)
{
    ResetEvent(m_handle);
    return true;
}

bool CVekSignal::PulseSignal(void)
{
    PulseEvent(m_handle);
    return true;
}
