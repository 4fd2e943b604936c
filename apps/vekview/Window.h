#pragma once

#include "Canvas.h"
#include "Picker.h"
#include "Platform.h"

#include <optional>
#include <string>

namespace tool
{

/// The window that shows a scene and lets the user move the camera.
class Window
{
public:
    /// The scene has to stay; the title is what it is called.
    Window(Scene const & scene, std::wstring title);
    ~Window();
    Window(Window const &) = delete;
    Window & operator=(Window const &) = delete;

    /// Shows the window until the user closes it; false when no window can be had.
    bool Run(int width, int height);

private:
    static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wide, LPARAM narrow);
    bool Open(int width, int height);
    /// True when the message is dealt with.
    bool Handle(UINT message, WPARAM wide, LPARAM narrow);
    bool HandleButton(UINT message, int x, int y);
    void PressKey(WPARAM key);
    void TurnWheel(int delta, int screenX, int screenY);
    void MovePointer(int x, int y);
    void Resize(int width, int height);
    void Paint();
    void Changed();
    void ShowHighlight();
    bool UpdateHighlight();
    void Redraw();
    void ShowTitle();
    Pick PickAt(int x, int y) const;

    Scene const & m_scene;
    std::wstring m_title;
    SceneView m_view;
    Canvas m_canvas;
    HWND m_window = nullptr;
    UINT m_dragEnd = 0;             // the message that ends the drag, 0 without a button down
    std::optional<POINT> m_pointer; // where it is in the window
    int m_highlighted = -1;
    bool m_outOfMemory = false;
    bool m_fitted = false;
};

} // namespace tool
