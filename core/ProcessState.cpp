#include "core/ProcessState.h"

namespace vek
{

ProcessState & GetProcessState() noexcept
{
    static ProcessState state;
    return state;
}

namespace
{

// Makes the locks when the library is loaded, before any entry point can run.
[[maybe_unused]] ProcessState & g_madeAtLoad = GetProcessState();

} // namespace

} // namespace vek
