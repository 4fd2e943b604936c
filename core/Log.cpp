#include "VekCore.h"

#include "base/Compiler.h"
#include "base/QuietRuntime.h"
#include "core/LogDispatch.h"
#include "core/ProcessState.h"

#include <windows.h>

#include <stdarg.h>
#include <stdio.h>
#include <wchar.h>

namespace
{

constexpr size_t BUFFER_SIZE = 4096;
constexpr size_t LONGEST_TEXT = BUFFER_SIZE - 2; // a newline and the terminator follow

// Formats into the buffer and appends the newline. A longer text is cut; one that the runtime can't format is empty.
void FormatLine(wchar_t (&buffer)[BUFFER_SIZE], wchar_t const * format, va_list arguments)
{
    vek::QuietRuntime const quiet;
    va_list again;
    va_copy(again, arguments);
    int const length = format ? _vsnwprintf(buffer, LONGEST_TEXT, format, arguments) : 0;
    buffer[LONGEST_TEXT] = L'\0';
    if (!format || (length < 0 && _vscwprintf(format, again) < 0))
        buffer[0] = L'\0';
    va_end(again);

    size_t const end = wcslen(buffer);
    buffer[end] = L'\n';
    buffer[end + 1] = L'\0';
}

bool IsShown(int level) noexcept
{
    return vek::g_debugOutputLevel.load(std::memory_order_relaxed) >= level;
}

// Apart from the look at the level, which costs next to nothing without this frame.
VEK_NEVER_INLINE void Show(VEK_LOG_CATEGORY category, int level, wchar_t const * format, va_list arguments) noexcept
{
    wchar_t text[BUFFER_SIZE];
    FormatLine(text, format, arguments);
    OutputDebugStringW(text);
    vek::DispatchToCatchers(category, level, text);
}

} // namespace

void VekLogOutput(int level, wchar_t const * format, ...) noexcept
{
    if (!IsShown(level))
        return;
    va_list arguments;
    va_start(arguments, format);
    Show(VEK_LOG_FAILURE, level, format, arguments);
    va_end(arguments);
}

void VekLogOutputAs(VEK_LOG_CATEGORY category, int level, wchar_t const * format, ...) noexcept
{
    if (!IsShown(level))
        return;
    va_list arguments;
    va_start(arguments, format);
    Show(category, level, format, arguments);
    va_end(arguments);
}

void VekWindowsError() noexcept
{
    wchar_t * text = nullptr;
    DWORD const length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        GetLastError(), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<wchar_t *>(&text), 0, nullptr);
    if (length == 0)
        return;
    OutputDebugStringW(text);
    LocalFree(text);
}
