#include "base/LiveObjects.h"

#include "VekCore.h"

#include <windows.h>

namespace vek
{
namespace
{

constexpr auto CLASSES = static_cast<unsigned int>(LiveClass::COUNT);

constexpr wchar_t const * NAMES[] = {
    L"CVekCPUUsage",       L"CVekCameraUIController",
    L"CVekEventHandler",   L"CVekEventHandlerContainer",
    L"CVekFileIOStream",   L"CVekLexer",
    L"CVekMemoryIOStream", L"CVekProgressController",
    L"CVekRandomizer",     L"CVekResourceFilePacket",
    L"CVekThread",         L"CVekThreadCommand",
    L"CVekTimer",          L"CVekTokenizer",
    L"CVekXMLDocument",    L"CVekXMLElement",
    L"CVekXMLParser",      L"CVekXMLWriter",
};
static_assert(sizeof NAMES / sizeof *NAMES == CLASSES);

constinit std::atomic<int> g_live[CLASSES] = {};

// Read at once, so that the objects of a program that doesn't know of it are counted from the first one on.
[[maybe_unused]] bool const g_isAskedFor = []
{
    wchar_t value[2];
    if (GetEnvironmentVariableW(L"VEKLIB_LEAKS", value, 2) == 1 && value[0] == L'1')
        g_countsObjects.store(true, std::memory_order_relaxed);
    return true;
}();

} // namespace

void CountObject(LiveClass which, int change) noexcept
{
    g_live[static_cast<unsigned int>(which)].fetch_add(change, std::memory_order_relaxed);
}

int CountLive(LiveClass which) noexcept
{
    return g_live[static_cast<unsigned int>(which)].load(std::memory_order_relaxed);
}

wchar_t const * NameOf(LiveClass which) noexcept
{
    return NAMES[static_cast<unsigned int>(which)];
}

} // namespace vek

void VekReportLiveObjects(bool on)
{
    vek::g_countsObjects.store(on, std::memory_order_relaxed);
}
