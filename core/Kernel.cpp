#include "core/Kernel.h"

#include "base/LiveObjects.h"
#include "base/SystemFunction.h"
#include "core/EventMap.h"
#include "core/LogDispatch.h"
#include "core/ProcessState.h"
#include "xml/XMLManager.h"

#include <windows.h>

#include <objbase.h>

#include <mutex>
#include <new>

namespace
{

constexpr unsigned long long MEGABYTE = 1048576;

constinit vek::SystemFunction<decltype(CoInitialize)> g_coInitialize{L"ole32.dll", "CoInitialize"};
constinit vek::SystemFunction<decltype(CoUninitialize)> g_coUninitialize{L"ole32.dll", "CoUninitialize"};

MEMORYSTATUSEX MemoryStatus()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof(status);
    GlobalMemoryStatusEx(&status);
    return status;
}

// Kept: of the number of megabytes only the low 32 bits are printed, as a signed number.
int LowMegabytes(unsigned long long bytes)
{
    return static_cast<int>(bytes / MEGABYTE);
}

} // namespace

// A message on its way through the catchers. One of them may break the rules and remove catchers, or log: the next one
// is then moved on, and messages nest.
struct CVekKernel::CatcherWalk
{
    vek::PointerList<IVekCatchLogOutput>::Node const * next;
    CatcherWalk * outer;
    VEK_LOG_CATEGORY category;
};

CVekKernel::CVekKernel() = default;

CVekKernel::~CVekKernel() = default;

CVekKernel & CVekKernel::Get() noexcept
{
    alignas(CVekKernel) static unsigned char storage[sizeof(CVekKernel)];
    struct Life
    {
        Life() { new (storage) CVekKernel; }
        // Kept: unloading forgets the catchers without releasing them; their owners may be gone by then.
        ~Life() { std::launder(reinterpret_cast<CVekKernel *>(storage))->m_catchers.Clear(); }
    };
    static Life const life;
    return *std::launder(reinterpret_cast<CVekKernel *>(storage));
}

unsigned int CVekKernel::Release()
{
    return VekInterlockedDecrement(m_common.refCount); // never destroyed, whatever a host releases
}

bool CVekKernel::Init()
{
    // Kept: a start that failed stays counted and undoes nothing; the next call counts on and reports success.
    if (++m_initCount != 1)
        return true;
    if (auto * const initialize = g_coInitialize.Get())
        initialize(nullptr);
    if (!InitEventMap())
    {
        VekLogOutput(0, L"CVekKernel::Init --> Failed to initialize Eventmap");
        return false;
    }
    if (!InitXMLManager())
    {
        // Kept: the text lacks its verb.
        VekLogOutput(0, L"CVekKernel::Init --> Failed to XML Manager");
        return false;
    }
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    m_performanceFrequency = static_cast<unsigned long long>(frequency.QuadPart);
    LogBanner();
    return true;
}

bool CVekKernel::InitEventMap()
{
    std::lock_guard const lock(vek::g_process.eventMapLock);
    m_eventMap = new (std::nothrow) vek::EventMap;
    if (m_eventMap)
        return true;
    // Kept: "allocated".
    VekLogOutput(0, L"CVekKernel::InitEventMap --> Failed to allocated eventmap");
    return false;
}

bool CVekKernel::InitXMLManager()
{
    m_xmlManager.Reset(new (std::nothrow) CVekXMLManager);
    if (m_xmlManager)
        return true;
    VekLogOutput(0, L"CVekKernel::InitXMLManager --> Failed to create XMLManager interface");
    return false;
}

void CVekKernel::LogBanner()
{
    VekLogOutputAs(VEK_LOG_BANNER, 0, L"\n\nVekLib Initialized\n");
    // Kept: the counter's frequency under the name of a processor clock.
    VekLogOutputAs(VEK_LOG_BANNER, 0, L"   --> CPU speed                   %.4g Mhz", GetCPUSpeed());
    VekLogOutputAs(VEK_LOG_BANNER, 0, L"   --> Total memory in system      %d MB",
                   LowMegabytes(GetTotalPhysicalMemory()));
    VekLogOutputAs(VEK_LOG_BANNER, 0, L"   --> Currently available memory  %d MB\n\n",
                   LowMegabytes(GetAvailablePhysicalMemory()));
}

void CVekKernel::Deinit()
{
    if (m_initCount == 0 || --m_initCount > 0)
        return;
    m_xmlManager.Reset(nullptr);
    ReleaseEventMap();
    LogLiveObjects();
    ReleaseCatchers();
    if (auto * const uninitialize = g_coUninitialize.Get())
        uninitialize();
    VekLogOutputAs(VEK_LOG_BANNER, 0, L"\n\nVekLib Uninitialized\n");
}

void CVekKernel::LogLiveObjects()
{
    if (!vek::g_countsObjects.load(std::memory_order_relaxed))
        return;
    for (unsigned int i = 0; i < static_cast<unsigned int>(vek::LiveClass::COUNT); ++i)
    {
        auto const which = static_cast<vek::LiveClass>(i);
        if (int const count = vek::CountLive(which); count > 0)
            VekLogOutputAs(VEK_LOG_NOTE, 0, L"CVekKernel::Deinit --> Still alive: %d of %s", count, vek::NameOf(which));
    }
}

void CVekKernel::ReleaseCatchers()
{
    std::lock_guard const lock(vek::g_process.catcherLock);
    // Whoever is called just now has stopped the library: nobody is called after it.
    for (CatcherWalk * walk = m_catcherWalks; walk; walk = walk->outer)
        walk->next = nullptr;
    // Out of the list first, so that a catcher that reports its own end is not called for it.
    while (!m_catchers.Empty())
        m_catchers.TakeFirst()->Release();
}

void CVekKernel::DispatchLogOutput(VEK_LOG_CATEGORY category, int level, wchar_t const * text)
{
    std::lock_guard const lock(vek::g_process.catcherLock);
    CatcherWalk walk{m_catchers.First(), m_catcherWalks, category};
    m_catcherWalks = &walk;
    while (walk.next)
    {
        IVekCatchLogOutput * const catcher = walk.next->Pointer();
        walk.next = walk.next->Next();
        catcher->OnLogOutput(level, text);
    }
    m_catcherWalks = walk.outer;
}

VEK_LOG_CATEGORY CVekKernel::GetLogCategory() const
{
    // Only the thread that is inside a walk gets in here while there is one.
    std::lock_guard const lock(vek::g_process.catcherLock);
    return m_catcherWalks ? m_catcherWalks->category : VEK_LOG_NONE;
}

void CVekKernel::RemoveEntries(IVekCatchLogOutput const * catcher)
{
    for (CatcherWalk * walk = m_catcherWalks; walk; walk = walk->outer)
    {
        while (walk->next && walk->next->Pointer() == catcher)
            walk->next = walk->next->Next();
    }
    m_catchers.Remove(catcher);
}

void CVekKernel::AddCatchLogOutput(IVekCatchLogOutput * catcher)
{
    if (!catcher)
        return;
    std::lock_guard const lock(vek::g_process.catcherLock);
    catcher->AddRef();
    if (!m_catchers.AppendTail(catcher))
        catcher->Release();
}

void CVekKernel::RemoveCatchLogOutput(IVekCatchLogOutput * catcher)
{
    std::lock_guard const lock(vek::g_process.catcherLock);
    RemoveEntries(catcher);
    // Kept: one Release, however many entries there were, none included; hosts balance it with a single Add.
    if (catcher)
        catcher->Release();
}

int CVekKernel::SetDebugOutputLevel(int level)
{
    vek::g_debugOutputLevel.store(level, std::memory_order_relaxed);
    return level;
}

int CVekKernel::GetDebugOutputLevel()
{
    return vek::g_debugOutputLevel.load(std::memory_order_relaxed);
}

unsigned int CVekKernel::SetBreakOnAllocation(unsigned int number)
{
    vek::g_breakOnAllocation.store(number, std::memory_order_relaxed);
    return number;
}

unsigned int CVekKernel::GetBreakOnAllocation()
{
    return vek::g_breakOnAllocation.load(std::memory_order_relaxed);
}

unsigned long long CVekKernel::GetPerformanceFrequency()
{
    return m_performanceFrequency;
}

double CVekKernel::GetCPUSpeed()
{
    return static_cast<double>(m_performanceFrequency) * 9.5367431640625e-7;
}

unsigned long long CVekKernel::GetTotalPhysicalMemory()
{
    return MemoryStatus().ullTotalPhys;
}

unsigned long long CVekKernel::GetAvailablePhysicalMemory()
{
    return MemoryStatus().ullAvailPhys;
}

IVekXMLManager * CVekKernel::GetXMLManager()
{
    return m_xmlManager.Get();
}

void vek::DispatchToCatchers(VEK_LOG_CATEGORY category, int level, wchar_t const * text)
{
    CVekKernel::Get().DispatchLogOutput(category, level, text);
}

VEK_LOG_CATEGORY VekGetLogCategory()
{
    return CVekKernel::Get().GetLogCategory();
}

bool VekLibInit()
{
    return CVekKernel::Get().Init();
}

void VekLibDeinit()
{
    CVekKernel::Get().Deinit();
}

IVekKernel * getVekLibKernel()
{
    return &CVekKernel::Get();
}
