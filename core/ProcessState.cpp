#include "core/ProcessState.h"

namespace vek
{

constinit ProcessState g_process;

namespace
{

struct Unload
{
    ~Unload()
    {
        g_process.threadCommandLock.Close();
        g_process.catcherLock.Close();
        g_process.eventMapLock.Close();
    }
} const g_unload;

} // namespace

} // namespace vek
