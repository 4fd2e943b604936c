#include "VekThread.h"

#include "base/SystemFunction.h"

#include <windows.h>

namespace
{

constexpr unsigned short WAIT_CURSOR = 32514;

constinit vek::SystemFunction<decltype(LoadCursorW)> g_loadCursor{L"user32.dll", "LoadCursorW"};
constinit vek::SystemFunction<decltype(SetCursor)> g_setCursor{L"user32.dll", "SetCursor"};
constinit vek::SystemFunction<decltype(DestroyCursor)> g_destroyCursor{L"user32.dll", "DestroyCursor"};

void * Show(void * cursor)
{
    auto * const set = g_setCursor.Get();
    return set ? set(static_cast<HCURSOR>(cursor)) : nullptr;
}

void * LoadWaitCursor()
{
    auto * const load = g_loadCursor.Get();
    return load ? load(nullptr, MAKEINTRESOURCEW(WAIT_CURSOR)) : nullptr;
}

} // namespace

CVekWaitCursor::CVekWaitCursor() : m_waitCursor(LoadWaitCursor()), m_previousCursor(Show(m_waitCursor)) {}

CVekWaitCursor::~CVekWaitCursor()
{
    Show(m_previousCursor);
    // Kept: destroyed, although it is a shared cursor of the system, which refuses that.
    if (auto * const destroy = g_destroyCursor.Get())
        destroy(static_cast<HCURSOR>(m_waitCursor));
}
