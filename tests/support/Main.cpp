// The main function of every test program: a watchdog for tests that hang, a report of faults, the leak check of the
// guarded build, and short output.

#include "support/GuardHeap.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

constexpr UINT kFaultStatus = 96;
constexpr UINT kHangStatus = 97;

// Written by the listener, read by the watchdog and the fault report; both must work while the heap is locked.
char g_testName[256] = "(start-up)";
HANDLE g_testChanged;
DWORD g_milliseconds = 60000;

void Report(char const * format, ...) __attribute__((format(gnu_printf, 1, 2)));
void Report(char const * format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    int const length = __mingw_vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    DWORD written;
    if (length > 0)
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, std::min<DWORD>(static_cast<DWORD>(length), sizeof text - 1),
                  &written, nullptr);
}

DWORD WINAPI Watch(void *)
{
    // A test that takes its time is one during which nothing is signalled.
    while (WaitForSingleObject(g_testChanged, g_milliseconds) != WAIT_TIMEOUT)
        ;
    Report("\nwatchdog: %s has been running for %lu s, giving up\n", g_testName, g_milliseconds / 1000);
    TerminateProcess(GetCurrentProcess(), kHangStatus);
    return 0;
}

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
    Report("\nfault %08lx in %s at %p (addr2line -Cfie %s 0x%zx)\n", record.ExceptionCode, g_testName,
           record.ExceptionAddress, separator ? separator + 1 : path,
           static_cast<std::size_t>(Linked(reinterpret_cast<std::uintptr_t>(record.ExceptionAddress))));
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2)
        Report("  %s address 0x%zx\n", record.ExceptionInformation[0] ? "writing" : "reading",
               static_cast<std::size_t>(record.ExceptionInformation[1]));
    if (record.ExceptionCode == EXCEPTION_ILLEGAL_INSTRUCTION)
        Report("  a trap: undefined behaviour, or the guard heap's complaint above\n");
#ifdef __i386__
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
    TerminateProcess(GetCurrentProcess(), kFaultStatus);
    return EXCEPTION_EXECUTE_HANDLER;
}

class Listener : public testing::EmptyTestEventListener
{
    void OnTestStart(testing::TestInfo const & test) override
    {
        __mingw_snprintf(g_testName, sizeof g_testName, "%s.%s", test.test_suite_name(), test.name());
        SetEvent(g_testChanged);
        m_blocks = VekGuard::LiveBlocks();
        m_bytes = VekGuard::LiveBytes();
    }

    void OnTestEnd(testing::TestInfo const & test) override
    {
        VekGuard::FailReset();
        std::size_t const blocks = VekGuard::LiveBlocks();
        std::size_t const bytes = VekGuard::LiveBytes();
        // A failure's own records live on, and a test that was broken off may have left anything.
        if (test.result()->Passed() && blocks != m_blocks)
            ADD_FAILURE() << "leak: " << static_cast<std::ptrdiff_t>(blocks - m_blocks) << " blocks, "
                          << static_cast<std::ptrdiff_t>(bytes - m_bytes) << " bytes";
        SetEvent(g_testChanged);
    }

    std::size_t m_blocks = 0;
    std::size_t m_bytes = 0;
};

// What the runtime allocates at first use and keeps: it is no test's leak, and must not be refused to a test that
// makes allocations fail.
void WarmRuntimeUp()
{
    if (!VekGuard::Active)
        return;
    // Without memory an exception comes from an emergency pool, whose lock is made when it is first taken.
    VekGuard::FailAllocation(1);
    try
    {
        throw 0;
    }
    catch (int)
    {
    }
    VekGuard::FailReset();
    // The stack of traces is made by its first use.
    {
        SCOPED_TRACE("warm-up");
    }
    // Records of ended threads are kept for later ones.
    std::vector<std::thread> threads;
    HANDLE const together = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    for (int i = 0; i < 16; ++i)
        threads.emplace_back([together] { WaitForSingleObject(together, INFINITE); });
    SetEvent(together);
    for (std::thread & thread : threads)
        thread.join();
    CloseHandle(together);
}

} // namespace

int main(int argc, char ** argv)
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter(ReportFault);
    setvbuf(stdout, nullptr, _IONBF, 0);

    GTEST_FLAG_SET(brief, true);
    testing::InitGoogleTest(&argc, argv);

    if (char const * const seconds = std::getenv("VEK_TEST_SECONDS"))
        g_milliseconds = static_cast<DWORD>(std::max(1, std::atoi(seconds))) * 1000;
    g_testChanged = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr));

    testing::UnitTest::GetInstance()->listeners().Append(new Listener);
    WarmRuntimeUp();
    VekTest::WarmUp::RunAll();
    int const status = RUN_ALL_TESTS();
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0)
    {
        Report("no test was run\n");
        return 1;
    }
    std::strcpy(g_testName, "(end of the program)");
    return status;
}
