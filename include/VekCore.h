/// @file
/// The base of every reference-counted object, the pointer array, log output and error reporting.
#ifndef VEK_CORE_H
#define VEK_CORE_H

#include "VekExport.h"

#include <stddef.h>

#if defined(_MSC_VER) && !defined(__clang__)
extern "C" long _InterlockedIncrement(long volatile *);
extern "C" long _InterlockedDecrement(long volatile *);
#pragma intrinsic(_InterlockedIncrement, _InterlockedDecrement)
#endif

namespace std
{
struct nothrow_t;
}

/// Adds 1 to the count as one indivisible step; returns the new count.
inline unsigned int VekInterlockedIncrement(unsigned int & count) VEK_NOEXCEPT
{
#if defined(_MSC_VER) && !defined(__clang__)
    return static_cast<unsigned int>(_InterlockedIncrement(reinterpret_cast<long volatile *>(&count)));
#else
    return __atomic_add_fetch(&count, 1U, __ATOMIC_SEQ_CST);
#endif
}

/// Subtracts 1 from the count as one indivisible step; returns the new count.
inline unsigned int VekInterlockedDecrement(unsigned int & count) VEK_NOEXCEPT
{
#if defined(_MSC_VER) && !defined(__clang__)
    return static_cast<unsigned int>(_InterlockedDecrement(reinterpret_cast<long volatile *>(&count)));
#else
    return __atomic_sub_fetch(&count, 1U, __ATOMIC_SEQ_CST);
#endif
}

/// The number of holders of an object, 1 at birth. A copy carries the count of its source as it stands (kept: a copied
/// object is made by hosts that set the count themselves).
struct VekObjectCommonData
{
    unsigned int refCount = 1;
};

/// The base of every service object. An object is born with count 1, which its creator owns and gives back with
/// Release; the last Release destroys the object. Never delete one directly.
class IVekObject
{
public:
    /// Adds a holder; returns the new count. Safe from any thread.
    virtual unsigned int AddRef() = 0;
    /// Gives one reference back and destroys the object with the last; returns the new count. Safe from any thread.
    virtual unsigned int Release() = 0;
    /// The current count.
    virtual unsigned int GetRefCount() const = 0;
};

/// Counts references for an interface: derive from CVekRefCounted<IVekSomething> and write only the interface's own
/// operations. The virtual destructor follows the interface's operations in the table.
template <class Interface>
class CVekRefCounted : public Interface
{
public:
    CVekRefCounted() = default;
    CVekRefCounted(CVekRefCounted const &) = default;
    CVekRefCounted & operator=(CVekRefCounted const &) = default;

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
    static void * operator new(size_t size) VEK_NOEXCEPT;
    static void * operator new(size_t size, std::nothrow_t const &) VEK_NOEXCEPT;
    static void * operator new(size_t, void * place) VEK_NOEXCEPT { return place; }
    static void operator delete(void * block, size_t size) VEK_NOEXCEPT;
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

    int GetCount() const VEK_NOEXCEPT { return m_count; }
    int GetCapacity() const VEK_NOEXCEPT { return m_capacity; }
    int GetGrowthStep() const VEK_NOEXCEPT { return m_growthStep; }
    /// A step below 1 counts as 1.
    void SetGrowthStep(int step) VEK_NOEXCEPT { m_growthStep = step; }

    /// Makes room for that many pointers in all; false, with the array unchanged, when it can't grow.
    bool Reserve(int capacity) VEK_NOEXCEPT;
    /// Appends; false, with the array unchanged, when it can't grow.
    bool Append(void * pointer) VEK_NOEXCEPT
    {
        if (m_count == m_capacity && !Grow())
            return false;
        m_storage[m_count++] = pointer;
        return true;
    }
    /// Inserts before the given index (0 to count; anything else is refused); false when refused or out of memory.
    bool Insert(int index, void * pointer) VEK_NOEXCEPT;
    /// Removes the slot; an index outside the array does nothing.
    void RemoveAt(int index) VEK_NOEXCEPT;
    /// Frees the storage; count and capacity become 0. The growth step stays.
    void Free() VEK_NOEXCEPT;
    /// Exchanges everything with the other array.
    void Swap(CVekPointerArrayBase & other) VEK_NOEXCEPT;

protected:
    bool Grow() VEK_NOEXCEPT;

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
    T * operator[](int index) const VEK_NOEXCEPT { return static_cast<T *>(m_storage[index]); }
    /// The pointer at an index, or null for one outside the array.
    T * At(int index) const VEK_NOEXCEPT { return Has(index) ? (*this)[index] : nullptr; }
    bool Has(int index) const VEK_NOEXCEPT { return index >= 0 && index < m_count; }
    /// Removes the last pointer, which must exist, and returns it.
    T * TakeLast() VEK_NOEXCEPT { return static_cast<T *>(m_storage[--m_count]); }
    bool Append(T * pointer) VEK_NOEXCEPT { return CVekPointerArrayBase::Append(pointer); }
    bool Insert(int index, T * pointer) VEK_NOEXCEPT { return CVekPointerArrayBase::Insert(index, pointer); }
};

/// Receives the library's messages. Hosts implement it and register it with IVekKernel::AddCatchLogOutput.
class IVekCatchLogOutput : public IVekObject
{
public:
    /// Called for each message that passes the debug output level, one at a time in the whole process. The text ends in
    /// a newline and is valid only during the call. It must not add or remove catchers.
    virtual void OnLogOutput(int level, wchar_t const * text) = 0;
};

/// Formats a message (wide printf rules: "%s" is wide text), appends a newline and sends it to the debugger and to
/// every registered catcher, in the order of registration. Messages above the debug output level cost nothing. A text
/// longer than 4,094 characters is cut there.
VEK_API void VekLogOutput(int level, wchar_t const * format, ...);

/// Sends the system's text for the calling thread's last error to the debugger; nothing when there is no text.
VEK_API void VekWindowsError();

/// Sets the process-wide debug output level for a scope and puts the earlier one back at its end.
class VEK_API CVekSetDebugOutputLevel
{
public:
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
    CVekException(CVekException const &);
    CVekException & operator=(CVekException const &);
    virtual ~CVekException();
    /// Tells the user; does nothing here.
    virtual void ReportError();
};

#endif
