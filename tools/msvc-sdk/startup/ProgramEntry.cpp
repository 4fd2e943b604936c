// A console program's entry, compiled for main and, with WIDE_MAIN, for wmain.
#include "Startup.h"

extern "C"
{

    __declspec(dllimport) int __cdecl _crt_atexit(void(__cdecl *)());
    __declspec(dllimport) __declspec(noreturn) void __cdecl exit(int);
    __declspec(dllimport) void __cdecl _set_app_type(int);
    __declspec(dllimport) int * __cdecl __p___argc();

#if defined(WIDE_MAIN)
    __declspec(dllimport) int __cdecl _configure_wide_argv(int);
    __declspec(dllimport) int __cdecl _initialize_wide_environment();
    __declspec(dllimport) wchar_t *** __cdecl __p___wargv();
    int __cdecl wmain(int, wchar_t **, wchar_t **);
#define MAIN wmain
#define START wmainCRTStartup
#define ARGUMENTS (_configure_wide_argv(1), _initialize_wide_environment(), *__p___wargv())
#else
    __declspec(dllimport) int __cdecl _configure_narrow_argv(int);
    __declspec(dllimport) int __cdecl _initialize_narrow_environment();
    __declspec(dllimport) char *** __cdecl __p___argv();
    int __cdecl main(int, char **, char **);
#define MAIN main
#define START mainCRTStartup
#define ARGUMENTS (_configure_narrow_argv(1), _initialize_narrow_environment(), *__p___argv())
#endif

    static int Run()
    {
        _set_app_type(1);
        auto ** const arguments = ARGUMENTS;
        if (!StartModule())
            return 255;
        _crt_atexit(EndModule);
        return MAIN(*__p___argc(), arguments, nullptr);
    }

    WITHOUT_COOKIE void __cdecl START()
    {
        __security_init_cookie();
        exit(Run());
    }

} // extern "C"
