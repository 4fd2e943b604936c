// Static objects inside functions: made once, whichever thread comes first.
#include "Startup.h"

extern "C"
{

    __declspec(dllimport) void __stdcall Sleep(unsigned long);

    int _Init_global_epoch = INT32_MIN;
    __declspec(thread) int _Init_thread_epoch = INT32_MIN;
    static long s_lock;

    static void Lock()
    {
        while (__atomic_exchange_n(&s_lock, 1, __ATOMIC_ACQUIRE))
            Sleep(0);
    }
    static void Unlock()
    {
        __atomic_store_n(&s_lock, 0, __ATOMIC_RELEASE);
    }

    void __cdecl _Init_thread_header(int * once)
    {
        Lock();
        while (*once == -1) // another thread is making it
        {
            Unlock();
            Sleep(1);
            Lock();
        }
        if (*once == 0)
            *once = -1;
        else
            _Init_thread_epoch = _Init_global_epoch;
        Unlock();
    }

    void __cdecl _Init_thread_footer(int * once)
    {
        Lock();
        *once = ++_Init_global_epoch;
        _Init_thread_epoch = _Init_global_epoch;
        Unlock();
    }

    void __cdecl _Init_thread_abort(int * once)
    {
        Lock();
        *once = 0;
        Unlock();
    }

} // extern "C"
