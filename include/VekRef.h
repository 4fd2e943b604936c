/// @file
/// The library's entry points, its start and stop as a scope, and the owner of one reference to an object of it.
///
/// @code
/// CVekRef<IVekTimer> const timer{getVekLibKernel()->CreateTimer()}; // takes the creator's reference over
/// CVekRef<IVekTimer> const second = timer;                           // adds one
/// timer->Start();
/// VekLogOutput(0, L"%g seconds", second->GetElapsedSeconds());
/// @endcode
#ifndef VEK_REF_H
#define VEK_REF_H

#include "VekExport.h"

/// Starts the library; calls are counted, and only the first does the work. False when that failed; the call counts
/// even so, and VekLibDeinit takes it back.
VEK_ENTRY bool VekLibInit();

/// Takes one VekLibInit back; the last stops the library, on the thread that started it. Nothing without a VekLibInit.
VEK_ENTRY void VekLibDeinit();

/// The kernel, made on first use; always the same object. It belongs to the library: no reference is added.
VEK_ENTRY IVekKernel * getVekLibKernel();

/// The library for the length of a scope: VekLibInit at its beginning, VekLibDeinit at its end, also after a start that
/// failed. Scopes may be nested. What is made with the library is to be released before: declare the scope first.
///
///     CVekLibrary const library;
///     if (!library)
///         return 1;
///     CVekRef<IVekTimer> const timer{library->CreateTimer()};
class CVekLibrary
{
public:
    CVekLibrary() noexcept : m_started(VekLibInit()) {}
    CVekLibrary(CVekLibrary const &) = delete;
    CVekLibrary & operator=(CVekLibrary const &) = delete;
    ~CVekLibrary() { VekLibDeinit(); }

    /// Whether the start succeeded, or the library was running already.
    bool IsStarted() const noexcept { return m_started; }
    explicit operator bool() const noexcept { return m_started; }
    /// The kernel, never null, which stays the library's.
    IVekKernel * GetKernel() const noexcept { return getVekLibKernel(); }
    IVekKernel * operator->() const noexcept { return getVekLibKernel(); }

private:
    bool m_started;
};

/// Owns one reference to a counted object and gives it back with Release at the end of the scope, or owns nothing
/// (null). T is any class with AddRef and Release: the library's interfaces, and hosts' own classes.
///
///     CVekRef<IVekXMLDocument> const document{manager->CreateXMLDocument()};
///
/// A copy adds a reference of its own, a move hands it on. Whenever the reference is replaced, the new one is taken
/// over first and the old one released last, so that a release that looks back finds a sound owner.
template <class T>
class CVekRef
{
public:
    /// Null.
    constexpr CVekRef() noexcept = default;
    constexpr CVekRef(decltype(nullptr)) noexcept {}
    /// Takes over a reference that the caller owns, such as a creator's; null is allowed.
    explicit constexpr CVekRef(T * object) noexcept : m_object(object) {}
    /// Adds a reference to the other's object.
    CVekRef(CVekRef const & other) noexcept : m_object(AddTo(other.m_object)) {}
    template <class Other>
    CVekRef(CVekRef<Other> const & other) noexcept : m_object(AddTo(other.Get()))
    {
    }
    /// Takes the other's reference over and leaves it null.
    CVekRef(CVekRef && other) noexcept : m_object(other.Detach()) {}
    template <class Other>
    CVekRef(CVekRef<Other> && other) noexcept : m_object(other.Detach())
    {
    }
    ~CVekRef() { Drop(m_object); }
    /// Adds a reference to the other's object, then gives back the old one.
    CVekRef & operator=(CVekRef const & other) noexcept
    {
        Reset(AddTo(other.m_object));
        return *this;
    }
    /// Takes the other's reference over and leaves it null, then gives back the old one.
    CVekRef & operator=(CVekRef && other) noexcept
    {
        Reset(other.Detach());
        return *this;
    }

    /// An owner that takes over the caller's reference; the same as the constructor.
    static CVekRef Adopt(T * object) noexcept { return CVekRef(object); }
    /// An owner with a reference of its own to an object that somebody else owns, such as what a Get operation returns.
    static CVekRef Share(T * object) noexcept { return CVekRef(AddTo(object)); }

    /// Takes over the caller's reference, then gives the old one back; without an argument becomes null.
    void Reset(T * object = nullptr) noexcept
    {
        T * const old = m_object;
        m_object = object;
        Drop(old);
    }
    /// Hands the reference to the caller and becomes null.
    T * Detach() noexcept
    {
        T * const object = m_object;
        m_object = nullptr;
        return object;
    }
    /// Changes the references of the two; nothing is counted.
    void Swap(CVekRef & other) noexcept
    {
        T * const object = m_object;
        m_object = other.m_object;
        other.m_object = object;
    }
    friend void swap(CVekRef & left, CVekRef & right) noexcept { left.Swap(right); }

    /// The object, which stays this owner's; null when there is none.
    T * Get() const noexcept { return m_object; }
    T * operator->() const noexcept { return m_object; }
    T & operator*() const noexcept { return *m_object; }
    /// Whether there is an object.
    explicit operator bool() const noexcept { return m_object != nullptr; }

    /// Whether both mean the same object.
    friend bool operator==(CVekRef const & left, CVekRef const & right) noexcept
    {
        return left.m_object == right.m_object;
    }
    friend bool operator!=(CVekRef const & left, CVekRef const & right) noexcept
    {
        return left.m_object != right.m_object;
    }
    friend bool operator==(CVekRef const & left, T const * right) noexcept { return left.m_object == right; }
    friend bool operator!=(CVekRef const & left, T const * right) noexcept { return left.m_object != right; }
    friend bool operator==(T const * left, CVekRef const & right) noexcept { return left == right.m_object; }
    friend bool operator!=(T const * left, CVekRef const & right) noexcept { return left != right.m_object; }
    friend bool operator==(CVekRef const & left, decltype(nullptr)) noexcept { return !left.m_object; }
    friend bool operator!=(CVekRef const & left, decltype(nullptr)) noexcept { return left.m_object != nullptr; }
    friend bool operator==(decltype(nullptr), CVekRef const & right) noexcept { return !right.m_object; }
    friend bool operator!=(decltype(nullptr), CVekRef const & right) noexcept { return right.m_object != nullptr; }

private:
    template <class Object>
    static Object * AddTo(Object * object) noexcept
    {
        if (object)
            object->AddRef();
        return object;
    }
    static void Drop(T * object) noexcept
    {
        if (object)
            object->Release();
    }

    T * m_object = nullptr;
};

#endif
