#include "Console.h"

#include "CommandLine.h"
#include "FileErrors.h"
#include "Platform.h"
#include "Utf8.h"

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <utility>
#include <vector>

namespace tool
{

namespace
{

constexpr std::size_t COLLECTED = 0x8000;
// A console takes a limited amount in one call.
constexpr std::size_t CONSOLE_PIECE = 4096;

bool IsHarmful(wchar_t unit)
{
    bool const control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    bool const turnsDirection = (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) ||
                                unit == 0x200E || unit == 0x200F || unit == 0x061C;
    return control || turnsDirection || unit == 0xFEFF || unit >= 0xFFFE;
}

void AppendEscape(std::wstring & text, wchar_t unit)
{
    switch (unit)
    {
    case L'\n':
        text += L"\\n";
        break;
    case L'\r':
        text += L"\\r";
        break;
    case L'\t':
        text += L"\\t";
        break;
    default:
        text += Format(unit < 0x100 ? L"\\x%02X" : L"\\u%04X", static_cast<unsigned int>(unit));
    }
}

bool SendBytes(HANDLE handle, std::string_view bytes)
{
    while (!bytes.empty())
    {
        DWORD written = 0;
        DWORD const piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 20));
        if (!WriteFile(handle, bytes.data(), piece, &written, nullptr) || written == 0)
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

bool WriteToConsole(HANDLE handle, std::wstring_view text)
{
    while (!text.empty())
    {
        std::size_t piece = std::min(text.size(), CONSOLE_PIECE);
        if (piece < text.size() && IsHighSurrogate(text[piece - 1]))
            --piece;
        DWORD written = 0;
        if (!WriteConsoleW(handle, text.data(), static_cast<DWORD>(piece), &written, nullptr) || written == 0)
            return false;
        text.remove_prefix(written);
    }
    return true;
}

} // namespace

Console & Console::Out()
{
    static Console console(STD_OUTPUT_HANDLE, true);
    return console;
}

Console & Console::Err()
{
    static Console console(STD_ERROR_HANDLE, false);
    return console;
}

Console::Console(unsigned long handleId, bool collects)
    : m_handle(GetStdHandle(handleId)), m_console(false), m_collects(collects)
{
    DWORD mode = 0;
    m_console = GetConsoleMode(m_handle, &mode) != 0;
}

void Console::Write(std::wstring_view text)
{
    if (!m_collects)
    {
        Out().Flush();
        Send(text);
        return;
    }
    m_text += text;
    if (m_text.size() >= COLLECTED)
        Flush();
}

bool Console::Flush()
{
    Send(m_text);
    m_text.clear();
    return !m_lost;
}

void Console::Send(std::wstring_view text)
{
    // A process without this stream is one whose user doesn't want to see it.
    if (text.empty() || m_lost || m_handle == nullptr || m_handle == INVALID_HANDLE_VALUE)
        return;
    if (m_console ? !WriteToConsole(m_handle, text) : !SendBytes(m_handle, ToUtf8(text)))
        Lose();
}

void Console::WriteBytes(std::string_view bytes)
{
    if (m_console)
        return Write(FromUtf8(bytes.substr(bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0)));
    Flush();
    if (!m_lost && m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE && !SendBytes(m_handle, bytes))
        Lose();
}

void Console::Lose()
{
    DWORD const code = GetLastError();
    m_lost = true;
    if (code != ERROR_BROKEN_PIPE && code != ERROR_NO_DATA)
        m_whyLost = ErrorText(code);
}

std::wstring Printable(std::wstring_view text, std::size_t limit)
{
    std::wstring result;
    std::size_t const end = std::min(text.size(), limit);
    result.reserve(end + 3);
    for (std::size_t i = 0; i < end; ++i)
    {
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
        {
            result.append(text, i++, 2);
            continue;
        }
        if (IsHarmful(text[i]) || IsHighSurrogate(text[i]) || IsLowSurrogate(text[i]))
            AppendEscape(result, text[i]);
        else
            result.push_back(text[i]);
    }
    if (end < text.size())
        result += L"...";
    return result;
}

std::wstring Quoted(std::wstring_view text, std::size_t limit)
{
    return L"\"" + Printable(text, limit) + L"\"";
}

namespace
{

std::vector<std::pair<std::wstring, std::wstring>> & ShownNames()
{
    static std::vector<std::pair<std::wstring, std::wstring>> names;
    return names;
}

} // namespace

void ShowAs(std::wstring const & path, std::wstring const & name)
{
    ShownNames().emplace_back(path, name);
}

std::wstring ShownName(std::wstring_view path)
{
    for (auto const & [known, name] : ShownNames())
    {
        if (known == path)
            return name;
    }
    return Printable(path);
}

std::wstring FaultLine(std::wstring_view path, unsigned int line, unsigned int column, std::wstring_view message)
{
    std::wstring const place = line ? Format(L":%u:%u", line, column) : std::wstring();
    return (ShownName(path) + place + L": ").append(message);
}

int FailAt(std::wstring_view path, unsigned int line, unsigned int column, std::wstring_view message)
{
    std::wstring const prefix = line ? std::wstring() : PROGRAM_NAME + std::wstring(L": ");
    Console::Err().Write(prefix + FaultLine(path, line, column, message) + L"\n");
    return EXIT_FAILED;
}

int Fail(std::wstring_view subject, std::wstring_view message)
{
    Console::Err().Write(PROGRAM_NAME + (L": " + ShownName(subject) + L": ").append(message).append(L"\n"));
    return EXIT_FAILED;
}

void Note(std::wstring_view subject, std::wstring_view message)
{
    Console::Err().Write(PROGRAM_NAME + (L": " + ShownName(subject) + L": note: ").append(message).append(L"\n"));
}

std::wstring Format(wchar_t const * format, ...)
{
    wchar_t text[512];
    va_list arguments;
    va_start(arguments, format);
    int const length = _vsnwprintf(text, 511, format, arguments);
    va_end(arguments);
    return std::wstring(text, length < 0 ? 511 : static_cast<std::size_t>(length));
}

} // namespace tool
