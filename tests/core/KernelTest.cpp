#include "VekLib.h"

#include "support/DebuggerOutput.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cwchar>

namespace
{

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

constexpr GUID EVENT = {0x12345678, 0x1234, 0x5678, {1, 2, 3, 4, 5, 6, 7, 8}};

// The banner as it has to be, with that much available memory.
std::wstring ExpectedBanner(long available)
{
    wchar_t text[512];
    _snwprintf(text, std::size(text),
               L"\n\nVekLib Initialized\n"
               L"\n   --> CPU speed                   %.4g Mhz"
               L"\n   --> Total memory in system      %d MB"
               L"\n   --> Currently available memory  %ld MB\n\n",
               static_cast<double>(Kernel().GetPerformanceFrequency()) / 1048576.0,
               static_cast<int>(Kernel().GetTotalPhysicalMemory() >> 20), available);
    return text;
}

} // namespace

TEST(Kernel, StartsWithTheFirstInitAndStopsWithTheLastDeinit)
{
    IVekKernel * const kernel = getVekLibKernel();
    LogCapture log;
    EXPECT_EQ(kernel->GetXMLManager(), nullptr);
    VekLibDeinit();
    EXPECT_EQ(log.Take(), L"") << "a Deinit without Init does nothing";

    EXPECT_TRUE(VekLibInit());
    std::wstring const banner = log.Take();
    long const available =
        std::wcstol(banner.substr(std::min(banner.size(), banner.rfind(L"  "))).c_str(), nullptr, 10);
    EXPECT_EQ(banner, ExpectedBanner(available));
    EXPECT_GT(available, 0);
    EXPECT_TRUE(VekLibInit());
    EXPECT_EQ(log.Take(), L"") << "a second Init only counts";
    EXPECT_EQ(getVekLibKernel(), kernel);

    IVekXMLManager * const manager = kernel->GetXMLManager();
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(manager->GetRefCount(), 1u);
    EXPECT_EQ(kernel->GetXMLManager(), manager);

    VekLibDeinit();
    EXPECT_EQ(kernel->GetXMLManager(), manager) << "one Init is left";
    {
        DebuggerOutput debugger;
        VekLibDeinit();
        EXPECT_EQ(debugger.Take(), L"\n\nVekLib Uninitialized\n\n");
    }
    EXPECT_EQ(log.Take(), L"") << "the catchers are gone before the closing line";
    EXPECT_EQ(kernel->GetXMLManager(), nullptr);
    VekLogOutput(0, L"unheard");
    VekLibDeinit();
    EXPECT_EQ(log.Take(), L"");
    EXPECT_EQ(getVekLibKernel(), kernel);

    LogCapture again;
    ASSERT_TRUE(VekLibInit());
    EXPECT_EQ(again.Lines().size(), 4u) << "the banner comes with every start";
    VekLibDeinit();
}

TEST(Kernel, KeptAFailedInitStaysCounted)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    wchar_t const * const messages[] = {L"CVekKernel::InitEventMap --> Failed to allocated eventmap\n"
                                        L"CVekKernel::Init --> Failed to initialize Eventmap",
                                        L"CVekKernel::InitXMLManager --> Failed to create XMLManager interface\n"
                                        L"CVekKernel::Init --> Failed to XML Manager"};
    for (std::size_t const failing : {1, 2})
    {
        SCOPED_TRACE(failing);
        LogCapture log;
        VekGuard::FailAllocation(failing);
        bool const initialised = VekLibInit();
        ASSERT_TRUE(VekGuard::FailReset());
        EXPECT_FALSE(initialised);
        EXPECT_EQ(log.Take(), messages[failing - 1]);
        EXPECT_EQ(Kernel().GetXMLManager(), nullptr);
        EXPECT_TRUE(VekLibInit()) << "the next only counts";
        EXPECT_EQ(Kernel().GetXMLManager(), nullptr);
        EXPECT_EQ(log.Take(), L"");
        VekLibDeinit();
        VekLibDeinit();
    }
    EXPECT_TRUE(VekLibInit()) << "counted down, it starts again";
    EXPECT_NE(Kernel().GetXMLManager(), nullptr);
    VekLibDeinit();
}

TEST(Kernel, EventsBelongToOneStart)
{
    EXPECT_FALSE(Kernel().RegisterEvent(EVENT)) << "before Init";
    EXPECT_FALSE(Kernel().IsEventRegistered(EVENT));
    Kernel().UnregisterEvent(EVENT);
    Kernel().ReleaseEventMap();
    for (int turn = 0; turn < 2; ++turn)
    {
        ASSERT_TRUE(VekLibInit());
        EXPECT_FALSE(Kernel().IsEventRegistered(EVENT)) << "a new start brings a new map";
        EXPECT_TRUE(Kernel().RegisterEvent(EVENT));
        EXPECT_FALSE(Kernel().RegisterEvent(EVENT)) << "there already";
        Kernel().ReleaseEventMap();
        EXPECT_FALSE(Kernel().IsEventRegistered(EVENT));
        EXPECT_FALSE(Kernel().RegisterEvent(EVENT)) << "after ReleaseEventMap";
        VekLibDeinit();
    }
}

TEST(Kernel, CountsReferences)
{
    EXPECT_EQ(Kernel().GetRefCount(), 1u);
    EXPECT_EQ(Kernel().AddRef(), 2u);
    EXPECT_EQ(Kernel().Release(), 1u);
    EXPECT_EQ(Kernel().Release(), 0u) << "a host's mistake destroys nothing";
    EXPECT_EQ(Kernel().AddRef(), 1u);
    ExpectRefCountContract("memory stream", Kernel().CreateMemoryIOStream());
    ExpectRefCountContract("file stream", Kernel().CreateFileIOStream());
    ExpectRefCountContract("randomizer", Kernel().CreateRandomizer());
    ExpectRefCountContract("CPU usage", Kernel().CreateCPUUsage());
    ExpectRefCountContract("timer", Kernel().CreateTimer());
    ExpectRefCountContract("progress controller", Kernel().CreateProgressController());
}

TEST(Kernel, TellsOfTheSystem)
{
    ASSERT_TRUE(VekLibInit());
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    EXPECT_EQ(Kernel().GetPerformanceFrequency(), static_cast<unsigned long long>(frequency.QuadPart));
    EXPECT_EQ(Kernel().GetCPUSpeed(), static_cast<double>(frequency.QuadPart) / 1048576.0);
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    GlobalMemoryStatusEx(&status);
    EXPECT_EQ(Kernel().GetTotalPhysicalMemory(), status.ullTotalPhys);
    unsigned long long const available = Kernel().GetAvailablePhysicalMemory();
    EXPECT_TRUE(available > 0 && available < status.ullTotalPhys) << available;
    EXPECT_EQ(CallSlot<IVekXMLManager *>(&Kernel(), 31), Kernel().GetXMLManager());
    VekLibDeinit();
}
