#pragma once

#include <atomic>

namespace vek
{

/// Finds a function of a system DLL at its first use, so that a program which never uses it does not load the DLL.
class SystemFunctionAddress
{
public:
    constexpr SystemFunctionAddress(wchar_t const * dll, char const * name) noexcept : m_dll(dll), m_name(name) {}

protected:
    void * Address() noexcept
    {
        void * const address = m_address.load(std::memory_order_acquire);
        return address ? address : Find();
    }

private:
    void * Find() noexcept;

    wchar_t const * m_dll;
    char const * m_name;
    std::atomic<void *> m_address{nullptr};
};

/// The same with the function's type, as decltype(Function) gives it. Meant for static objects.
template <class Function>
class SystemFunction : public SystemFunctionAddress
{
public:
    using SystemFunctionAddress::SystemFunctionAddress;

    /// Null when this system lacks the DLL or the function.
    Function * Get() noexcept { return reinterpret_cast<Function *>(Address()); }
};

} // namespace vek
