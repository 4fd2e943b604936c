// What the files of the start-up code share. Microsoft's compilers expect all of it to be linked into every module; it
// stands on the C runtime that is part of Windows, ucrtbase.dll, alone. Nothing of it is part of VekLib's own sources:
// Visual Studio brings its own.
#pragma once

#include <stddef.h>
#include <stdint.h>

extern "C"
{
    // Runs a module's static initialisers; 0 when one of them gives up.
    int __cdecl StartModule();
    // Runs what the module has registered to be run at its end.
    void __cdecl EndModule();
    void __cdecl __security_init_cookie();
}

// In front of functions that run before the cookie has its value.
#define WITHOUT_COOKIE __attribute__((no_stack_protector))
