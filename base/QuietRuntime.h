#pragma once

#if defined(_MSC_VER)
#include <stdint.h>
#include <stdlib.h>
#endif

namespace vek
{

/// While one lives, the calling thread's runtime gives its failure value for arguments that it takes for a fault of the
/// program, such as a format that ends in "%". Microsoft's newer runtimes end the process otherwise.
class QuietRuntime
{
public:
    QuietRuntime(QuietRuntime const &) = delete;
    QuietRuntime & operator=(QuietRuntime const &) = delete;

#if defined(_MSC_VER)
    QuietRuntime() noexcept : m_previous(_set_thread_local_invalid_parameter_handler(Ignore)) {}
    ~QuietRuntime()
    {
        _set_thread_local_invalid_parameter_handler(m_previous);
    }

private:
    static void __cdecl Ignore(wchar_t const *, wchar_t const *, wchar_t const *, unsigned int, uintptr_t) {}

    _invalid_parameter_handler m_previous;
#else
    QuietRuntime() noexcept {}
#endif
};

} // namespace vek
