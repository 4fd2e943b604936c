// The value that guards return addresses on the stack.
#include "Startup.h"

extern "C"
{

    __declspec(dllimport) int __stdcall QueryPerformanceCounter(long long *);
    __declspec(dllimport) unsigned long __stdcall GetCurrentThreadId();
    __declspec(dllimport) unsigned long __stdcall GetCurrentProcessId();

#ifdef _WIN64
#define UNSET_COOKIE 0x00002B992DDFA232
#define COOKIE_BITS 0x0000FFFFFFFFFFFF
#else
#define UNSET_COOKIE 0xBB40E64E
#define COOKIE_BITS 0xFFFFFFFF
#endif
    uintptr_t __security_cookie = UNSET_COOKIE;

    // Newer systems' loaders have set it before, from the load configuration.
    WITHOUT_COOKIE void __cdecl __security_init_cookie()
    {
        if (__security_cookie != UNSET_COOKIE)
            return;
        long long count = 0;
        QueryPerformanceCounter(&count);
        uintptr_t const value = static_cast<uintptr_t>(count * 0x9E3779B97F4A7C15ULL >> 16) ^ GetCurrentThreadId() ^
                                (GetCurrentProcessId() << 7) ^ reinterpret_cast<uintptr_t>(&count);
        __security_cookie = value & COOKIE_BITS ? value & COOKIE_BITS : 0x4711;
    }

    WITHOUT_COOKIE void __fastcall __security_check_cookie(uintptr_t cookie)
    {
        if (cookie != __security_cookie)
            __fastfail(2);
    }

} // extern "C"
