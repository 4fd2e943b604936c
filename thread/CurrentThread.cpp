#include "VekThread.h"

#include <windows.h>

void * VekGetCurrentThread(void)
{
    return GetCurrentThread();
}

unsigned int VekGetCurrentThreadID(void)
{
    return GetCurrentThreadId();
}
