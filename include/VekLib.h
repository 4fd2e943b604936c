/// @file
/// The library's entry points and its kernel, and with them everything else.
///
/// @code
/// CVekLibrary const library; // started here, stopped at the end of the scope
/// if (!library)
///     return;
/// CVekRef<IVekXMLDocument> const document = VekLoadXMLDocument(L"scene.xml");
/// if (document)
///     fputws(document->GetRootElement()->GetName(), stdout);
/// @endcode
#ifndef VEK_LIB_H
#define VEK_LIB_H

#include "VekCamera.h"
#include "VekCore.h"
#include "VekData.h"
#include "VekEdit.h"
#include "VekExport.h"
#include "VekGeometry.h"
#include "VekIO.h"
#include "VekLexer.h"
#include "VekMath.h"
#include "VekNurbs.h"
#include "VekPackets.h"
#include "VekRef.h"
#include "VekText.h"
#include "VekThread.h"
#include "VekVariant.h"
#include "VekVersion.h"
#include "VekWalk.h"
#include "VekXML.h"

/// The library's one process-wide object: start-up and shut-down, log catchers, events, and the factory of services.
/// Obtained with getVekLibKernel and never released. Every Create operation hands the caller a new object with
/// reference count 1, or null. Any thread may call it.
class IVekKernel : public IVekObject
{
public:
    /// Creates a worker thread, not started. The name is copied and may be null; the thread takes a reference to the
    /// callback, which may be null too. The flag is only kept. The interval counts as IVekThread::GetTickInterval says;
    /// a tick limit of 0 means none.
    virtual IVekThread * CreateThread(wchar_t const * name, IVekThread::TickCallback * callback, bool createFlag,
                                      unsigned int tickInterval, unsigned int maxTickCount) = 0;
    /// Runs a command on a worker and waits for its end; one command at a time in the whole process. A worker that is
    /// not started yet, or suspended, is waited for. Called on the worker itself it runs the command at once. Returns
    /// without having run it when the worker has ended or ends first, or when no signal can be made to wait for; a
    /// command that deletes itself is then released. No reference is added. The command's end signal is used, and null
    /// afterwards.
    virtual void ExecuteThreadCommand(CVekThreadCommand * command, IVekThread * thread) = 0;
    /// Queues a command on a worker and returns at once; called on the worker itself it runs the command.
    virtual void PostThreadCommand(CVekThreadCommand * command, IVekThread * thread) = 0;
    /// The counts per second of the high-resolution counter; 0 before VekLibInit.
    virtual unsigned long long GetPerformanceFrequency() = 0;
    /// That frequency in units of 1,048,576 counts per second. It does not measure the processor's clock.
    virtual double GetCPUSpeed() = 0;
    /// Each creates an object with one reference, which the caller owns; null when memory is exhausted.
    virtual IVekTimer * CreateTimer() = 0;
    virtual IVekMemoryIOStream * CreateMemoryIOStream() = 0;
    virtual IVekFileIOStream * CreateFileIOStream() = 0;
    virtual IVekCameraUIController * CreateCameraUIController() = 0;
    virtual IVekProgressController * CreateProgressController() = 0;
    virtual IVekLexer * CreateLexer() = 0;
    virtual IVekTokenizer * CreateTokenizer() = 0;
    virtual IVekRandomizer * CreateRandomizer() = 0;
    /// Sets the level up to which messages are shown, 0 at the start; returns it.
    virtual int SetDebugOutputLevel(int level) = 0;
    /// The level up to which messages are shown.
    virtual int GetDebugOutputLevel() = 0;
    /// Appends a catcher and holds a reference to it for this entry; one that is added twice is called twice. The last
    /// VekLibDeinit takes out each entry that is left, then releases it.
    virtual void AddCatchLogOutput(IVekCatchLogOutput * catcher) = 0;
    /// Takes every entry of the catcher out and releases it once, whether it had an entry or not.
    virtual void RemoveCatchLogOutput(IVekCatchLogOutput * catcher) = 0;
    /// Adds an event; false when it is there already, or before VekLibInit.
    virtual bool RegisterEvent(GUID const & id) = 0;
    /// Removes an event, then unsubscribes its handlers, for which it is gone already; nothing when it is not
    /// registered.
    virtual void UnregisterEvent(GUID const & id) = 0;
    /// Removes all events for good: none can be registered before a VekLibInit that starts the library.
    virtual void ReleaseEventMap() = 0;
    /// True when the event is registered.
    virtual bool IsEventRegistered(GUID const & id) = 0;
    /// Calls the event's handlers, the last added first; true when one of them returned true.
    virtual bool FireEvent(GUID const & id, CVekEventData * data) = 0;
    /// Subscribes a handler and holds a reference to it; false when the event is not registered.
    virtual bool AddEventHandler(GUID const & id, CVekEventHandler * handler) = 0;
    /// Removes every subscription of the handler to the event and releases it once; nothing when it has none.
    virtual void RemoveEventHandler(GUID const & id, CVekEventHandler * handler) = 0;
    /// Sets the number of the tracked allocation that stops in the debugger, 0 for none; returns it.
    virtual unsigned int SetBreakOnAllocation(unsigned int number) = 0;
    /// The number of the tracked allocation that stops in the debugger.
    virtual unsigned int GetBreakOnAllocation() = 0;
    /// The bytes of physical memory in the system.
    virtual unsigned long long GetTotalPhysicalMemory() = 0;
    /// The bytes of physical memory that are available now.
    virtual unsigned long long GetAvailablePhysicalMemory() = 0;
    /// The factory of XML objects, without adding a reference; null before VekLibInit.
    virtual IVekXMLManager * GetXMLManager() = 0;
    /// Creates a CPU-usage meter; null with a message when that fails.
    virtual IVekCPUUsage * CreateCPUUsage() = 0;

protected:
    ~IVekKernel() = default;
};

/// A new document whose root is an empty element of that name; null when memory is exhausted.
inline CVekRef<IVekXMLDocument> VekNewXMLDocument(wchar_t const * rootName)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager();
    CVekRef<IVekXMLDocument> document{manager ? manager->CreateXMLDocument() : nullptr};
    CVekRef<IVekXMLElement> const root{manager ? manager->CreateXMLElement() : nullptr};
    if (!document || !root)
        return nullptr;
    root->SetName(rootName);
    document->SetRootElement(root.Get());
    return root->GetName() == rootName ? document : nullptr;
}

/// A new document with all of an XML file; null when the file can't be read, is malformed or ends early, or memory is
/// exhausted. The error, which may be null, tells which.
inline CVekRef<IVekXMLDocument> VekLoadXMLDocument(wchar_t const * path, VekXMLError * error = nullptr)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager();
    CVekRef<IVekXMLDocument> document{manager ? manager->CreateXMLDocument() : nullptr};
    CVekXMLParser parser;
    if (document && !(parser.ParseXMLFile(path, document.Get()) && parser.IsComplete()))
        document.Reset();
    if (error)
        *error = parser.GetError();
    return document;
}

#endif
