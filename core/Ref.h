#pragma once

namespace vek
{

/// Holds one reference to a counted object and gives it back at the end of the scope.
template <class T>
class Ref
{
public:
    Ref() noexcept = default;
    /// Takes over a reference that the caller owns, such as a creator's.
    static Ref Adopt(T * object) noexcept { return Ref(object); }
    /// Adds a reference of its own.
    static Ref Share(T * object) noexcept
    {
        if (object)
            object->AddRef();
        return Ref(object);
    }
    Ref(Ref && other) noexcept : m_object(other.Detach()) {}
    Ref & operator=(Ref && other) noexcept
    {
        Reset(other.Detach());
        return *this;
    }
    Ref(Ref const &) = delete;
    Ref & operator=(Ref const &) = delete;
    ~Ref() { Reset(nullptr); }

    /// Takes over the new reference, then gives the old one back.
    void Reset(T * object) noexcept
    {
        T * const old = m_object;
        m_object = object;
        if (old)
            old->Release();
    }
    /// Hands the reference to the caller.
    T * Detach() noexcept
    {
        T * const object = m_object;
        m_object = nullptr;
        return object;
    }
    T * Get() const noexcept { return m_object; }
    T * operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    explicit Ref(T * object) noexcept : m_object(object) {}

    T * m_object = nullptr;
};

} // namespace vek
