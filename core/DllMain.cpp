#include "base/Pool.h"

#include <windows.h>

// The system tells the DLL of each thread that ends, whoever made it.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void *)
{
    if (reason == DLL_THREAD_DETACH)
        vek::PoolLeaveThread();
    return TRUE;
}
