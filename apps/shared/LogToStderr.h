#pragma once

#include "VekLib.h"

#include <string>

namespace tool
{

/// Shows the library's messages on standard error, a line each, blank lines left out.
class LogToStderr final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    void OnLogOutput(int level, wchar_t const * text) override;

    /// From now on messages are shown as they come; until then they are kept, to be shown now or dropped.
    void Show(bool keptToo);

private:
    bool m_shows = false;
    std::wstring m_kept;
};

/// The library, started for a scope, its messages on standard error. The greeting at its start is left out unless the
/// start fails.
class Library
{
public:
    Library();
    Library(Library const &) = delete;
    Library & operator=(Library const &) = delete;

    bool Started() const { return m_library.IsStarted(); }

private:
    CVekRef<LogToStderr> m_catcher;
    CVekLibrary m_library;
};

} // namespace tool
