#include "support/FaultReport.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace VekTest
{

namespace
{

constexpr UINT FAULT_STATUS = 96;
char const * g_running;

// Addresses as the linker knows them, for addr2line.
std::uintptr_t Linked(std::uintptr_t address)
{
    auto const base = reinterpret_cast<std::uintptr_t>(GetModuleHandleW(nullptr));
    auto const size =
        reinterpret_cast<IMAGE_NT_HEADERS const *>(
            base + static_cast<std::uintptr_t>(reinterpret_cast<IMAGE_DOS_HEADER const *>(base)->e_lfanew))
            ->OptionalHeader.SizeOfImage;
    std::uintptr_t const preferred = sizeof(void *) == 4 ? 0x400000 : static_cast<std::uintptr_t>(0x140000000ull);
    return address - base < size ? address - base + preferred : address;
}

LONG WINAPI ReportFault(EXCEPTION_POINTERS * pointers)
{
    EXCEPTION_RECORD const & record = *pointers->ExceptionRecord;
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    char const * const separator = std::strrchr(path, '\\');
    Report("\nfault %08lx in %s at %p (addr2line -Cfie %s 0x%zx)\n", record.ExceptionCode, g_running,
           record.ExceptionAddress, separator ? separator + 1 : path,
           static_cast<std::size_t>(Linked(reinterpret_cast<std::uintptr_t>(record.ExceptionAddress))));
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2)
        Report("  %s address 0x%zx\n", record.ExceptionInformation[0] ? "writing" : "reading",
               static_cast<std::size_t>(record.ExceptionInformation[1]));
    if (record.ExceptionCode == EXCEPTION_ILLEGAL_INSTRUCTION)
        Report("  a trap: undefined behaviour, or the guard heap's complaint above\n");
#ifndef _WIN64
    Report("  callers:");
    auto const * frame = reinterpret_cast<std::uintptr_t const *>(pointers->ContextRecord->Ebp);
    for (int depth = 0; depth < 16; ++depth)
    {
        MEMORY_BASIC_INFORMATION memory;
        if (!VirtualQuery(frame, &memory, sizeof memory) || memory.State != MEM_COMMIT ||
            memory.Protect != PAGE_READWRITE)
            break;
        Report(" 0x%zx", static_cast<std::size_t>(Linked(frame[1])));
        auto const * const next = reinterpret_cast<std::uintptr_t const *>(frame[0]);
        if (next <= frame)
            break;
        frame = next;
    }
    Report("\n");
#endif
    TerminateProcess(GetCurrentProcess(), FAULT_STATUS);
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

void Report(char const * format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    int const length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    DWORD written;
    if (length > 0)
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, std::min<DWORD>(static_cast<DWORD>(length), sizeof text - 1),
                  &written, nullptr);
}

void ReportFaults(char const * running)
{
    g_running = running;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(ReportFault);
}

} // namespace VekTest
