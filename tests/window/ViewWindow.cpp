#include "ViewWindow.h"

#include <cwchar>
#include <sstream>

namespace
{

constexpr DWORD PATIENCE = 10000; // milliseconds
constexpr DWORD PAUSE = 20;

bool Eventually(std::function<bool()> const & condition)
{
    for (DWORD const begin = GetTickCount(); GetTickCount() - begin < PATIENCE; Sleep(PAUSE))
        if (condition())
            return true;
    return condition();
}

std::wstring ProgramPath()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring const whole = path;
    return whole.substr(0, whole.find_last_of(L"\\/") + 1) + L"vekview.exe";
}

} // namespace

ViewWindow::ViewWindow(std::wstring const & scene)
{
    std::wstring line = L"\"" + ProgramPath() + L"\" \"" + scene + L"\" --size 480x400";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    if (!CreateProcessW(ProgramPath().c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &m_process))
        return;
    // There is no other on this screen.
    Eventually([this] { return (m_window = FindWindowW(L"VekView", nullptr)) && IsWindowVisible(m_window); });
    SetWindowPos(m_window, HWND_TOP, 20, 20, 0, 0, SWP_NOSIZE);
    SetForegroundWindow(m_window);
}

ViewWindow::~ViewWindow()
{
    if (!m_process.hProcess)
        return;
    TerminateProcess(m_process.hProcess, 1);
    WaitForSingleObject(m_process.hProcess, PATIENCE);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

void ViewWindow::Act(std::wstring const & commands) const
{
    std::wstring line = L"xdotool";
    std::wistringstream words(commands);
    POINT place{}, pointer{};
    for (std::wstring word; words >> word;)
    {
        if (std::swscanf(word.c_str(), L"@%ld,%ld", &place.x, &place.y) == 2)
        {
            ClientToScreen(m_window, &place);
            word = L"mousemove " + std::to_wstring(place.x) + L" " + std::to_wstring(place.y);
        }
        line += L" " + word;
    }
    // Not a Windows program: there is no handle to wait for, but the next one must not overtake it.
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    CreateProcessW(L"Z:\\usr\\bin\\xdotool", line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                   &process);
    Eventually([&] { return GetCursorPos(&pointer) && pointer.x == place.x && pointer.y == place.y; });
}

Picture ViewWindow::Look() const
{
    RECT inside{};
    POINT corner{0, 0};
    GetClientRect(m_window, &inside);
    ClientToScreen(m_window, &corner);
    Picture picture;
    picture.width = inside.right;
    picture.height = inside.bottom;
    BITMAPINFO format{{sizeof(BITMAPINFOHEADER), picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    HDC const screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    void * bits = nullptr;
    HBITMAP const bitmap = CreateDIBSection(screen, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture.width, picture.height, screen, corner.x, corner.y, SRCCOPY);
    GdiFlush();
    auto const * const first = static_cast<std::uint32_t const *>(bits);
    picture.pixels.assign(first, first + picture.width * picture.height);
    for (std::uint32_t & pixel : picture.pixels)
        pixel &= 0x00FFFFFF;
    DeleteDC(memory);
    DeleteObject(bitmap);
    ReleaseDC(nullptr, screen);
    return picture;
}

bool ViewWindow::ShowsSoon(std::function<bool(Picture const &)> const & condition) const
{
    return Eventually([&] { return condition(Look()); });
}

bool ViewWindow::HasTitleSoon(wchar_t const * part) const
{
    wchar_t text[300] = L"";
    return Eventually([&] { return GetWindowTextW(m_window, text, 300) && std::wcsstr(text, part); });
}

int ViewWindow::Close()
{
    PostMessageW(m_window, WM_CLOSE, 0, 0);
    DWORD code = static_cast<DWORD>(-1);
    if (WaitForSingleObject(m_process.hProcess, PATIENCE) == WAIT_OBJECT_0)
        GetExitCodeProcess(m_process.hProcess, &code);
    return static_cast<int>(code);
}
