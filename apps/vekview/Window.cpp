#include "Window.h"

#include "Console.h"
#include "Renderer.h"

#include <windowsx.h>

#include <new>
#include <utility>

namespace tool
{

namespace
{

constexpr wchar_t const * CLASS_NAME = L"VekView";

struct DragButton
{
    UINT down, up;
    VEK_CAMERAMODE mode;
};
constexpr DragButton DRAG_BUTTONS[] = {{WM_LBUTTONDOWN, WM_LBUTTONUP, VEK_CAMERAMODE_ORBIT},
                                       {WM_MBUTTONDOWN, WM_MBUTTONUP, VEK_CAMERAMODE_PAN},
                                       {WM_RBUTTONDOWN, WM_RBUTTONUP, VEK_CAMERAMODE_ROLL}};

} // namespace

Window::Window(Scene const & scene, std::wstring title) : m_scene(scene), m_title(std::move(title)), m_view(scene) {}

Window::~Window()
{
    if (m_window)
        DestroyWindow(m_window);
}

bool Window::Run(int width, int height)
{
    if (!Open(width, height))
        return false;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (m_outOfMemory)
        throw std::bad_alloc();
    return true;
}

bool Window::Open(int width, int height)
{
    WNDCLASSEXW type{};
    type.cbSize = sizeof type;
    type.lpfnWndProc = Receive;
    type.hInstance = GetModuleHandleW(nullptr);
    type.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    type.lpszClassName = CLASS_NAME;
    if (!RegisterClassExW(&type))
        return false;
    RECT frame{0, 0, width, height};
    AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
    // The first message of a window comes before CreateWindow returns.
    m_window =
        CreateWindowExW(0, CLASS_NAME, m_title.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                        frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr, type.hInstance, this);
    if (!m_window)
        return false;
    ShowTitle();
    ShowWindow(m_window, SW_SHOWDEFAULT);
    return true;
}

LRESULT CALLBACK Window::Receive(HWND window, UINT message, WPARAM wide, LPARAM narrow)
{
    if (message == WM_NCCREATE)
    {
        auto * const self = static_cast<Window *>(reinterpret_cast<CREATESTRUCTW *>(narrow)->lpCreateParams);
        self->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto * const self = reinterpret_cast<Window *>(GetWindowLongPtrW(window, GWLP_USERDATA));
    // The system's code must not see an exception.
    try
    {
        if (self && self->Handle(message, wide, narrow))
            return message == WM_ERASEBKGND ? 1 : 0;
    }
    catch (std::bad_alloc const &)
    {
        self->m_outOfMemory = true;
        ValidateRect(window, nullptr);
        PostQuitMessage(0);
    }
    return DefWindowProcW(window, message, wide, narrow);
}

bool Window::Handle(UINT message, WPARAM wide, LPARAM narrow)
{
    int const x = GET_X_LPARAM(narrow), y = GET_Y_LPARAM(narrow);
    switch (message)
    {
    case WM_ERASEBKGND:
        return true; // the picture covers all of it
    case WM_PAINT:
        Paint();
        return true;
    case WM_SIZE:
        Resize(LOWORD(narrow), HIWORD(narrow));
        return true;
    case WM_MOUSEMOVE:
        MovePointer(x, y);
        return true;
    case WM_MOUSELEAVE:
        m_pointer.reset();
        ShowHighlight();
        return true;
    case WM_MOUSEWHEEL:
        TurnWheel(GET_WHEEL_DELTA_WPARAM(wide), x, y);
        return true;
    case WM_KEYDOWN:
        PressKey(wide);
        return true;
    case WM_CAPTURECHANGED:
        m_view.EndDrag();
        m_dragEnd = 0;
        ShowHighlight();
        return true;
    case WM_DESTROY:
        m_window = nullptr;
        PostQuitMessage(0);
        return true;
    default:
        return HandleButton(message, x, y);
    }
}

bool Window::HandleButton(UINT message, int x, int y)
{
    for (DragButton const & button : DRAG_BUTTONS)
    {
        if (message == button.down && m_dragEnd == 0)
        {
            m_view.BeginDrag(button.mode, x, y, PickAt(x, y).Hit());
            m_dragEnd = button.up;
            SetCapture(m_window);
            return true;
        }
        if (message == button.up && m_dragEnd == button.up)
        {
            if (m_view.IsDragging()) // a key may have ended it
                MovePointer(x, y);
            ReleaseCapture(); // WM_CAPTURECHANGED ends the drag
            return true;
        }
    }
    return false;
}

void Window::PressKey(WPARAM key)
{
    switch (key)
    {
    case 'F':
        m_view.Fit();
        break;
    case 'P':
        m_view.SetProjection(VEK_PROJECTIONMODE_PERSPECTIVE);
        break;
    case 'O':
        m_view.SetProjection(VEK_PROJECTIONMODE_ORTHOGRAPHIC);
        break;
    case VK_ESCAPE:
        m_view.CancelDrag();
        break;
    default:
        return;
    }
    Changed();
}

void Window::TurnWheel(int delta, int screenX, int screenY)
{
    POINT place{screenX, screenY};
    ScreenToClient(m_window, &place);
    m_view.Wheel(static_cast<double>(delta) / WHEEL_DELTA, place.x, place.y, PickAt(place.x, place.y).Hit());
    Changed();
}

void Window::MovePointer(int x, int y)
{
    if (!m_pointer)
    {
        TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, m_window, 0};
        TrackMouseEvent(&leaving);
    }
    m_pointer = POINT{x, y};
    if (m_view.IsDragging())
    {
        m_view.Drag(x, y);
        Changed();
    }
    else
    {
        ShowHighlight();
    }
}

Pick Window::PickAt(int x, int y) const
{
    SceneView::Ray ray;
    return m_view.RayAt(x, y, ray) ? PickTriangle(m_scene, ray) : Pick();
}

void Window::Resize(int width, int height)
{
    if (width <= 0 || height <= 0)
        return;
    m_canvas.Resize(width, height);
    m_view.Resize(width, height);
    // Only now the proportions are known.
    if (!m_fitted && !m_scene.camera)
        m_view.Fit();
    m_fitted = true;
    Changed();
}

/// Shows the view, which is another one now.
void Window::Changed()
{
    UpdateHighlight();
    Redraw();
}

void Window::ShowHighlight()
{
    if (UpdateHighlight())
        Redraw();
}

/// Looks what is under the pointer now, but during a drag. True when that is something else than before.
bool Window::UpdateHighlight()
{
    if (m_view.IsDragging())
        return false;
    // A button that is down keeps the pointer's messages coming from outside of the window.
    bool const isInside = m_pointer && m_pointer->x >= 0 && m_pointer->x < m_view.Width() && m_pointer->y >= 0 &&
                          m_pointer->y < m_view.Height();
    int const triangle = isInside ? PickAt(m_pointer->x, m_pointer->y).triangle : -1;
    return std::exchange(m_highlighted, triangle) != triangle;
}

void Window::Redraw()
{
    ShowTitle();
    InvalidateRect(m_window, nullptr, FALSE);
}

void Window::ShowTitle()
{
    bool const perspective = m_view.GetProjection() == VEK_PROJECTIONMODE_PERSPECTIVE;
    std::wstring title = m_title + (perspective ? L" - perspective" : L" - orthographic");
    if (m_highlighted >= 0)
        title += L" - " + Printable(m_scene.triangles[static_cast<std::size_t>(m_highlighted)].name, 100);
    wchar_t shown[600];
    GetWindowTextW(m_window, shown, 600);
    if (title != shown)
        SetWindowTextW(m_window, title.c_str());
}

void Window::Paint()
{
    PAINTSTRUCT paint;
    HDC const context = BeginPaint(m_window, &paint);
    if (m_canvas.Width() > 0)
    {
        Renderer(m_view, m_canvas).Draw(m_scene, m_highlighted);
        BITMAPINFO format{};
        format.bmiHeader.biSize = sizeof format.bmiHeader;
        format.bmiHeader.biWidth = m_canvas.Width();
        format.bmiHeader.biHeight = -m_canvas.Height(); // from the top
        format.bmiHeader.biPlanes = 1;
        format.bmiHeader.biBitCount = 32;
        SetDIBitsToDevice(context, 0, 0, static_cast<DWORD>(m_canvas.Width()), static_cast<DWORD>(m_canvas.Height()), 0,
                          0, 0, static_cast<UINT>(m_canvas.Height()), m_canvas.Pixels(), &format, DIB_RGB_COLORS);
    }
    EndPaint(m_window, &paint);
}

} // namespace tool
