// The stack protector's part that the compiler leaves to the program. The one that comes with the compiler takes its
// random value from a system DLL that the library otherwise has no use for. Other compilers bring all of it.
#if !defined(_MSC_VER)
#include <windows.h>

#include <stdint.h>

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the names that compiled code refers to
extern "C"
{
    void * __stack_chk_guard = nullptr;

    /// Called when a function finds the guard above its variables changed.
    [[noreturn]] void __stack_chk_fail()
    {
        constexpr UINT STACK_BUFFER_OVERRUN = 0xC0000409;
        for (;;)
            TerminateProcess(GetCurrentProcess(), STACK_BUFFER_OVERRUN);
    }
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace
{

// Mixed from what an attacker can't know all of: times, numbers of the process and the thread, and where things lie.
__attribute__((constructor, no_stack_protector)) void MakeGuard()
{
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    uint64_t value = static_cast<uint64_t>(counter.QuadPart) * 0x9E3779B97F4A7C15ULL;
    value ^= static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    value ^= static_cast<uint64_t>(GetCurrentProcessId()) << 40 ^ static_cast<uint64_t>(GetCurrentThreadId()) << 20;
    value ^= reinterpret_cast<uintptr_t>(&counter) ^ reinterpret_cast<uintptr_t>(&MakeGuard) << 7;
    value *= 0xBF58476D1CE4E5B9ULL;
    value ^= value >> 29;
    // A zero byte stops the string functions that run over a buffer.
    __stack_chk_guard = reinterpret_cast<void *>(static_cast<uintptr_t>(value << 8));
}

} // namespace

#endif
