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

HWND WindowOf(DWORD process)
{
    HWND const window = FindWindowW(L"VekView", nullptr);
    DWORD owner = 0;
    return window && GetWindowThreadProcessId(window, &owner) && owner == process && IsWindowVisible(window) ? window
                                                                                                             : nullptr;
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
    Eventually([this] { return (m_window = WindowOf(m_process.dwProcessId)) != nullptr; });
    if (!m_window)
        return;
    SetWindowPos(m_window, HWND_TOP, 20, 20, 0, 0, SWP_NOSIZE);
    SetForegroundWindow(m_window);
    Eventually([this] { return GetForegroundWindow() == m_window; });
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
    for (std::wstring word; words >> word;)
    {
        POINT place{};
        if (std::swscanf(word.c_str(), L"@%ld,%ld", &place.x, &place.y) == 2)
        {
            ClientToScreen(m_window, &place);
            word = L"mousemove " + std::to_wstring(place.x) + L" " + std::to_wstring(place.y);
        }
        line += L" " + word;
    }
    // Not a Windows program: there is no handle to wait for.
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    CreateProcessW(L"Z:\\usr\\bin\\xdotool", line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                   &process);
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
    BITMAPINFO format{};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = picture.width;
    format.bmiHeader.biHeight = -picture.height;
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    HDC const screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    void * bits = nullptr;
    HBITMAP const bitmap = CreateDIBSection(screen, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ const before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture.width, picture.height, screen, corner.x, corner.y, SRCCOPY);
    GdiFlush();
    auto const * const first = static_cast<std::uint32_t const *>(bits);
    picture.pixels.assign(first, first + picture.width * picture.height);
    for (std::uint32_t & pixel : picture.pixels)
        pixel &= 0x00FFFFFF;
    SelectObject(memory, before);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

std::wstring ViewWindow::Title() const
{
    wchar_t text[300] = L"";
    GetWindowTextW(m_window, text, 300);
    return text;
}

bool ViewWindow::ShowsSoon(std::function<bool(Picture const &)> const & condition) const
{
    return Eventually([&] { return condition(Look()); });
}

bool ViewWindow::HasTitleSoon(std::wstring const & part) const
{
    return Eventually([&] { return Title().find(part) != std::wstring::npos; });
}

int ViewWindow::Close()
{
    PostMessageW(m_window, WM_CLOSE, 0, 0);
    DWORD code = static_cast<DWORD>(-1);
    if (WaitForSingleObject(m_process.hProcess, PATIENCE) == WAIT_OBJECT_0)
        GetExitCodeProcess(m_process.hProcess, &code);
    return static_cast<int>(code);
}
