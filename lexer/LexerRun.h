#pragma once

#include "VekLexer.h"
#include "VekRef.h"

#include "base/Compiler.h"
#include "lexer/LexerTables.h"
#include "lexer/Span.h"
#include "lexer/WordScan.h"

namespace vek
{

/// One scan of a text. It keeps the lexer's callback and tables while it uses them, as the callback may change both.
class LexerRun
{
public:
    LexerRun(CVekLexer & lexer, wchar_t const * text, int length) noexcept;
    LexerRun(LexerRun const &) = delete;
    LexerRun & operator=(LexerRun const &) = delete;

    /// The result of IVekLexer::Parse.
    int Parse();

private:
    /// Where a token begins.
    struct Place
    {
        int position;
        int line;
        int column;
    };
    enum class Stop
    {
        Token,
        End,
        EndOfComment
    };

    VEK_ALWAYS_INLINE Stop SkipToToken() noexcept;
    void SkipComment(CVekLexer::Comment const & comment) noexcept;
    /// Moves to a place further on and counts the lines up to there.
    void AdvanceTo(wchar_t const * to) noexcept;
    void TakeLineFeed() noexcept
    {
        ++m_at;
        ++m_line;
        m_lineStart = m_at;
    }
    VEK_ALWAYS_INLINE void SkipBlanks() noexcept;
    Place Here() const noexcept
    {
        return {static_cast<int>(m_at - m_text), m_line, static_cast<int>(m_at - m_lineStart)};
    }

    VEK_ALWAYS_INLINE void ScanToken();
    VEK_ALWAYS_INLINE void ScanWord();
    void ScanNumber();
    VEK_ALWAYS_INLINE void ScanRun();
    VEK_NEVER_INLINE void ScanAnyRun();
    void ReportInvalid(Place const & place);
    void ScanString();
    /// Copies a text to the buffer and terminates it.
    wchar_t const * Copy(wchar_t const * text, size_t length) noexcept;

    /// Calls an operation of the callback, if there is one, and meets what it has changed.
    template <class... Parameters, class... Arguments>
    void Report(void (IVekLexer::Callback::*operation)(Parameters...), Arguments... arguments)
    {
        IVekLexer::Callback * const callback = m_callback.Get();
        if (!callback)
            return;
        (callback->*operation)(arguments...);
        if (m_lexer.m_callback != callback || m_lexer.m_tables != m_tables.Get())
            TakeOver();
    }
    void TakeOver() noexcept;

    CVekLexer & m_lexer;
    CVekRef<IVekLexer::Callback> m_callback;
    CVekRef<CVekLexer::Tables> m_tables;
    wchar_t const * const m_text;
    wchar_t const * const m_end;
    wchar_t const * m_at;
    wchar_t const * m_lineStart;
    int m_line = 0;
    alignas(16) wchar_t m_copy[LONGEST_STRING + WORD_SLACK + 1];
};

} // namespace vek
