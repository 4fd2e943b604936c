#include "VekThread.h"

#include <windows.h>

namespace
{

constexpr unsigned short WAIT_CURSOR = 32514;

} // namespace

CVekWaitCursor::CVekWaitCursor() : m_waitCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(WAIT_CURSOR)))
{
    m_previousCursor = SetCursor(static_cast<HCURSOR>(m_waitCursor));
}

CVekWaitCursor::~CVekWaitCursor()
{
    SetCursor(static_cast<HCURSOR>(m_previousCursor));
    // Kept: destroyed, although it is a shared cursor of the system, which refuses that.
    DestroyCursor(static_cast<HCURSOR>(m_waitCursor));
}
