#include "VekThread.h"

#include <windows.h>

void * VekGetCurrentThread()
{
    return GetCurrentThread();
}

unsigned int VekGetCurrentThreadID()
{
    return GetCurrentThreadId();
}
