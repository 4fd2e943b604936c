#include "oom/SystemFaults.h"

#ifdef VEKLIB_GUARD

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <process.h>
#include <stdio.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

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

enum Closing // what is closed is closed, whatever the call tells
{
    NOTHING,
    CLOSES
};

struct Row
{
    char const * name;
    void * standIn;
    void ** real;
};

// One for each function, told apart by a type of its own.
template <class Function, class Signature>
struct StandIn;

#define VEK_STAND_IN(CONVENTION)                                                                                       \
    template <class Function, class Result, class... Arguments>                                                        \
    struct StandIn<Function, Result(CONVENTION *)(Arguments...)>                                                       \
    {                                                                                                                  \
        static inline char const * name;                                                                               \
        static inline Result failure;                                                                                  \
        static inline bool isDone;                                                                                     \
        static inline void * real;                                                                                     \
        static Result CONVENTION Call(Arguments... arguments)                                                          \
        {                                                                                                              \
            auto const call = reinterpret_cast<Result(CONVENTION *)(Arguments...)>(real);                              \
            if (!Fails(name))                                                                                          \
                return call(arguments...);                                                                             \
            if (isDone)                                                                                                \
                call(arguments...);                                                                                    \
            errno = EIO;                                                                                               \
            SetLastError(ERROR_GEN_FAILURE);                                                                           \
            return failure;                                                                                            \
        }                                                                                                              \
        static Row MakeRow(char const * itsName, long result, Closing closing)                                         \
        {                                                                                                              \
            name = itsName;                                                                                            \
            failure = (Result)result; /* a number or a handle */                                                       \
            isDone = closing == CLOSES;                                                                                \
            return {name, reinterpret_cast<void *>(&Call), &real};                                                     \
        }                                                                                                              \
    };
VEK_STAND_IN(__stdcall)
VEK_STAND_IN()

#define VEK_CALL(FUNCTION, FAILURE, CLOSING)                                                                           \
    StandIn<struct Of_##FUNCTION, decltype(&::FUNCTION)>::MakeRow(#FUNCTION, FAILURE, CLOSING)

Row const g_rows[] = {
    VEK_CALL(CreateEventW, 0, NOTHING),
    VEK_CALL(CreateMutexW, 0, NOTHING),
    VEK_CALL(CreateSemaphoreW, 0, NOTHING),
    VEK_CALL(_beginthreadex, 0, NOTHING),
    VEK_CALL(DuplicateHandle, 0, NOTHING),
    VEK_CALL(CloseHandle, 0, CLOSES),
    VEK_CALL(CreateFileW, -1, NOTHING),
    VEK_CALL(FlushFileBuffers, 0, NOTHING),
    VEK_CALL(MoveFileExW, 0, NOTHING),
    VEK_CALL(DeleteFileW, 0, NOTHING),
    VEK_CALL(GetFileAttributesW, -1, NOTHING),
    VEK_CALL(GetCurrentDirectoryW, 0, NOTHING),
    VEK_CALL(SetCurrentDirectoryW, 0, NOTHING),
    VEK_CALL(GetProcessTimes, 0, NOTHING),
    VEK_CALL(GetSystemTimes, 0, NOTHING),
    VEK_CALL(GlobalMemoryStatusEx, 0, NOTHING),
    VEK_CALL(CoInitialize, E_FAIL, NOTHING),
    VEK_CALL(MultiByteToWideChar, 0, NOTHING),
    VEK_CALL(WideCharToMultiByte, 0, NOTHING),
    VEK_CALL(FormatMessageW, 0, NOTHING),
    VEK_CALL(_wfopen_s, EIO, NOTHING),
    VEK_CALL(fopen_s, EIO, NOTHING),
    VEK_CALL(fclose, EOF, CLOSES),
    VEK_CALL(fflush, EOF, NOTHING),
    VEK_CALL(fread, 0, NOTHING),
    VEK_CALL(fwrite, 0, NOTHING),
    VEK_CALL(fgetpos, -1, NOTHING),
    VEK_CALL(fsetpos, -1, NOTHING),
    VEK_CALL(setvbuf, -1, NOTHING),
    VEK_CALL(_filelengthi64, -1, NOTHING),
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

void Arm(std::size_t n, bool staysFailed) noexcept
{
    static bool const areTurned = TurnAll();
    g_next = 0;
    g_failsAt = n;
    g_staysFailed = staysFailed;
    g_first = nullptr;
    g_thread = areTurned ? GetCurrentThreadId() : 0;
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

#else

void VekTest::FailSystemCall(std::size_t) noexcept {}
void VekTest::FailSystemFrom(std::size_t) noexcept {}
char const * VekTest::SystemReset() noexcept
{
    return nullptr;
}

#endif
