#include "lexer/LexerRun.h"

#include "lexer/NumberText.h"
#include "text/StringAccess.h"

namespace vek
{

// cppcheck-suppress uninitMemberVar ; the buffer is written before it is read
LexerRun::LexerRun(CVekLexer & lexer, wchar_t const * text, int length) noexcept
    : m_lexer(lexer), m_text(text), m_end(text + length), m_at(text), m_lineStart(text)
{
    TakeOver();
}

void LexerRun::TakeOver() noexcept
{
    // A callback may be destroyed here, and its destructor may change the lexer once more.
    while (m_lexer.m_callback != m_callback.Get() || m_lexer.m_tables != m_tables.Get())
    {
        m_tables = CVekRef<CVekLexer::Tables>::Share(m_lexer.m_tables);
        m_callback = CVekRef<IVekLexer::Callback>::Share(m_lexer.m_callback);
    }
}

inline void LexerRun::SkipBlanks() noexcept
{
    wchar_t const * at = m_at;
    wchar_t const * const end = m_end;
    while (at != end)
    {
        wchar_t const unit = *at;
        if (unit == L' ')
        {
            // Indentations are long, other blanks are not.
            ++at;
            while (end - at >= 4 && at[0] == L' ' && at[1] == L' ' && at[2] == L' ' && at[3] == L' ')
                at += 4;
            continue;
        }
        if (ClassOf(unit) != CLASS_BLANK)
            break;
        ++at;
        if (unit == L'\n')
        {
            ++m_line;
            m_lineStart = at;
        }
    }
    m_at = at;
}

inline LexerRun::Stop LexerRun::SkipToToken() noexcept
{
    CVekLexer::Tables const * const tables = m_tables.Get();
    for (;;)
    {
        SkipBlanks();
        if (m_at == m_end)
            return Stop::End;
        CVekLexer::Comment const * const comment = tables ? tables->FindComment(m_at, m_end) : nullptr;
        if (!comment)
            return Stop::Token;
        SkipComment(*comment);
        if (m_at == m_end)
            return Stop::EndOfComment;
    }
}

void LexerRun::SkipComment(CVekLexer::Comment const & comment) noexcept
{
    AdvanceTo(m_at + comment.m_start.GetLength());
    if (comment.m_isLine)
    {
        m_at = FindEither(m_at, m_end, L'\n', L'\n');
        if (m_at != m_end)
            TakeLineFeed();
        return;
    }
    // An empty end delimiter is found at a zero in the text.
    wchar_t const first = comment.m_end[0];
    int const rest = comment.m_end.GetLength() > 0 ? comment.m_end.GetLength() - 1 : 0;
    for (;;)
    {
        m_at = FindEither(m_at, m_end, first, L'\n');
        if (m_at == m_end)
            return;
        bool const mayEnd = *m_at == first;
        AdvanceTo(m_at + 1);
        if (mayEnd && comment.EndsAt(m_at, m_end))
            return AdvanceTo(m_at + rest);
    }
}

void LexerRun::AdvanceTo(wchar_t const * to) noexcept
{
    while ((m_at = FindEither(m_at, to, L'\n', L'\n')) != to)
        TakeLineFeed();
}

inline void LexerRun::ScanWord()
{
    Place const place = Here();
    size_t const length = vek::ScanWord(m_at, Available(m_at, m_end, LONGEST_WORD), m_copy);
    CVekLexer::Tables const * const tables = m_tables.Get();
    CVekLexer::Keyword const * const keyword = tables ? tables->keywords.Find(m_copy, length) : nullptr;
    m_at += length;
    wchar_t const * const text = m_copy;
    if (keyword)
        Report(&IVekLexer::Callback::OnKeywordFound, text, keyword->m_id, place.position, place.line, place.column);
    else
        Report(&IVekLexer::Callback::OnIdentifierFound, text, place.position, place.line, place.column);
}

inline void LexerRun::ScanRun()
{
    CVekLexer::Tables const * const tables = m_tables.Get();
    CVekLexer::Operator const * const single = tables ? tables->operators.FindSingle(m_at, m_end) : nullptr;
    if (!single)
        return ScanAnyRun();
    Place const place = Here();
    ++m_at;
    wchar_t const * const text = single->m_text;
    Report(&IVekLexer::Callback::OnOperatorFound, text, single->m_id, place.position, place.line, place.column);
}

inline void LexerRun::ScanToken()
{
    switch (ClassOf(*m_at))
    {
    case CLASS_WORD:
        return ScanWord();
    case CLASS_DIGIT:
    case CLASS_MINUS: // Kept: it always begins a number, and so is never an operator there.
        return ScanNumber();
    case CLASS_QUOTE:
        return ScanString();
    default:
        return ScanRun();
    }
}

int LexerRun::Parse()
{
    Stop stop;
    while ((stop = SkipToToken()) == Stop::Token)
        ScanToken();
    // Kept: only a comment that ends the text gives its length, blanks and tokens give 0.
    return stop == Stop::EndOfComment ? static_cast<int>(m_end - m_text) : 0;
}

void LexerRun::ScanNumber()
{
    Place const place = Here();
    wchar_t const * const digits = m_at;
    NumberSpan const span = MeasureNumber(digits, m_end);
    m_at += span.length + span.isSpoilt;
    // Kept: the letter that spoils a number is taken with it, and the number itself is reported all the same.
    if (span.isSpoilt)
        Report(&IVekLexer::Callback::OnError, L"Invalid number", place.position, place.line, place.column);
    if (span.hasPoint)
        return Report(&IVekLexer::Callback::OnFloatFound, static_cast<double>(RealValue(digits, span.length)),
                      place.position, place.line, place.column);
    // Kept: a lone 0 is octal, and so is any number that begins with one: 09 is 0.
    bool const isOctal = digits[0] == L'0';
    int const value = isOctal ? OctalValue(digits, span.length) : DecimalValue(digits, span.length);
    Report(&IVekLexer::Callback::OnIntegerFound, value, isOctal ? IVekLexer::NUM_OCTAL : IVekLexer::NUM_DECIMAL,
           place.position, place.line, place.column);
}

void LexerRun::ScanAnyRun()
{
    Place const place = Here();
    CVekLexer::Tables const * const tables = m_tables.Get();
    OperatorTree::Match const match = tables ? tables->operators.Find(m_at, m_end) : OperatorTree::Match{nullptr, 0};
    if (match.found)
    {
        m_at += match.length;
        wchar_t const * const text = match.found->m_text;
        return Report(&IVekLexer::Callback::OnOperatorFound, text, match.found->m_id, place.position, place.line,
                      place.column);
    }
    ReportInvalid(place);
}

void LexerRun::ReportInvalid(Place const & place)
{
    size_t const length = MeasureRun(m_at, m_end);
    wchar_t const * const run = Copy(m_at, length);
    m_at += length;
    Report(&IVekLexer::Callback::OnInvalidSyntax, run, place.position, place.line, place.column);
}

void LexerRun::ScanString()
{
    Place const place = Here();
    ++m_at;
    size_t const length = MeasureString(m_at, m_end);
    wchar_t const * const text = Copy(m_at, length);
    AdvanceTo(m_at + length);
    if (length < LONGEST_STRING && m_at != m_end)
        ++m_at; // the closing quote
    Report(&IVekLexer::Callback::OnStringFound, text, place.position, place.line, place.column);
}

wchar_t const * LexerRun::Copy(wchar_t const * text, size_t length) noexcept
{
    CopyShort(m_copy, text, length * sizeof(wchar_t));
    m_copy[length] = 0;
    return m_copy;
}

} // namespace vek
