#include "VekThread.h"

#include <windows.h>

CVekMultiLock::CVekMultiLock(unsigned int count, CVekSyncObject ** objects, bool waitAll, bool initialLock)
    : m_locked(false), m_count(objects ? count : 0), m_waitAll(waitAll), m_objects{}, m_handles{}, m_acquired{}
{
    if (m_count > MAX_OBJECTS)
        m_count = MAX_OBJECTS;
    for (unsigned int i = 0; i < m_count; ++i)
    {
        m_objects[i] = objects[i];
        m_handles[i] = objects[i] ? objects[i]->GetHandle() : nullptr;
    }
    if (initialLock)
        Lock();
}

CVekMultiLock::~CVekMultiLock()
{
    if (m_locked)
        Unlock();
}

bool CVekMultiLock::Lock()
{
    DWORD const result = WaitForMultipleObjects(m_count, m_handles, m_waitAll, INFINITE);
    if (m_waitAll)
    {
        // Kept: taking all of them records none, so that Unlock gives none back; callers unlock them one by one.
        for (unsigned int i = 0; i < m_count; ++i)
            m_acquired[i] = false;
    }
    else if (DWORD const index = result - WAIT_OBJECT_0; index < m_count)
    {
        m_acquired[index] = true;
    }
    m_locked = true;
    return true;
}

bool CVekMultiLock::Unlock()
{
    for (unsigned int i = 0; i < m_count; ++i)
    {
        if (!m_acquired[i])
            continue;
        m_objects[i]->Unlock();
        m_acquired[i] = false;
    }
    m_locked = false;
    return true;
}

bool CVekMultiLock::IsLocked()
{
    return m_locked;
}
