/// @file
/// Synchronisation objects, scoped locks, worker threads and their commands, wait cursor and current directory.
///
/// @code
/// struct Load final : CVekThreadCommand
/// {
///     void Execute() override { VekLogOutput(0, L"on thread %u", VekGetCurrentThreadID()); }
/// };
/// IVekKernel * const kernel = getVekLibKernel();
/// CVekRef<IVekThread> const worker{kernel->CreateThread(L"loader", nullptr, false, 0, 0)};
/// worker->Start();
/// kernel->ExecuteThreadCommand(new Load, worker.Get()); // waits; the command is released then
/// worker->Stop();
/// @endcode
#ifndef VEK_THREAD_H
#define VEK_THREAD_H

#include "VekCore.h"
#include "VekExport.h"
#include "VekText.h"

#include <stdint.h>

VEK_HEADER_BEGIN

/// The base of the synchronisation objects. Waits have no time limit, and every operation answers true whatever the
/// system said. Copies are shallow: a copy of an object with a handle shares it, and both close it.
class VEK_API CVekSyncObject
{
public:
    CVekSyncObject() = default;
    /// Nothing is copied here.
    CVekSyncObject(CVekSyncObject const &) {}
    CVekSyncObject & operator=(CVekSyncObject const &) { return *this; }
    virtual ~CVekSyncObject();

    /// Waits until the object is free and takes it; true always.
    virtual bool Lock() = 0;
    /// Gives the object back; true always.
    virtual bool Unlock() = 0;
    /// The handle that can be waited for, owned by the object; null where there is none.
    virtual void * GetHandle() const = 0;
};

/// Mutual exclusion within the process; its owning thread may take it again. It has no handle, so that it can't take
/// part in a CVekMultiLock. A copy holds the bytes of the system's record, which both then delete.
class VEK_API CVekCriticalSection : public CVekSyncObject
{
public:
    CVekCriticalSection();
    CVekCriticalSection(CVekCriticalSection const &) = default;
    CVekCriticalSection & operator=(CVekCriticalSection const &) = default;
    ~CVekCriticalSection() override;

    bool Lock() override;
    bool Unlock() override;
    void * GetHandle() const override;

private:
    /// The system's critical-section record.
    uintptr_t m_section[sizeof(void *) == 4 ? 6 : 5];
};

/// Mutual exclusion with a handle; its owning thread may take it again, and an abandoned one counts as taken.
class VEK_API CVekMutex : public CVekSyncObject
{
public:
    CVekMutex();
    CVekMutex(CVekMutex const &) = default;
    CVekMutex & operator=(CVekMutex const &) = default;
    ~CVekMutex() override;

    bool Lock() override;
    bool Unlock() override;
    void * GetHandle() const override;

private:
    void * m_handle;
};

/// A counter of free places: Lock takes one and waits while there is none, Unlock gives one back.
class VEK_API CVekSemaphore : public CVekSyncObject
{
public:
    /// The maximum comes first, then the count at the start.
    CVekSemaphore(unsigned int maximumCount, unsigned int initialCount);
    CVekSemaphore(CVekSemaphore const &) = default;
    CVekSemaphore & operator=(CVekSemaphore const &) = default;
    ~CVekSemaphore() override;

    bool Lock() override;
    bool Unlock() override;
    void * GetHandle() const override;

private:
    void * m_handle;
};

/// A flag that threads wait for, clear at the start. Lock waits until it is set and clears it; Unlock does nothing.
class VEK_API CVekSignal : public CVekSyncObject
{
public:
    CVekSignal();
    CVekSignal(CVekSignal const &) = default;
    CVekSignal & operator=(CVekSignal const &) = default;
    ~CVekSignal() override;

    bool Lock() override;
    bool Unlock() override;
    void * GetHandle() const override;

    /// Sets the flag; true always.
    virtual bool SetSignal();
    /// Clears the flag; true always.
    virtual bool ResetSignal();
    /// Lets the threads that wait now go on and leaves the flag clear; true always.
    virtual bool PulseSignal();

private:
    void * m_handle;
};

/// Holds one object for a scope: its destructor gives back what Lock took. For use by one thread, on its stack. It does
/// not own the object; a null object is never touched. A copy believes to hold what its source held.
class VEK_API CVekSingleLock
{
public:
    /// Locks the object at once if wanted.
    CVekSingleLock(CVekSyncObject * object, bool initialLock);
    CVekSingleLock(CVekSingleLock const &) = default;
    CVekSingleLock & operator=(CVekSingleLock const &) = default;
    ~CVekSingleLock();

    /// Locks the object; true always.
    bool Lock();
    /// Unlocks the object, even if this holder never locked it; true always.
    bool Unlock();
    /// True between Lock and Unlock.
    bool IsLocked();

private:
    CVekSyncObject * m_object;
    bool m_locked;
};

/// Waits for several objects at once. For use by one thread, on its stack; it does not own the objects. Waiting for any
/// of them takes the one that ended the wait, and Unlock gives that one back. Waiting for all of them takes them all,
/// and Unlock gives none back: their owner unlocks them one by one.
class VEK_API CVekMultiLock
{
public:
    /// The most objects that one lock can hold.
    static constexpr unsigned int MAX_OBJECTS = 16;

    /// Objects beyond the first 16 are left out. A null entry or an object without handle makes every wait fail at
    /// once.
    CVekMultiLock(unsigned int count, CVekSyncObject ** objects, bool waitAll, bool initialLock);
    CVekMultiLock(CVekMultiLock const &) = default;
    CVekMultiLock & operator=(CVekMultiLock const &) = default;
    ~CVekMultiLock();

    /// Waits for one or for all of the objects; true always, after a wait that failed too.
    bool Lock();
    /// Unlocks the object that ended the wait for any of them; true always.
    bool Unlock();
    /// True between Lock and Unlock.
    bool IsLocked();

private:
    bool m_locked;
    unsigned int m_count;
    bool m_waitAll;
    CVekSyncObject * m_objects[MAX_OBJECTS];
    void * m_handles[MAX_OBJECTS];
    bool m_acquired[MAX_OBJECTS];
};

/// A worker thread that runs queued commands and ticks a callback. Created by IVekKernel::CreateThread.
class IVekThread : public IVekObject
{
public:
    /// Called by a worker once per tick, on the worker's thread. Hosts implement it.
    class TickCallback : public IVekObject
    {
    public:
        /// The worker holds one more reference during the call. An exception that leaves it ends the process.
        virtual void OnTick() = 0;

    protected:
        ~TickCallback() = default;
    };

    /// Swaps the callback, between two ticks of a worker that runs, and waits until that is done, as
    /// IVekKernel::ExecuteThreadCommand waits: a suspended worker has to be resumed first, and other callers wait
    /// meanwhile. On any other worker it is done at once. The thread takes its reference to the new one, then gives
    /// back that to the old one; null for none. The last is given back with the thread's end, or after a long call that
    /// goes on then.
    virtual void SetTickCallback(TickCallback * callback) = 0;
    /// The callback, without adding a reference; null when there is none.
    VEK_OVERLOADS2(virtual TickCallback * GetTickCallback() = 0,
                   virtual TickCallback const * GetTickCallback() const = 0)
    /// The name that debuggers show, owned by the thread object.
    virtual CVekString<wchar_t> const & GetName() const = 0;
    /// The tick interval that it was created with: 0 ticks with every turn of the loop, any other in the first turn and
    /// then whenever more than that many thousand seconds have passed.
    virtual unsigned int GetTickInterval() = 0;
    /// The number of ticks after which the worker ends by itself; 0 for no limit.
    virtual unsigned int GetMaxTickCount() = 0;
    /// The system's handle of the thread, owned by the thread object; null when it does not run.
    virtual void * GetHandle() = 0;
    /// The system's number of the thread, kept after its end; 0 before the first Start.
    virtual unsigned int GetThreadID() = 0;
    /// The flag that it was created with.
    virtual bool GetCreateFlag() = 0;
    /// True when called on the worker itself.
    virtual bool IsCurrentThread() = 0;
    /// True while the worker's loop runs.
    virtual bool IsRunning() = 0;
    /// True while there are more calls of Suspend than of Resume.
    virtual bool IsSuspended() = 0;
    /// Starts the worker; returns the system's result of resuming the new thread (its earlier suspend count). GetHandle
    /// is null afterwards when the system made none.
    virtual unsigned int Start() = 0;
    /// Suspends the worker and waits until it has met the suspension, or has ended; or counts one more suspension.
    /// Returns the new count. On the worker itself it takes effect once the loop is reached again; before the start,
    /// with the first turn of the loop; after the end it only counts.
    virtual long Suspend() = 0;
    /// Takes one suspension back and lets the worker run on after the last; returns the new count, 0 if there was none.
    virtual long Resume() = 0;
    /// Takes one suspension back, asks the worker to end and waits up to 5,000 milliseconds for it; returns the
    /// system's wait result: 0 when it has ended, 258 when not yet, 0xFFFFFFFF when there was nothing to wait for. On
    /// the worker itself it does not wait.
    virtual unsigned int Stop() = 0;
    /// Appends a control message: 2 suspends (the parameter is a CVekSignal to set; such a suspension is not counted),
    /// 3 stops, others are ignored. Of more than 256 that are not handled yet the oldest are lost.
    virtual void PostControlMessage(unsigned int type, void * parameter) = 0;
    /// Appends a command for the worker to run; adds no reference. One that is queued here already stays where it is.
    virtual void AddCommand(CVekThreadCommand * command) = 0;
    /// True while there are commands in the queue.
    virtual bool HasPendingCommands() = 0;

protected:
    ~IVekThread() = default;
};

/// A piece of work for a worker thread. Hosts derive from it and write Execute. By default it is released once it has
/// run. The library must be of the host's own C++ ABI.
class VEK_API CVekThreadCommand : public CVekRefCounted<IVekObject>
{
public:
    /// A command that is released once it has run, unless autoDelete is false.
    explicit CVekThreadCommand(bool autoDelete = true);
    /// Copy every field as it is, the count and the links included.
    CVekThreadCommand(CVekThreadCommand const &) = default;
    CVekThreadCommand & operator=(CVekThreadCommand const &) = default;
    ~CVekThreadCommand() override;

    /// Runs Execute, then sets the end signal if there is one, then releases the command if it deletes itself; Execute
    /// may still decide that.
    virtual void Launch();
    /// The work itself. An exception that leaves it ends the process.
    virtual void Execute() = 0;

    /// The links of the list of commands that it is queued in.
    void SetPrev(CVekThreadCommand * command) { m_links.previous = command; }
    void SetNext(CVekThreadCommand * command) { m_links.next = command; }
    CVekThreadCommand * GetPrev() { return m_links.previous; }
    CVekThreadCommand const * GetPrev() const { return m_links.previous; }
    CVekThreadCommand * GetNext() { return m_links.next; }
    CVekThreadCommand const * GetNext() const { return m_links.next; }

    /// The signal to be set once the command has run, not owned; null for none.
    void SetEndSignal(CVekSignal * signal) { m_endSignal = signal; }
    CVekSignal * GetEndSignal() const { return m_endSignal; }
    /// Whether it is released once it has run.
    bool IsAutoDelete() const { return m_autoDelete; }

protected:
    /// Whether it is released once it has run.
    void SetAutoDelete(bool autoDelete) { m_autoDelete = autoDelete; }

private:
    VekDirectLinkedListPtr<CVekThreadCommand> m_links;
    bool m_autoDelete;
    CVekSignal * m_endSignal;
};

/// The pseudo-handle of the calling thread, which need not be closed.
VEK_API void * VekGetCurrentThread();
/// The system's number of the calling thread.
VEK_API unsigned int VekGetCurrentThreadID();

/// Shows the wait cursor for a scope. Its end destroys the cursor that it loaded, a shared one of the system.
class VEK_API CVekWaitCursor
{
public:
    CVekWaitCursor();
    /// Copy both cursors as they are.
    CVekWaitCursor(CVekWaitCursor const &) = default;
    CVekWaitCursor & operator=(CVekWaitCursor const &) = default;
    virtual ~CVekWaitCursor();

private:
    void * m_waitCursor;
    void * m_previousCursor;
};

/// Changes the current directory for a scope and puts the earlier one back at its end.
class VEK_API CVekSetCurrentDirectory
{
public:
    /// Null changes nothing now.
    explicit CVekSetCurrentDirectory(wchar_t const * directory);
    CVekSetCurrentDirectory(CVekSetCurrentDirectory const &) = default;
    CVekSetCurrentDirectory & operator=(CVekSetCurrentDirectory const &) = default;
    virtual ~CVekSetCurrentDirectory();

private:
    CVekString<wchar_t> m_saved;
};

VEK_HEADER_END

#endif
