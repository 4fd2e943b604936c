#include "VekThread.h"

#include <windows.h>

namespace
{

CRITICAL_SECTION * Record(uintptr_t * section)
{
    return reinterpret_cast<CRITICAL_SECTION *>(section);
}

} // namespace

CVekCriticalSection::CVekCriticalSection()
{
    static_assert(sizeof(m_section) == sizeof(CRITICAL_SECTION) && alignof(uintptr_t) >= alignof(CRITICAL_SECTION));
    InitializeCriticalSection(Record(m_section));
}

CVekCriticalSection::~CVekCriticalSection()
{
    DeleteCriticalSection(Record(m_section));
}

bool CVekCriticalSection::Lock()
{
    EnterCriticalSection(Record(m_section));
    return true;
}

bool CVekCriticalSection::Unlock()
{
    LeaveCriticalSection(Record(m_section));
    return true;
}

void * CVekCriticalSection::GetHandle() const
{
    return nullptr;
}
