#include "VekLib.h"

#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

namespace
{

constexpr wchar_t const * CHILD = L"VEK_TEST_EXIT_WITHOUT_DEINIT";

// Logs before main and after it.
struct Talkative final : CVekRefCounted<IVekCatchLogOutput>
{
    int messages = 0;
    Talkative() { Talk(); }
    ~Talkative() override { Talk(); }
    void Talk()
    {
        getVekLibKernel()->AddCatchLogOutput(this);
        VekLogOutput(0, L"early or late");
        getVekLibKernel()->RemoveCatchLogOutput(this);
    }
    void OnLogOutput(int, wchar_t const *) override { ++messages; }
} g_talkative;

// What this program does as its own child.
VekTest::WarmUp const g_childWork(
    []
    {
        if (!GetEnvironmentVariableW(CHILD, nullptr, 0))
            return;
        VekLibInit();
        if (GetEnvironmentVariableW(L"VEKLIB_LEAKS", nullptr, 0))
        {
            auto * const catcher = new Talkative;
            int const before = catcher->messages;
            getVekLibKernel()->AddCatchLogOutput(catcher);
            getVekLibKernel()->CreateTimer();
            VekLibDeinit();
            std::exit(catcher->messages - before);
        }
        getVekLibKernel()->AddCatchLogOutput(new Talkative);
        getVekLibKernel()->CreateFileIOStream();
        VekLogOutput(0, L"leaving");
        std::exit(7);
    });

DWORD StatusOfChild()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    SetEnvironmentVariableW(CHILD, L"1");
    BOOL const created = CreateProcessW(path, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process);
    SetEnvironmentVariableW(CHILD, nullptr);
    if (!created)
        return GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

} // namespace

TEST(EntryPoints, WorkBeforeMainAndAProcessMayExitWithoutDeinit)
{
    EXPECT_EQ(g_talkative.messages, 1);
    EXPECT_EQ(StatusOfChild(), 7u);
    SetEnvironmentVariableW(L"VEKLIB_LEAKS", L"1");
    EXPECT_EQ(StatusOfChild(), 1u) << "a timer was lost";
    SetEnvironmentVariableW(L"VEKLIB_LEAKS", nullptr);
}
