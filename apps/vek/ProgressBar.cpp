#include "ProgressBar.h"

#include "Console.h"
#include "Interrupt.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr std::chrono::milliseconds FIRST_DRAWN{500};
constexpr std::chrono::milliseconds DRAWN_EVERY{100};
constexpr int BAR_WIDTH = 30;
constexpr std::size_t NAME_WIDTH = 30;
constexpr std::size_t LINE_WIDTH = 78;

} // namespace

bool ProgressBar::OnProgress(double taskProgress, double, wchar_t const * taskName, int)
{
    Clock::time_point const now = Clock::now();
    bool const isDue = now - m_begin >= FIRST_DRAWN && (!m_visible || now - m_drawn >= DRAWN_EVERY);
    if (isDue && Console::Err().IsConsole())
    {
        int const filled = std::clamp(static_cast<int>(taskProgress * BAR_WIDTH / 100.0), 0, BAR_WIDTH);
        double const seconds = std::chrono::duration<double>(now - m_begin).count();
        std::wstring line = Format(L"%3d%% [", static_cast<int>(taskProgress)) +
                            std::wstring(static_cast<std::size_t>(filled), L'#') +
                            std::wstring(static_cast<std::size_t>(BAR_WIDTH - filled), L'.') + L"] " +
                            Printable(taskName, NAME_WIDTH) + Format(L" %.1f s", seconds);
        line.resize(LINE_WIDTH, L' ');
        Console::Err().Write(L"\r" + line + L"\r");
        m_drawn = now;
        m_visible = true;
    }
    return !Interrupt::Pressed();
}

void ProgressBar::Hide()
{
    if (m_visible)
        Console::Err().Write(L"\r" + std::wstring(LINE_WIDTH, L' ') + L"\r");
    m_visible = false;
}

} // namespace tool
