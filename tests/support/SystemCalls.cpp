#include "support/SystemCalls.h"

#ifdef VEKLIB_GUARD

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <process.h>
#include <stdio.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <type_traits>

namespace
{

DWORD g_thread; // whose calls fail; 0 for none
std::size_t g_next, g_failsAt;
bool g_staysFailed;
char const * g_first;

bool Fails(char const * name) noexcept
{
    if (g_thread != GetCurrentThreadId())
        return false;
    std::size_t const number = ++g_next;
    if (number < g_failsAt || (number > g_failsAt && !g_staysFailed))
        return false;
    if (!g_first)
        g_first = name;
    return true;
}

enum Kind
{
    OPENS,
    CLOSES,     // what is closed is closed, whatever the call tells
    NEVER_FAILS // with what it is given here
};

std::atomic<unsigned int> g_seed, g_turn;

void MayGiveWay() noexcept
{
    unsigned int const seed = g_seed;
    if (seed == 0)
        return;
    unsigned int bits = (seed + ++g_turn) * 0x9E3779B1U;
    bits = (bits ^ bits >> 15) * 0x2C1B3C6DU;
    bits ^= bits >> 13;
    if (bits % 32 == 0)
        Sleep(1);
    else if (bits % 4 == 0)
        SwitchToThread();
}

// Before and behind a call, whose error code stays.
struct Gap
{
    Gap() noexcept { MayGiveWay(); }
    ~Gap()
    {
        DWORD const error = GetLastError();
        MayGiveWay();
        SetLastError(error);
    }
    Gap(Gap const &) = delete;
    Gap & operator=(Gap const &) = delete;
};

struct Row
{
    char const * name;
    void * standIn;
    void ** real;
};

// One for each function, told apart by a type of its own.
#define VEK_STAND_IN(NAME, CONVENTION)                                                                                 \
    template <class Function, class Result, class... Arguments>                                                        \
    struct NAME                                                                                                        \
    {                                                                                                                  \
        static inline char const * name;                                                                               \
        static inline std::conditional_t<std::is_void_v<Result>, int, Result> failure;                                 \
        static inline Kind kind;                                                                                       \
        static inline void * real;                                                                                     \
        static Result CONVENTION Call(Arguments... arguments)                                                          \
        {                                                                                                              \
            auto const call = reinterpret_cast<Result(CONVENTION *)(Arguments...)>(real);                              \
            if (kind == NEVER_FAILS || !Fails(name))                                                                   \
            {                                                                                                          \
                Gap const gap;                                                                                         \
                return call(arguments...);                                                                             \
            }                                                                                                          \
            if (kind == CLOSES)                                                                                        \
                call(arguments...);                                                                                    \
            errno = EIO;                                                                                               \
            SetLastError(ERROR_GEN_FAILURE);                                                                           \
            return static_cast<Result>(failure);                                                                       \
        }                                                                                                              \
    };                                                                                                                 \
    template <class Function, class Result, class... Arguments>                                                        \
    Row MakeRow(Result(CONVENTION *)(Arguments...), char const * name, long failure, Kind kind)                        \
    {                                                                                                                  \
        using StandIn = NAME<Function, Result, Arguments...>;                                                          \
        StandIn::name = name;                                                                                          \
        StandIn::failure = (decltype(StandIn::failure))failure; /* a number or a handle */                             \
        StandIn::kind = kind;                                                                                          \
        return {name, reinterpret_cast<void *>(&StandIn::Call), &StandIn::real};                                       \
    }
VEK_STAND_IN(StandardCall, __stdcall)
VEK_STAND_IN(RuntimeCall, )

#define VEK_CALL(FUNCTION, FAILURE, KIND) MakeRow<struct Of_##FUNCTION>(&::FUNCTION, #FUNCTION, FAILURE, KIND)

Row const g_rows[] = {
    VEK_CALL(CreateEventW, 0, OPENS),
    VEK_CALL(CreateMutexW, 0, OPENS),
    VEK_CALL(CreateSemaphoreW, 0, OPENS),
    VEK_CALL(_beginthreadex, 0, OPENS),
    VEK_CALL(DuplicateHandle, 0, OPENS),
    VEK_CALL(CloseHandle, 0, CLOSES),
    VEK_CALL(CreateFileW, -1, OPENS),
    VEK_CALL(ReadFile, 0, OPENS),
    VEK_CALL(WriteFile, 0, OPENS),
    VEK_CALL(SetEndOfFile, 0, OPENS),
    VEK_CALL(FlushFileBuffers, 0, OPENS),
    VEK_CALL(MoveFileExW, 0, OPENS),
    VEK_CALL(DeleteFileW, 0, OPENS),
    VEK_CALL(GetFileAttributesW, -1, OPENS),
    VEK_CALL(SetFileAttributesW, 0, OPENS),
    VEK_CALL(GetFinalPathNameByHandleW, 0, OPENS),
    VEK_CALL(GetCurrentDirectoryW, 0, OPENS),
    VEK_CALL(SetCurrentDirectoryW, 0, OPENS),
    VEK_CALL(GetProcessTimes, 0, OPENS),
    VEK_CALL(GetSystemTimes, 0, OPENS),
    VEK_CALL(GlobalMemoryStatusEx, 0, OPENS),
    VEK_CALL(MultiByteToWideChar, 0, OPENS),
    VEK_CALL(WideCharToMultiByte, 0, OPENS),
    VEK_CALL(FormatMessageW, 0, OPENS),
    VEK_CALL(_wfopen_s, EIO, OPENS),
    VEK_CALL(fopen_s, EIO, OPENS),
    VEK_CALL(fclose, EOF, CLOSES),
    VEK_CALL(fflush, EOF, OPENS),
    VEK_CALL(fread, 0, OPENS),
    VEK_CALL(fwrite, 0, OPENS),
    VEK_CALL(fgetpos, -1, OPENS),
    VEK_CALL(fsetpos, -1, OPENS),
    VEK_CALL(setvbuf, -1, OPENS),
    VEK_CALL(_filelengthi64, -1, OPENS),
    VEK_CALL(EnterCriticalSection, 0, NEVER_FAILS),
    VEK_CALL(LeaveCriticalSection, 0, NEVER_FAILS),
    VEK_CALL(WaitForSingleObject, 0, NEVER_FAILS),
    VEK_CALL(WaitForMultipleObjects, 0, NEVER_FAILS),
    VEK_CALL(SetEvent, 0, NEVER_FAILS),
    VEK_CALL(ResetEvent, 0, NEVER_FAILS),
    VEK_CALL(PulseEvent, 0, NEVER_FAILS),
    VEK_CALL(ReleaseMutex, 0, NEVER_FAILS),
    VEK_CALL(ReleaseSemaphore, 0, NEVER_FAILS),
    VEK_CALL(SuspendThread, 0, NEVER_FAILS),
    VEK_CALL(ResumeThread, 0, NEVER_FAILS),
    VEK_CALL(CreateThread, 0, OPENS),
};

// Of the first call on: a program's own table of imports, which is read-only otherwise.
void Turn(IMAGE_THUNK_DATA & slot, char const * name)
{
    for (Row const & row : g_rows)
    {
        if (std::strcmp(row.name, name) != 0)
            continue;
        DWORD before;
        VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &before);
        *row.real = reinterpret_cast<void *>(slot.u1.Function);
        slot.u1.Function = reinterpret_cast<ULONG_PTR>(row.standIn);
        VirtualProtect(&slot, sizeof slot, before, &before);
    }
}

bool TurnAll()
{
    auto * const base = reinterpret_cast<unsigned char *>(GetModuleHandleW(nullptr));
    auto const * const head =
        reinterpret_cast<IMAGE_NT_HEADERS *>(base + reinterpret_cast<IMAGE_DOS_HEADER *>(base)->e_lfanew);
    auto const & directory = head->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto const * dll = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR *>(base + directory.VirtualAddress); dll->Name;
         ++dll)
    {
        auto const * name = reinterpret_cast<IMAGE_THUNK_DATA *>(base + dll->OriginalFirstThunk);
        auto * slot = reinterpret_cast<IMAGE_THUNK_DATA *>(base + dll->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot)
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                Turn(*slot, reinterpret_cast<char const *>(
                                reinterpret_cast<IMAGE_IMPORT_BY_NAME *>(base + name->u1.AddressOfData)->Name));
    }
    return true;
}

void TurnOnce() noexcept
{
    [[maybe_unused]] static bool const areTurned = TurnAll();
}

void Arm(std::size_t n, bool staysFailed) noexcept
{
    TurnOnce();
    g_next = 0;
    g_failsAt = n;
    g_staysFailed = staysFailed;
    g_first = nullptr;
    g_thread = GetCurrentThreadId();
}

} // namespace

void VekTest::FailSystemCall(std::size_t n) noexcept
{
    Arm(n, false);
}

void VekTest::FailSystemFrom(std::size_t n) noexcept
{
    Arm(n, true);
}

char const * VekTest::SystemReset() noexcept
{
    g_thread = 0;
    return g_first;
}

void VekTest::GiveWay(unsigned int seed) noexcept
{
    TurnOnce();
    g_turn = 0;
    g_seed = seed;
}

#else

void VekTest::GiveWay(unsigned int) noexcept {}
void VekTest::FailSystemCall(std::size_t) noexcept {}
void VekTest::FailSystemFrom(std::size_t) noexcept {}
char const * VekTest::SystemReset() noexcept
{
    return nullptr;
}

#endif
