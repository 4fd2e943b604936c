// vekview in a window of its own on the screen, moved by the system's mouse and keyboard, and seen as the screen shows
// it.
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
    /// The mouse in the window's own coordinates: buttons are MOUSEEVENTF_... of "down" and "up".
    void MoveTo(int x, int y);
    void Button(unsigned int flag);
    void TurnWheel(int steps);
    void PressKey(unsigned short key);
    /// A drag in several movements.
    void Drag(unsigned int down, unsigned int up, POINT from, POINT to);

    /// What the screen shows inside the window.
    Picture Look() const;
    std::wstring Title() const;
    /// Looks again and again until the condition holds; false after ten seconds.
    bool ShowsSoon(std::function<bool(Picture const &)> const & condition) const;
    bool HasTitleSoon(std::wstring const & part) const;
    /// The picture once it no longer changes and is another than that one.
    Picture NewPicture(Picture const & old) const;
    /// Asks the window to close; the program's exit code, or -1 when it stays.
    int Close();

private:
    PROCESS_INFORMATION m_process{};
    HWND m_window = nullptr;
};
