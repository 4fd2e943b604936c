#include "base/SpinLock.h"

#include <windows.h>

namespace vek
{

void SpinLock::Wait() noexcept
{
    for (unsigned spins = 0; m_taken.load(std::memory_order_relaxed); ++spins)
    {
        if (spins < 100)
            YieldProcessor();
        else
            Sleep(spins < 200 ? 0 : 1); // a holder of lower priority may need the processor
    }
}

} // namespace vek
