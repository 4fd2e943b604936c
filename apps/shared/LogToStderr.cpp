#include "LogToStderr.h"

#include "Console.h"

#include <new>

namespace tool
{

namespace
{

void ShowLines(std::wstring_view text)
{
    while (!text.empty())
    {
        std::size_t const end = text.find(L'\n');
        std::wstring_view const line = text.substr(0, end);
        if (!line.empty())
            Console::Err().Write(Printable(line) + L"\n");
        text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    }
}

} // namespace

void LogToStderr::OnLogOutput(int, wchar_t const * text)
{
    // The library is told nothing by an exception: a message that there is no memory for is lost.
    try
    {
        if (m_shows)
            ShowLines(text);
        else
            m_kept += text;
    }
    catch (std::bad_alloc const &)
    {
    }
}

void LogToStderr::Show(bool keptToo)
{
    m_shows = true;
    if (keptToo)
        ShowLines(m_kept);
    m_kept.clear();
}

namespace
{

CVekRef<LogToStderr> AddCatcher()
{
    CVekRef<LogToStderr> catcher{new LogToStderr};
    getVekLibKernel()->AddCatchLogOutput(catcher.Get());
    return catcher;
}

} // namespace

Library::Library() : m_catcher(AddCatcher())
{
    m_catcher->Show(!Started());
}

} // namespace tool
