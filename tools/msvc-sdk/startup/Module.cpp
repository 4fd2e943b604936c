// A module's static initialisers, what runs at its end, its thread-local storage.
#include "Startup.h"

#pragma comment(lib, "ucrt")
#pragma comment(lib, "kernel32")

typedef int(__cdecl * InitFunction)();
typedef void(__cdecl * VoidFunction)();
struct OnExitTable
{
    void *first, *last, *end;
};

extern "C"
{

    __declspec(dllimport) void __cdecl _initterm(VoidFunction *, VoidFunction *);
    __declspec(dllimport) int __cdecl _initterm_e(InitFunction *, InitFunction *);
    __declspec(dllimport) int __cdecl _initialize_onexit_table(OnExitTable *);
    __declspec(dllimport) int __cdecl _register_onexit_function(OnExitTable *, InitFunction);
    __declspec(dllimport) int __cdecl _execute_onexit_table(OnExitTable *);

    // Asked for by code with floating point.
    int _fltused = 0x9875;

// The linker sorts what compilers put between these.
#pragma section(".CRT$XIA", long, read)
#pragma section(".CRT$XIZ", long, read)
#pragma section(".CRT$XCA", long, read)
#pragma section(".CRT$XCZ", long, read)
    __declspec(allocate(".CRT$XIA")) InitFunction __xi_a[1] = {};
    __declspec(allocate(".CRT$XIZ")) InitFunction __xi_z[1] = {};
    __declspec(allocate(".CRT$XCA")) VoidFunction __xc_a[1] = {};
    __declspec(allocate(".CRT$XCZ")) VoidFunction __xc_z[1] = {};

    // One list for each module: a DLL runs its own when it is unloaded, a program when it ends.
    static OnExitTable s_atEnd;

    int __cdecl atexit(VoidFunction function)
    {
        return _register_onexit_function(&s_atEnd, reinterpret_cast<InitFunction>(function));
    }

    int __cdecl StartModule()
    {
        _initialize_onexit_table(&s_atEnd);
        if (_initterm_e(__xi_a, __xi_z) != 0)
            return 0;
        _initterm(__xc_a, __xc_z);
        return 1;
    }

    void __cdecl EndModule()
    {
        _execute_onexit_table(&s_atEnd);
    }

    // --- thread-local storage: the record that the system's loader reads ---

#ifndef _WIN64
    __asm__(".globl __tls_array\n__tls_array = 0x2C"); // where a thread's own record keeps its pointer
#endif
    unsigned long _tls_index = 0;
#pragma section(".tls", long, read, write)
#pragma section(".tls$ZZZ", long, read, write)
#pragma section(".CRT$XLA", long, read)
#pragma section(".CRT$XLZ", long, read)
#pragma section(".rdata$T", long, read)
    __declspec(allocate(".tls")) char _tls_start = 0;
    __declspec(allocate(".tls$ZZZ")) char _tls_end = 0;
    typedef void(__stdcall * TlsCallback)(void *, unsigned long, void *);
    __declspec(allocate(".CRT$XLA")) TlsCallback __xl_a = nullptr;
    __declspec(allocate(".CRT$XLZ")) TlsCallback __xl_z = nullptr;
    extern const __declspec(allocate(".rdata$T")) struct
    {
        void *first, *last, *index, *callbacks;
        unsigned long zeros, characteristics;
    } _tls_used = {&_tls_start, &_tls_end, &_tls_index, &__xl_a + 1, 0, 0};

} // extern "C"
