// The main function of every test program: a watchdog for tests that hang, a report of faults, the leak check of the
// guarded build, and short output.

#include "support/FaultReport.h"
#include "support/GuardHeap.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

constexpr UINT HANG_STATUS = 97;

// Written by the listener, read by the watchdog and the fault report; both must work while the heap is locked.
char g_testName[256] = "(start-up)";
HANDLE g_testChanged;
DWORD g_milliseconds = 240000; // machines are slow and shared

DWORD WINAPI Watch(void *)
{
    // A test that takes its time is one during which nothing is signalled.
    while (WaitForSingleObject(g_testChanged, g_milliseconds) != WAIT_TIMEOUT)
        ;
    VekTest::Report("\nwatchdog: %s has been running for %lu s, giving up\n", g_testName, g_milliseconds / 1000);
    TerminateProcess(GetCurrentProcess(), HANG_STATUS);
    return 0;
}

class Listener : public testing::EmptyTestEventListener
{
    void OnTestStart(testing::TestInfo const & test) override
    {
        std::snprintf(g_testName, sizeof g_testName, "%s.%s", test.test_suite_name(), test.name());
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
    VekTest::ReportFaults(g_testName);
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
        VekTest::Report("no test was run\n");
        return 1;
    }
    std::strcpy(g_testName, "(end of the program)");
    return status;
}
