/// @file
/// The base of every reference-counted object, the pointer array and the linked list, log output and error reporting,
/// tracked memory, events, progress, randomizer, CPU usage and timer.
///
/// @code
/// // What the library has to tell goes to a host's own log.
/// struct Catcher final : CVekRefCounted<IVekCatchLogOutput>
/// {
///     void OnLogOutput(int, wchar_t const * text) override { fputws(text, stderr); }
/// };
/// CVekRef<Catcher> const catcher{new Catcher};
/// getVekLibKernel()->AddCatchLogOutput(catcher.Get());
/// VekLogOutput(0, L"%d files are loaded", 3);
/// @endcode
#ifndef VEK_CORE_H
#define VEK_CORE_H

#include "VekExport.h"

#include <stddef.h>

VEK_HEADER_BEGIN

#if defined(_MSC_VER)
extern "C" long _InterlockedIncrement(long volatile *);
extern "C" long _InterlockedDecrement(long volatile *);
#pragma intrinsic(_InterlockedIncrement, _InterlockedDecrement)
#endif

namespace std
{
struct nothrow_t;
}
namespace vek
{
struct ArrayAttachment;
}

/// Adds 1 to the count, atomically; returns the new count.
inline unsigned int VekInterlockedIncrement(unsigned int & count) noexcept
{
#if defined(_MSC_VER)
    return static_cast<unsigned int>(_InterlockedIncrement(reinterpret_cast<long volatile *>(&count)));
#else
    return __atomic_add_fetch(&count, 1U, __ATOMIC_SEQ_CST);
#endif
}

/// Subtracts 1 from the count, atomically; returns the new count.
inline unsigned int VekInterlockedDecrement(unsigned int & count) noexcept
{
#if defined(_MSC_VER)
    return static_cast<unsigned int>(_InterlockedDecrement(reinterpret_cast<long volatile *>(&count)));
#else
    return __atomic_sub_fetch(&count, 1U, __ATOMIC_SEQ_CST);
#endif
}

/// The number of holders of an object, 1 at birth. A copy carries the count of its source as it stands (kept: a copied
/// object is made by hosts that set the count themselves).
struct VekObjectCommonData
{
    unsigned int refCount = 1; ///< The number itself.
};

/// The base of every service object. An object is born with count 1, which its creator owns and gives back with
/// Release; the last Release destroys the object. Interfaces have a protected destructor, no virtual one, so that
/// delete and owners that would call it don't compile: CVekRef owns a reference.
class IVekObject
{
public:
    /// Adds a holder; returns the new count. Safe from any thread.
    virtual unsigned int AddRef() = 0;
    /// Gives one reference back and destroys the object with the last; returns the new count. Safe from any thread.
    virtual unsigned int Release() = 0;
    /// The current count.
    virtual unsigned int GetRefCount() const = 0;

protected:
    ~IVekObject() = default;
};

/// Counts references for an interface: derive from CVekRefCounted<IVekSomething> and write only the interface's own
/// operations. The virtual destructor follows the interface's operations in the vtable. With Microsoft's C++ ABI it is
/// an import for those interfaces that a class of the library counts for in this way.
template <class Interface>
class CVekRefCounted : public Interface
{
public:
    CVekRefCounted() = default;
    CVekRefCounted(CVekRefCounted const &) = default;
    CVekRefCounted & operator=(CVekRefCounted const &) = default;

    /// As in IVekObject. The last Release deletes the object.
    unsigned int AddRef() override { return VekInterlockedIncrement(m_common.refCount); }
    unsigned int Release() override
    {
        unsigned int const count = VekInterlockedDecrement(m_common.refCount);
        if (count == 0)
            delete this;
        return count;
    }
    unsigned int GetRefCount() const override { return m_common.refCount; }

    virtual ~CVekRefCounted() = default;

protected:
    VekObjectCommonData m_common;
};

/// Gives the classes that derive from it the library's own pool for their objects. `new` of such a class yields null
/// when memory is exhausted.
class VEK_API CVekPooled
{
public:
    /// A block of the pool, or the given place; null when memory is exhausted.
    static void * operator new(size_t size) noexcept;
    static void * operator new(size_t size, std::nothrow_t const &) noexcept;
    static void * operator new(size_t, void * place) noexcept { return place; }
    /// Gives the block back to the pool.
    static void operator delete(void * block, size_t size) noexcept;
};

/// The untyped body of CVekPointerArray: pointers in order, in storage that the array owns. It never touches what the
/// pointers point to.
class VEK_API CVekPointerArrayBase
{
public:
    /// The growth step that doubles the capacity instead of adding to it.
    static constexpr int GROW_DOUBLING = 0x7FFFFFFF;

    CVekPointerArrayBase() = default;
    /// Shares the storage of the source, as the shallow copies of its owners need.
    CVekPointerArrayBase(CVekPointerArrayBase const &) = default;
    CVekPointerArrayBase & operator=(CVekPointerArrayBase const &) = default;

    /// The pointers that are stored.
    int GetCount() const noexcept { return m_count; }
    /// Those that there is room for.
    int GetCapacity() const noexcept { return m_capacity; }
    /// What the capacity grows by when there is no more room: GROW_DOUBLING doubles it.
    int GetGrowthStep() const noexcept { return m_growthStep; }
    /// A step below 1 counts as 1.
    void SetGrowthStep(int step) noexcept { m_growthStep = step; }

    /// Makes room for that many pointers in all; false, with the array unchanged, when it can't grow.
    bool Reserve(int capacity) noexcept;
    /// Appends; false, with the array unchanged, when it can't grow.
    bool Append(void * pointer) noexcept
    {
        if (m_count == m_capacity && !Grow())
            return false;
        m_storage[m_count++] = pointer;
        return true;
    }
    /// Inserts before the given index (0 to count; anything else is refused); false when refused or out of memory.
    bool Insert(int index, void * pointer) noexcept;
    /// Removes the slot; an index outside the array does nothing.
    void RemoveAt(int index) noexcept;
    /// Frees the storage; count and capacity become 0. The growth step stays.
    void Free() noexcept;
    /// Exchanges everything with the other array.
    void Swap(CVekPointerArrayBase & other) noexcept;

protected:
    friend struct vek::ArrayAttachment;

    bool Grow() noexcept;

    int m_count = 0;
    int m_capacity = 0;
    void ** m_storage = nullptr;
    int m_growthStep = 1;
};

/// An ordered array of pointers with a growth step (1 by default). It owns its storage, which its owner frees with
/// Free, and none of the objects; it has no destructor, so that objects that hold one can be copied shallowly.
template <class T>
class CVekPointerArray : public CVekPointerArrayBase
{
public:
    /// The pointer at an index, which must be inside the array.
    T * operator[](int index) const noexcept { return static_cast<T *>(m_storage[index]); }
    /// The pointer at an index, or null for one outside the array.
    T * At(int index) const noexcept { return Has(index) ? (*this)[index] : nullptr; }
    /// Whether the index is inside the array.
    bool Has(int index) const noexcept { return index >= 0 && index < m_count; }
    /// Replaces the pointer at an index, which must be inside the array.
    void Set(int index, T * pointer) noexcept { m_storage[index] = pointer; }
    /// Removes the last pointer, which must exist, and returns it.
    T * TakeLast() noexcept { return static_cast<T *>(m_storage[--m_count]); }
    /// As CVekPointerArrayBase::Append.
    bool Append(T * pointer) noexcept { return CVekPointerArrayBase::Append(pointer); }
    /// As CVekPointerArrayBase::Insert.
    bool Insert(int index, T * pointer) noexcept { return CVekPointerArrayBase::Insert(index, pointer); }
};

/// Receives the library's messages. Hosts implement it and register it with IVekKernel::AddCatchLogOutput.
class IVekCatchLogOutput : public IVekObject
{
public:
    /// Called for each message that passes the debug output level, one at a time in the whole process. The text ends in
    /// a newline and is valid only during the call. It must not add or remove catchers. VekGetLogCategory tells a
    /// failure from a banner or a note. The kernel takes no further reference for the call. An exception that leaves it
    /// ends the process.
    virtual void OnLogOutput(int level, wchar_t const * text) = 0;

protected:
    ~IVekCatchLogOutput() = default;
};

/// What a message tells of.
enum VEK_LOG_CATEGORY : unsigned int
{
    VEK_LOG_NONE = 0,    ///< No catcher is being called.
    VEK_LOG_FAILURE = 1, ///< Something was refused or went wrong: all that VekLogOutput sends.
    VEK_LOG_NOTE = 2,    ///< Worth knowing, nothing failed.
    VEK_LOG_BANNER = 3   ///< The lines with which the library starts and ends.
};

/// Formats a message (wide printf rules: "%s" is wide text), appends a newline and sends it to the debugger and to
/// every registered catcher, in the order of registration. Messages above the debug output level cost nothing. A text
/// longer than 4,094 characters is cut there.
VEK_API void VekLogOutput(int level, wchar_t const * format, ...) noexcept;

/// As VekLogOutput, under another category than VEK_LOG_FAILURE.
VEK_API void VekLogOutputAs(VEK_LOG_CATEGORY category, int level, wchar_t const * format, ...) noexcept;

/// For catchers: the category of the message that OnLogOutput has been called with. VEK_LOG_NONE outside of such a
/// call, or on another thread than the one that logs.
VEK_API VEK_LOG_CATEGORY VekGetLogCategory();

/// Sends the system's text for the calling thread's last error to the debugger; nothing when there is no text.
VEK_API void VekWindowsError() noexcept;

/// Sets the process-wide debug output level for a scope and puts the earlier one back at its end.
class VEK_API CVekSetDebugOutputLevel
{
public:
    /// Messages above this level are not shown from here on.
    explicit CVekSetDebugOutputLevel(int level);
    ~CVekSetDebugOutputLevel();
    CVekSetDebugOutputLevel(CVekSetDebugOutputLevel const &) = default;
    CVekSetDebugOutputLevel & operator=(CVekSetDebugOutputLevel const &) = default;

private:
    int m_previousLevel;
};

/// The base of exceptions that hosts derive and report; the library itself throws none.
class VEK_API CVekException
{
public:
    CVekException();
    /// There is nothing to copy.
    CVekException(CVekException const &);
    CVekException & operator=(CVekException const &);
    virtual ~CVekException();
    /// Tells the user; does nothing here.
    virtual void ReportError();
};

// --- intrusive list --------------------------------------------------------------------------------------------------

/// The links that an element of a CVekDirectLinkedList carries. Elements offer them as GetPrev, SetPrev, GetNext,
/// SetNext.
template <class T>
struct VekDirectLinkedListPtr
{
    /// The neighbours in the list; null at its ends, and in no list.
    T * previous = nullptr;
    T * next = nullptr;
};

template <class Pointer>
class CVekDirectLinkedList;

/// A doubly linked list of elements that carry their own links: it never allocates, and an element is in at most one
/// list at a time.
template <class T>
class CVekDirectLinkedList<T *>
{
public:
    CVekDirectLinkedList() = default;
    CVekDirectLinkedList(CVekDirectLinkedList const &) = delete;
    CVekDirectLinkedList & operator=(CVekDirectLinkedList const &) = delete;
    /// Unlinks the elements without deleting them.
    virtual ~CVekDirectLinkedList() { RemoveAll(false); }

    /// Destroys one element that is in no list; null is ignored.
    virtual void DeleteElement(T * element) { delete element; }

    /// The first and the last element; null in an empty list.
    T * GetHead() const { return m_head; }
    T * GetTail() const { return m_tail; }
    /// The elements that were added and not removed.
    unsigned int GetCount() const { return m_count; }

    /// Appends an element that is in no list. Its next link is left as it is (kept): it should be null, or what it
    /// leads to is walked as if it were in the list. RemoveAll and the list's end take as many elements as were added.
    void AddTail(T * element)
    {
        if (m_tail)
        {
            m_tail->SetNext(element);
            element->SetPrev(m_tail);
        }
        else
            m_head = element;
        m_tail = element;
        ++m_count;
    }
    /// Takes the first element out, its links cleared; null when the list is empty.
    T * RemoveHead()
    {
        T * const element = m_head;
        if (!element)
            return nullptr;
        m_head = element->GetNext();
        if (m_head)
            m_head->SetPrev(nullptr);
        else
            m_tail = nullptr;
        Detach(element);
        return element;
    }
    /// Takes an element of this list out, its links cleared. One that is in no list is left alone.
    void Remove(T * element)
    {
        T * const previous = element->GetPrev();
        if (!previous)
        {
            if (element == m_head)
                RemoveHead();
            return;
        }
        T * const next = element->GetNext();
        previous->SetNext(next);
        if (next)
            next->SetPrev(previous);
        else
            m_tail = previous;
        Detach(element);
    }
    /// Takes all elements out and, if told so, deletes them. Takes time in proportion to their number.
    void RemoveAll(bool deleteElements)
    {
        while (T * const element = m_count > 0 ? RemoveHead() : nullptr)
        {
            if (deleteElements)
                DeleteElement(element);
        }
        m_head = m_tail = nullptr; // what an element had behind it when it came is not this list's
        m_count = 0;
    }

protected:
    void Detach(T * element)
    {
        element->SetPrev(nullptr);
        element->SetNext(nullptr);
        --m_count;
    }

    T * m_head = nullptr;
    T * m_tail = nullptr;
    unsigned int m_count = 0;
};

// --- lost references -------------------------------------------------------------------------------------------------

/// Counts the library's objects by class from now on, or no more, so that the last VekLibDeinit can list those that are
/// still alive: a note for each class that has any, while the catchers are still there. Call it before anything else;
/// objects that were made earlier make the numbers wrong when they end. The environment variable VEKLIB_LEAKS=1 does
/// the same for a program that doesn't. The parts of an object are not listed, but for elements; a derived class counts
/// as the library's that it is derived from.
VEK_API void VekReportLiveObjects(bool on);

// --- tracked memory --------------------------------------------------------------------------------------------------

/// Allocates a block that the library tracks with its size, the file-name part of a source file (null: "Unknown File")
/// and a line. Null, without a message, when memory is exhausted; size 0 gives a block, too. The block is aligned as
/// malloc's and is freed with VekDeallocMemory. Safe from any thread.
VEK_API unsigned char * VekAllocMemory(unsigned int size, wchar_t const * file, int line);
VEK_API unsigned char * VekAllocMemory(unsigned int size, char const * file, int line);

/// Frees a block; true when it was a tracked one. Any other pointer goes to the free of the library's own runtime,
/// which may not be the caller's. File and line are not used. Safe from any thread.
VEK_API bool VekDeallocMemory(void * pointer, wchar_t const * file, int line);
VEK_API bool VekDeallocMemory(void * pointer, char const * file, int line);

// --- events ----------------------------------------------------------------------------------------------------------

class CVekEventHandlerContainer;

/// The base of what hosts send with an event. The library must be of the host's own C++ ABI.
class VEK_API CVekEventData
{
public:
    CVekEventData() = default;
    CVekEventData(CVekEventData const &) = default;
    CVekEventData & operator=(CVekEventData const &) = default;
    virtual ~CVekEventData();
};

/// Receives an event. Hosts derive from it, subscribe it with IVekKernel::AddEventHandler, and may group it with others
/// in a container. It is meant for one event at a time, as often as it was added: a second event is delivered as well,
/// but GetEvent tells the last one only, which is also the only one that leaving the container ends.
/// The library must be of the host's own C++ ABI.
class VEK_API CVekEventHandler : public CVekRefCounted<IVekObject>
{
public:
    CVekEventHandler();
    /// Copies every field, the count included.
    CVekEventHandler(CVekEventHandler const &) = default;
    CVekEventHandler & operator=(CVekEventHandler const &) = default;
    ~CVekEventHandler() override;

    /// Called by the kernel once it is subscribed: remembers the event.
    virtual void OnSubscribed(GUID const & id);
    /// Called by the kernel once it is unsubscribed: forgets the event and leaves its container.
    virtual void OnUnsubscribed();
    /// Called for each event that is fired; true when the handler dealt with it. The data belongs to whoever fires. The
    /// handler may fire, subscribe and unsubscribe here, itself and its container included, and unregister the event:
    /// each handler that is still subscribed is then called once for each of its subscriptions that the event had when
    /// it was fired. One more reference is held to it during the call. An exception that leaves it ends the process.
    virtual bool OnEvent(CVekEventData * data) = 0;

    /// Makes the container its own, not counted. Null forgets it and unsubscribes the handler from its event.
    void SetContainer(CVekEventHandlerContainer * container);
    /// The container that it was put into, no reference added; null for none.
    CVekEventHandlerContainer * GetContainer() const { return m_container; }
    /// The event that it is subscribed to; {00000000-0000-0000-C000-000000000046} when to none.
    GUID const & GetEvent() const;

private:
    alignas(4) unsigned char m_event[16]; // a GUID
    CVekEventHandlerContainer * m_container;
};

/// Keeps event handlers together and unsubscribes and releases them with its own end. Safe from any thread.
class VEK_API CVekEventHandlerContainer : public CVekRefCounted<IVekObject>
{
public:
    CVekEventHandlerContainer();
    CVekEventHandlerContainer(CVekEventHandlerContainer const &) = delete;
    CVekEventHandlerContainer & operator=(CVekEventHandlerContainer const &) = delete;
    ~CVekEventHandlerContainer() override;

    /// Takes over the caller's reference and returns the handler; null, with the reference released, when memory is
    /// exhausted.
    CVekEventHandler * Add(CVekEventHandler * handler);
    /// Unsubscribes and releases a handler of this container; nothing for another.
    void Remove(CVekEventHandler * handler);
    /// Does so with every handler.
    void RemoveAll();

private:
    void RemoveEach();

    CVekPointerArray<CVekEventHandler> m_handlers;
};

// --- progress --------------------------------------------------------------------------------------------------------

/// Tracks the progress of nested tasks in percent and reports it to a callback. Used by one thread at a time.
class IVekProgressController : public IVekObject
{
public:
    /// Shows the progress; hosts implement it.
    class Callback : public IVekObject
    {
    public:
        /// Called with each change: the current task's progress and the share of the whole that ended tasks have
        /// finished, both in percent, the current task's name (valid during the call), and the controller's parameter.
        /// False asks the working code to stop. The controller keeps a reference to the callback during the call. An
        /// exception that leaves it ends the process.
        virtual bool OnProgress(double taskProgress, double finishedShare, wchar_t const * taskName, int param) = 0;

    protected:
        ~Callback() = default;
    };

    /// Begins a task within the current one. The share is the task's part of it, in percent; the step is what Progress
    /// adds when it is given a negative amount; the parameter is only kept. The first task of a run clears the flags.
    virtual void BeginTask(wchar_t const * name, double share, double step, int param) = 0;
    /// Ends the current task at 100 percent; nothing when there is none.
    virtual void EndTask() = 0;
    /// Adds to the current task's progress, up to 100; a negative amount adds the task's step.
    virtual void Progress(double amount) = 0;
    /// Asks the working code to stop.
    virtual void Cancel() = 0;
    /// True once the run is cancelled, by Cancel or by the callback.
    virtual bool IsCancelled() = 0;
    /// Sets the flag that the end of the last task sets.
    virtual void Completed() = 0;
    /// True once the last task has ended.
    virtual bool IsCompleted() = 0;
    /// Takes a reference to the callback, then gives back that to the old one, then stores the new one; null for none.
    /// An old callback that dies by this must not use the controller any more.
    virtual void SetCallback(Callback * callback) = 0;
    /// The callback, no reference added.
    VEK_OVERLOADS2(virtual Callback * GetCallback() = 0, virtual Callback const * GetCallback() const = 0)
    /// The value that is handed to the callback.
    virtual void SetParam(int param) = 0;

protected:
    ~IVekProgressController() = default;
};

/// The library's progress controller; IVekKernel::CreateProgressController makes one.
class VEK_API CVekProgressController : public CVekRefCounted<IVekProgressController>
{
public:
    CVekProgressController();
    CVekProgressController(CVekProgressController const &) = delete;
    CVekProgressController & operator=(CVekProgressController const &) = delete;
    ~CVekProgressController() override;

    void BeginTask(wchar_t const * name, double share, double step, int param) override;
    void EndTask() override;
    void Progress(double amount) override;
    void Cancel() override;
    bool IsCancelled() override;
    void Completed() override;
    bool IsCompleted() override;
    void SetCallback(Callback * callback) override;
    Callback * GetCallback() override;
    Callback const * GetCallback() const override;
    void SetParam(int param) override;

private:
    struct Task;

    Task * Current() const;
    void Report(Task & task);
    void RemoveTask(int index);

    Callback * m_callback;
    bool m_completed;
    bool m_cancelled;
    double m_finishedShare;
    int m_param;
    CVekPointerArray<Task> m_tasks;
    int m_lostTasks;
};

/// Begins a task for a scope and ends it with the scope. It holds no reference to the controller; null is ignored.
class VEK_API CVekProgressBegin
{
public:
    /// Begins the task as IVekProgressController::BeginTask does.
    CVekProgressBegin(IVekProgressController * controller, wchar_t const * name, double share, double step, int param);
    CVekProgressBegin(CVekProgressBegin const &) = delete;
    CVekProgressBegin & operator=(CVekProgressBegin const &) = delete;
    virtual ~CVekProgressBegin();

private:
    IVekProgressController * m_controller;
};

// --- randomizer, CPU usage, timer ------------------------------------------------------------------------------------

/// A source of random values. All randomizers share the runtime's one sequence, which each new one seeds with the time.
class IVekRandomizer : public IVekObject
{
public:
    /// A value between the two, both included; they may be in either order.
    virtual float GetRandomValue(float low, float high) = 0;

protected:
    ~IVekRandomizer() = default;
};

/// Measures this process's share of the processors' time.
class IVekCPUUsage : public IVekObject
{
public:
    /// Measures anew when more than a second has passed since the last measurement. The time is the caller's, in
    /// seconds, of any clock that never goes back; the first call only remembers it.
    virtual void Update(double now) = 0;
    /// The last measured share, in percent from 0 to 100.
    virtual double GetUsage() = 0;

protected:
    ~IVekCPUUsage() = default;
};

/// A stopwatch.
class IVekTimer : public IVekObject
{
public:
    /// Starts anew from now; true unless the system has no performance counter.
    virtual bool Start() = 0;
    /// Clears the running flag; the elapsed time goes on growing.
    virtual void Stop() = 0;
    /// True from Start to Stop.
    virtual bool IsRunning() = 0;
    /// The time since Start in seconds; the library must be initialised.
    virtual double GetElapsedSeconds() = 0;
    /// The same in counts of the performance counter.
    virtual long long GetElapsedTicks() = 0;
    /// That many events a second since Start; the count itself when no time has passed, 0 for no events.
    virtual double GetRate(int count) = 0;

protected:
    ~IVekTimer() = default;
};

/// The library's randomizer; IVekKernel::CreateRandomizer makes one.
class VEK_API CVekRandomizer : public CVekRefCounted<IVekRandomizer>
{
public:
    CVekRandomizer();
    ~CVekRandomizer() override;

    float GetRandomValue(float low, float high) override;
};

/// The library's CPU-usage meter; IVekKernel::CreateCPUUsage makes one.
class VEK_API CVekCPUUsage : public CVekRefCounted<IVekCPUUsage>
{
public:
    CVekCPUUsage();
    ~CVekCPUUsage() override;

    void Update(double now) override;
    double GetUsage() override;

private:
    void Measure();

    double m_lastUpdate = 0.0;
    double m_usage = 0.0;
    unsigned long long m_systemIdle = 0;
    unsigned long long m_systemKernel = 0;
    unsigned long long m_systemUser = 0;
    unsigned long long m_processKernel = 0;
    unsigned long long m_processUser = 0;
};

/// The library's stopwatch; IVekKernel::CreateTimer makes one.
class VEK_API CVekTimer : public CVekRefCounted<IVekTimer>
{
public:
    CVekTimer();
    ~CVekTimer() override;

    bool Start() override;
    void Stop() override;
    bool IsRunning() override;
    double GetElapsedSeconds() override;
    long long GetElapsedTicks() override;
    double GetRate(int count) override;

private:
    bool m_running = false;
    long long m_start = 0;
};

VEK_HEADER_END

#endif
