#include "base/SpinLock.h"

#include "base/ProcessEnd.h"

#include <windows.h>

namespace vek
{

void SpinLock::Wait() noexcept
{
    for (unsigned spins = 0; m_taken.load(std::memory_order_relaxed); ++spins)
    {
        if (spins < 100)
            YieldProcessor();
        else if (spins < 200)
            Sleep(0);
        else if (IsProcessEnding())
            unlock(); // the holder is gone
        else
            Sleep(1); // a holder of lower priority may need the processor
    }
}

} // namespace vek
