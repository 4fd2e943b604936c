#pragma once

#include "VekCore.h"

#include <chrono>

namespace tool
{

/// Draws a progress controller's tasks as a bar on standard error, when that is a console and the work takes longer
/// than half a second. Asks for cancellation once Ctrl-C was pressed.
class ProgressBar final : public CVekRefCounted<IVekProgressController::Callback>
{
public:
    bool OnProgress(double taskProgress, double finishedShare, wchar_t const * taskName, int param) override;

    /// Takes the bar off the console, so that a line can be written; the next progress draws it again.
    void Hide();

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point m_begin = Clock::now();
    Clock::time_point m_drawn = m_begin;
    bool m_visible = false;
};

} // namespace tool
