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

TEST(Kernel, FailsWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    ASSERT_TRUE(VekLibInit());
    VekGuard::FailFrom(1);
    bool const registered = Kernel().RegisterEvent(EVENT);
    void const * const streams[] = {Kernel().CreateMemoryIOStream(), Kernel().CreateFileIOStream()};
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_FALSE(registered || Kernel().IsEventRegistered(EVENT) || streams[0] || streams[1]);
    VekLibDeinit();
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
}

TEST(Kernel, SlotOrder)
{
    IVekKernel * const kernel = getVekLibKernel();
    ASSERT_TRUE(VekLibInit());
    EXPECT_EQ(CallSlot<unsigned int>(kernel, 0), 2u);
    EXPECT_EQ(CallSlot<unsigned int>(kernel, 1), 1u);
    EXPECT_EQ(CallSlot<unsigned int>(kernel, 2), 1u);

    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    EXPECT_EQ(CallSlot<unsigned long long>(kernel, 6), static_cast<unsigned long long>(frequency.QuadPart));
    EXPECT_EQ(CallSlot<double>(kernel, 7), static_cast<double>(frequency.QuadPart) / 1048576.0);

    auto * const memoryStream = CallSlot<IVekMemoryIOStream *>(kernel, 9);
    ASSERT_NE(memoryStream, nullptr);
    EXPECT_TRUE(memoryStream->Open(nullptr, 0, 7));
    memoryStream->Release();
    auto * const fileStream = CallSlot<IVekFileIOStream *>(kernel, 10);
    ASSERT_NE(fileStream, nullptr);
    EXPECT_EQ(fileStream->GetFilePath().GetLength(), 0);
    fileStream->Release();

    auto * const thread =
        CallSlot<IVekThread *>(kernel, 3, L"name", static_cast<IVekThread::TickCallback *>(nullptr), true, 7u, 9u);
    ASSERT_NE(thread, nullptr);
    EXPECT_STREQ(thread->GetName(), L"name");
    EXPECT_TRUE(thread->GetCreateFlag() && thread->GetTickInterval() == 7 && thread->GetMaxTickCount() == 9);
    CVekThreadCommand * const noCommand = nullptr;
    CallSlot(kernel, 4, noCommand, thread);
    struct Command final : CVekThreadCommand
    {
        Command() : CVekThreadCommand(false) {}
        void Execute() override {}
    } command;
    CallSlot(kernel, 5, static_cast<CVekThreadCommand *>(&command), thread);
    EXPECT_TRUE(thread->HasPendingCommands());
    thread->Release();
    for (int const slot : {8, 12, 15, 32})
    {
        auto * const service = CallSlot<IVekObject *>(kernel, slot);
        ASSERT_NE(service, nullptr) << slot;
        bool const isOfItsKind = slot == 8    ? dynamic_cast<IVekTimer *>(service) != nullptr
                                 : slot == 12 ? dynamic_cast<IVekProgressController *>(service) != nullptr
                                 : slot == 15 ? dynamic_cast<IVekRandomizer *>(service) != nullptr
                                              : dynamic_cast<IVekCPUUsage *>(service) != nullptr;
        EXPECT_TRUE(isOfItsKind) << slot;
        service->Release();
    }

    EXPECT_EQ(CallSlot<int>(kernel, 16, 3), 3);
    EXPECT_EQ(CallSlot<int>(kernel, 17), 3);
    EXPECT_EQ(CallSlot<int>(kernel, 16, 0), 0);
    struct Catcher final : CVekRefCounted<IVekCatchLogOutput>
    {
        int calls = 0;
        void OnLogOutput(int, wchar_t const *) override { ++calls; }
    } catcher;
    CallSlot(kernel, 18, static_cast<IVekCatchLogOutput *>(&catcher));
    VekLogOutput(0, L"heard");
    EXPECT_TRUE(catcher.calls == 1 && catcher.GetRefCount() == 2) << "slot 18";
    CallSlot(kernel, 19, static_cast<IVekCatchLogOutput *>(&catcher));
    VekLogOutput(0, L"unheard");
    EXPECT_TRUE(catcher.calls == 1 && catcher.GetRefCount() == 1) << "slot 19";

    EXPECT_TRUE(CallSlot<bool>(kernel, 20, &EVENT));
    EXPECT_TRUE(CallSlot<bool>(kernel, 23, &EVENT));
    CallSlot(kernel, 21, &EVENT);
    EXPECT_FALSE(CallSlot<bool>(kernel, 23, &EVENT));
    EXPECT_TRUE(CallSlot<bool>(kernel, 20, &EVENT));
    CallSlot(kernel, 22);
    EXPECT_FALSE(CallSlot<bool>(kernel, 20, &EVENT));
    VekLibDeinit();
    ASSERT_TRUE(VekLibInit());
    struct Handler final : CVekEventHandler
    {
        bool OnEvent(CVekEventData *) override { return true; }
    } handler;
    CVekEventData * const noData = nullptr;
    CVekEventHandler * const handlerPointer = &handler;
    EXPECT_TRUE(CallSlot<bool>(kernel, 20, &EVENT));
    EXPECT_FALSE(CallSlot<bool>(kernel, 24, &EVENT, noData));
    EXPECT_TRUE(CallSlot<bool>(kernel, 25, &EVENT, handlerPointer));
    EXPECT_TRUE(CallSlot<bool>(kernel, 24, &EVENT, noData));
    CallSlot(kernel, 26, &EVENT, handlerPointer);
    EXPECT_FALSE(CallSlot<bool>(kernel, 24, &EVENT, noData));

    EXPECT_EQ(CallSlot<unsigned int>(kernel, 27, 0xFEDCBA98u), 0xFEDCBA98u);
    EXPECT_EQ(CallSlot<unsigned int>(kernel, 28), 0xFEDCBA98u);
    EXPECT_EQ(CallSlot<unsigned int>(kernel, 27, 0u), 0u);

    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    GlobalMemoryStatusEx(&status);
    EXPECT_EQ(CallSlot<unsigned long long>(kernel, 29), status.ullTotalPhys);
    unsigned long long const available = CallSlot<unsigned long long>(kernel, 30);
    EXPECT_TRUE(available > 0 && available < status.ullTotalPhys) << available;

    EXPECT_EQ(CallSlot<IVekXMLManager *>(kernel, 31), kernel->GetXMLManager());
    EXPECT_NE(kernel->GetXMLManager(), nullptr);
    VekLibDeinit();
}
