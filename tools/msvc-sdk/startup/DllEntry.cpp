// A DLL's entry.
#include "Startup.h"

extern "C"
{

    int __stdcall DllMain(void *, unsigned long, void *);

// For DLLs that have no DllMain of their own.
#ifdef _WIN64
#pragma comment(linker, "/alternatename:DllMain=NoDllMain")
#else
#pragma comment(linker, "/alternatename:_DllMain@12=_NoDllMain@12")
#endif
    int __stdcall NoDllMain(void *, unsigned long, void *)
    {
        return 1;
    }

    static int Run(void * module, unsigned long reason, void * reserved)
    {
        constexpr unsigned long DETACH = 0, ATTACH = 1;
        if (reason == ATTACH && !StartModule())
            return 0;
        int const result = DllMain(module, reason, reserved);
        if (reason == DETACH || (reason == ATTACH && !result))
            EndModule();
        return result;
    }

    WITHOUT_COOKIE int __stdcall _DllMainCRTStartup(void * module, unsigned long reason, void * reserved)
    {
        if (reason == 1)
            __security_init_cookie();
        return Run(module, reason, reserved);
    }

} // extern "C"
