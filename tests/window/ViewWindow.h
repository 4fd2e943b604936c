// vekview in a window of its own on the X server's screen, moved by that server's mouse and keyboard, and seen as the
// screen shows it.
#pragma once

#include "support/Picture.h"

#include <functional>
#include <string>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

class ViewWindow
{
public:
    /// Starts vekview with a scene file and waits for its window.
    explicit ViewWindow(std::wstring const & scene);
    ~ViewWindow();
    ViewWindow(ViewWindow const &) = delete;
    ViewWindow & operator=(ViewWindow const &) = delete;

    bool IsOpen() const { return m_window != nullptr; }
    /// Mouse and keyboard, all of it in one go: xdotool's commands, such as L"mousedown 1", and places in the window's
    /// coordinates as L"@240,200", at least one of them.
    void Act(std::wstring const & commands) const;

    /// What the screen shows inside the window.
    Picture Look() const;
    /// Looks again and again until the condition holds; false after ten seconds.
    bool ShowsSoon(std::function<bool(Picture const &)> const & condition) const;
    bool HasTitleSoon(wchar_t const * part) const;
    /// Asks the window to close; the program's exit code, or -1 when it stays.
    int Close();

private:
    PROCESS_INFORMATION m_process{};
    HWND m_window = nullptr;
};
