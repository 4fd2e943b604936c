#include "VekThread.h"

#include <windows.h>

CVekSignal::CVekSignal() : m_handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

CVekSignal::~CVekSignal()
{
    if (m_handle)
        CloseHandle(m_handle);
    m_handle = nullptr;
}

bool CVekSignal::Lock()
{
    WaitForSingleObject(m_handle, INFINITE);
    ResetEvent(m_handle);
    return true;
}

bool CVekSignal::Unlock()
{
    return true;
}

void * CVekSignal::GetHandle() const
{
    return m_handle;
}

bool CVekSignal::SetSignal()
{
    SetEvent(m_handle);
    return true;
}

bool CVekSignal::ResetSignal()
{
    ResetEvent(m_handle);
    return true;
}

bool CVekSignal::PulseSignal()
{
    PulseEvent(m_handle);
    return true;
}
