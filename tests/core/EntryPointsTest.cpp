#include "VekLib.h"

#include "support/Files.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <vector>

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

TEST(EntryPoints, TheVersionIsTheHeaders)
{
    EXPECT_EQ(VekLibVersion(), VEKLIB_VERSION);
}

#ifndef VEKLIB_GUARD // which is no DLL
// A host may load and unload the library as often as it likes: what was freed doesn't stay behind.
TEST(EntryPoints, UnloadingGivesMemoryBack)
{
    auto const privateBytes = []
    {
        std::size_t bytes = 0;
        MEMORY_BASIC_INFORMATION area = {};
        for (char * at = nullptr; VirtualQuery(at, &area, sizeof area) != 0;
             at = static_cast<char *>(area.BaseAddress) + area.RegionSize)
            bytes += area.State != MEM_FREE && area.Type == MEM_PRIVATE ? area.RegionSize : 0;
        return bytes;
    };
    wchar_t own[MAX_PATH] = L"";
    GetModuleFileNameW(GetModuleHandleW(L"VekLib.dll"), own, MAX_PATH);
    std::wstring const copy = TemporaryPath(L"unloaded.dll");
    ASSERT_TRUE(CopyFileW(own, copy.c_str(), FALSE));
    std::size_t before = 0;
    for (int round = 0; round < 8; ++round)
    {
        HMODULE const library = LoadLibraryW(copy.c_str());
        void * entries[2] = {};
        for (char const * const name : {"_Z14VekAllocMemoryjPKci", "_Z16VekDeallocMemoryPvPKci",
                                        "?VekAllocMemory@@YAPAEIPBDH@Z", "?VekDeallocMemory@@YA_NPAXPBDH@Z",
                                        "?VekAllocMemory@@YAPEAEIPEBDH@Z", "?VekDeallocMemory@@YA_NPEAXPEBDH@Z"})
        {
            void *& entry = entries[std::strstr(name, "Dealloc") ? 1 : 0];
            entry = entry ? entry : reinterpret_cast<void *>(GetProcAddress(library, name));
        }
        ASSERT_TRUE(entries[0] && entries[1]);
        std::vector<void *> blocks(20000);
        for (void *& block : blocks)
            block = reinterpret_cast<unsigned char * (*)(unsigned int, char const *, int)>(entries[0])(60, "", 0);
        for (void * const block : blocks)
            EXPECT_TRUE(reinterpret_cast<bool (*)(void *, char const *, int)>(entries[1])(block, "", 0));
        ASSERT_TRUE(FreeLibrary(library));
        before = round == 0 ? privateBytes() : before;
    }
    EXPECT_LT(privateBytes(), before + (8U << 20)) << "about 5 MB were used in each round";
}
#endif
