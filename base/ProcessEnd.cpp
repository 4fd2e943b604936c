#include "base/ProcessEnd.h"

#include "base/SystemFunction.h"

#include <windows.h>

namespace vek
{
namespace
{

constinit SystemFunction<BOOLEAN NTAPI()> g_isShutDown{L"ntdll.dll", "RtlDllShutdownInProgress"};

} // namespace

bool IsProcessEnding() noexcept
{
    auto * const isShutDown = g_isShutDown.Get();
    return isShutDown && isShutDown();
}

} // namespace vek
