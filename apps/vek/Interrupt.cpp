#include "Interrupt.h"

#include "Platform.h"

#include <atomic>

namespace tool
{

namespace
{

std::atomic<bool> g_pressed{false};

BOOL WINAPI OnControl(DWORD event)
{
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        return FALSE;
    // Whoever presses it twice does not want to wait.
    return g_pressed.exchange(true) ? FALSE : TRUE;
}

} // namespace

Interrupt::Interrupt()
{
    g_pressed = false;
    SetConsoleCtrlHandler(OnControl, TRUE);
}

Interrupt::~Interrupt()
{
    SetConsoleCtrlHandler(OnControl, FALSE);
}

bool Interrupt::Pressed()
{
    return g_pressed;
}

} // namespace tool
