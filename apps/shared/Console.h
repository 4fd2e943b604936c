#pragma once

#include <string>
#include <string_view>

namespace tool
{

/// One of the process's two output streams. A console gets wide text, anything else UTF-8 bytes with "\n" line ends.
class Console
{
public:
    static Console & Out();
    static Console & Err();

    Console(Console const &) = delete;
    Console & operator=(Console const &) = delete;

    /// Text of the tool's own. Standard output is collected; standard error is shown at once, after what was collected.
    void Write(std::wstring_view text);
    /// Hands out what was collected. False when anything written since the start was lost.
    bool Flush();
    bool IsConsole() const { return m_console; }

private:
    Console(unsigned long handleId, bool collects);

    void Send(std::wstring_view text);

    void * m_handle;
    bool m_console;
    bool m_collects;
    bool m_lost = false;
    std::wstring m_text;
};

/// Text from files and arguments, fit for any terminal: control characters, lone surrogates and the marks that turn the
/// direction of writing are escaped ("\x1B", "\u202E"). Longer texts are cut at the limit and end in "...".
std::wstring Printable(std::wstring_view text, std::size_t limit = std::wstring_view::npos);

/// Prints "PROGRAM: SUBJECT: MESSAGE" to standard error, the subject made printable. Returns the exit code of a failed
/// run.
int Fail(std::wstring_view subject, std::wstring_view message);

/// Prints "PROGRAM: SUBJECT: note: MESSAGE" to standard error.
void Note(std::wstring_view subject, std::wstring_view message);

/// wide printf, for up to 500 characters.
std::wstring Format(wchar_t const * format, ...);

constexpr int EXIT_DONE = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

} // namespace tool
