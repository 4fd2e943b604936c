#include "VekThread.h"

CVekSingleLock::CVekSingleLock(CVekSyncObject * object, bool initialLock) : m_object(object), m_locked(false)
{
    if (initialLock)
        Lock();
}

CVekSingleLock::~CVekSingleLock()
{
    if (m_locked)
        Unlock();
}

bool CVekSingleLock::Lock()
{
    if (m_object)
        m_object->Lock();
    m_locked = true;
    return true;
}

bool CVekSingleLock::Unlock()
{
    // Kept: it does not look whether this holder locked; callers hand a lock taken elsewhere to a holder.
    if (m_object)
        m_object->Unlock();
    m_locked = false;
    return true;
}

bool CVekSingleLock::IsLocked()
{
    return m_locked;
}
