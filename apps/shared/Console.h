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
    /// Bytes as they are; on a console the text that they are.
    void WriteBytes(std::string_view bytes);
    bool IsConsole() const { return m_console; }
    /// What the system says of what was lost; empty when nothing was, or when the reader just has gone.
    std::wstring const & WhyLost() const { return m_whyLost; }

private:
    Console(unsigned long handleId, bool collects);

    void Send(std::wstring_view text);
    void Lose();

    void * m_handle;
    bool m_console;
    bool m_collects;
    bool m_lost = false;
    std::wstring m_whyLost;
    std::wstring m_text;
};

/// Text from files and arguments, fit for any terminal: control characters, lone surrogates and the marks that turn the
/// direction of writing are escaped ("\x1B", "\u202E"). Longer texts are cut at the limit and end in "...".
std::wstring Printable(std::wstring_view text, std::size_t limit = std::wstring_view::npos);

/// That in double quotes.
std::wstring Quoted(std::wstring_view text, std::size_t limit = 200);

/// A file's name as messages give it: printable, and the other one for a file that stands for another.
std::wstring ShownName(std::wstring_view path);
void ShowAs(std::wstring const & path, std::wstring const & name);

/// Prints "FILE:LINE:COLUMN: MESSAGE" to standard error, without a place when the line is 0. Returns the exit code of a
/// failed run.
int FailAt(std::wstring_view path, unsigned int line, unsigned int column, std::wstring_view message);
/// That line without printing it, nor its end.
std::wstring FaultLine(std::wstring_view path, unsigned int line, unsigned int column, std::wstring_view message);

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
