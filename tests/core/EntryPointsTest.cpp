#include "VekLib.h"

#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>

namespace
{

#ifndef VEKLIB_STATIC
template <class Function>
Function * EntryPoint(char const * name)
{
    HMODULE const library = GetModuleHandleW(L"VekLib.dll");
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}
#endif

constexpr wchar_t const * CHILD = L"VEK_TEST_EXIT_WITHOUT_DEINIT";

// What this program does as its own child.
VekTest::WarmUp const g_childWork(
    []
    {
        struct Catcher final : CVekRefCounted<IVekCatchLogOutput>
        {
            void OnLogOutput(int, wchar_t const *) override {}
        };
        if (!GetEnvironmentVariableW(CHILD, nullptr, 0))
            return;
        VekLibInit();
        VekLibInit();
        getVekLibKernel()->AddCatchLogOutput(new Catcher);
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

// Logs before main and after it.
struct Talkative final : CVekRefCounted<IVekCatchLogOutput>
{
    int messages = 0;
    Talkative()
    {
        getVekLibKernel()->AddCatchLogOutput(this);
        VekLogOutput(0, L"early");
        getVekLibKernel()->RemoveCatchLogOutput(this);
    }
    ~Talkative() override
    {
        VekLogOutput(0, L"late");
        getVekLibKernel()->AddCatchLogOutput(this);
        VekLogOutput(0, L"later");
        getVekLibKernel()->RemoveCatchLogOutput(this);
    }
    void OnLogOutput(int, wchar_t const *) override { ++messages; }
} g_talkative;

} // namespace

TEST(EntryPoints, AreFoundByTheirPlainNames)
{
#ifdef VEKLIB_STATIC
    GTEST_SKIP() << "no DLL in this build";
#else
    auto * const init = EntryPoint<bool()>("VekLibInit");
    auto * const deinit = EntryPoint<void()>("VekLibDeinit");
    auto * const kernel = EntryPoint<IVekKernel *()>("getVekLibKernel");
    ASSERT_TRUE(init && deinit && kernel);
    EXPECT_TRUE(init());
    EXPECT_EQ(kernel(), getVekLibKernel());
    EXPECT_NE(kernel()->GetXMLManager(), nullptr);
    deinit();
    EXPECT_EQ(kernel()->GetXMLManager(), nullptr);
#endif
}

TEST(EntryPoints, WorkBeforeMain)
{
    EXPECT_EQ(g_talkative.messages, 1);
}

TEST(EntryPoints, AProcessMayExitWithoutDeinit)
{
    EXPECT_EQ(StatusOfChild(), 7u);
}
