#pragma once

#include "VekLib.h"
#include "VekRef.h"

#include "base/PointerList.h"

#include <atomic>

class CVekXMLManager;

namespace vek
{
class EventEntry;
class EventMap;
} // namespace vek

/// The kernel. There is one, which lives as long as the library is loaded.
class CVekKernel final : public CVekRefCounted<IVekKernel>
{
public:
    /// The kernel, made on first use. When the library is unloaded it forgets its catchers and stays otherwise as it
    /// is, so that static objects of the program that end later still find a sound one.
    static CVekKernel & Get() noexcept;

    CVekKernel(CVekKernel const &) = delete;
    CVekKernel & operator=(CVekKernel const &) = delete;
    ~CVekKernel() override;

    /// The work of VekLibInit and VekLibDeinit.
    bool Init();
    void Deinit();
    /// Calls every catcher, under the catcher lock.
    void DispatchLogOutput(VEK_LOG_CATEGORY category, int level, wchar_t const * text);
    /// The category of the message that the calling thread hands to catchers.
    VEK_LOG_CATEGORY GetLogCategory() const;

    unsigned int Release() override;
    IVekThread * CreateThread(wchar_t const * name, IVekThread::TickCallback * callback, bool createFlag,
                              unsigned int tickInterval, unsigned int maxTickCount) override;
    void ExecuteThreadCommand(CVekThreadCommand * command, IVekThread * thread) override;
    void PostThreadCommand(CVekThreadCommand * command, IVekThread * thread) override;
    unsigned long long GetPerformanceFrequency() override;
    double GetCPUSpeed() override;
    IVekTimer * CreateTimer() override;
    IVekMemoryIOStream * CreateMemoryIOStream() override;
    IVekFileIOStream * CreateFileIOStream() override;
    IVekCameraUIController * CreateCameraUIController() override;
    IVekProgressController * CreateProgressController() override;
    IVekLexer * CreateLexer() override;
    IVekTokenizer * CreateTokenizer() override;
    IVekRandomizer * CreateRandomizer() override;
    int SetDebugOutputLevel(int level) override;
    int GetDebugOutputLevel() override;
    void AddCatchLogOutput(IVekCatchLogOutput * catcher) override;
    void RemoveCatchLogOutput(IVekCatchLogOutput * catcher) override;
    bool RegisterEvent(GUID const & id) override;
    void UnregisterEvent(GUID const & id) override;
    void ReleaseEventMap() override;
    bool IsEventRegistered(GUID const & id) override;
    bool FireEvent(GUID const & id, CVekEventData * data) override;
    bool AddEventHandler(GUID const & id, CVekEventHandler * handler) override;
    void RemoveEventHandler(GUID const & id, CVekEventHandler * handler) override;
    unsigned int SetBreakOnAllocation(unsigned int number) override;
    unsigned int GetBreakOnAllocation() override;
    unsigned long long GetTotalPhysicalMemory() override;
    unsigned long long GetAvailablePhysicalMemory() override;
    IVekXMLManager * GetXMLManager() override;
    IVekCPUUsage * CreateCPUUsage() override;

private:
    CVekKernel();

    struct CatcherWalk;

    bool InitEventMap();
    bool InitXMLManager();
    void LogBanner();
    static void LogLiveObjects();
    void ReleaseCatchers();
    /// Takes every entry of the catcher out, from under the walks that are under way too.
    void RemoveEntries(IVekCatchLogOutput const * catcher);
    /// The event's entry, under the event-map lock; null when there is none.
    vek::EventEntry * FindEvent(GUID const & id) const;

    std::atomic<int> m_initCount = 0; // hosts with several threads start and stop the library from any
    vek::PointerList<IVekCatchLogOutput> m_catchers;
    CatcherWalk * m_catcherWalks = nullptr; // the innermost one
    unsigned long long m_performanceFrequency = 0;
    vek::EventMap * m_eventMap = nullptr;
    CVekRef<CVekXMLManager> m_xmlManager;
};
