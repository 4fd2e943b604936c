#include "lexer/TokenizerCallback.h"

#include "lexer/Span.h"
#include "text/Scan.h"

#include <string.h>

#include <new>

using vek::Available;
using vek::TextLength;

CVekTokenizerCallback::CVekTokenizerCallback(wchar_t const * text, int length)
    : m_text(text), m_end(text + length), m_tokens(CVekRef<vek::TokenList>::Adopt(new (std::nothrow) vek::TokenList))
{
}

vek::TokenList * CVekTokenizerCallback::Finish()
{
    m_text = m_end = nullptr;
    return m_tokens.Detach();
}

wchar_t const * CVekTokenizerCallback::At(int position) const
{
    return position >= 0 && position < m_end - m_text ? m_text + position : m_end;
}

CVekTokenizerCallback::Piece CVekTokenizerCallback::WholeText(wchar_t const * reported, wchar_t const * place,
                                                              size_t length, size_t reach)
{
    // What is reported ends at the first zero of the text.
    size_t const told = TextLength(reported);
    if (told <= length && memcmp(reported, place, told * sizeof(wchar_t)) == 0)
        return {place, length, reach};
    return {reported, told, reach};
}

CVekToken * CVekTokenizerCallback::Add(IVekTokenizer::TOKEN_KIND kind, Piece const & piece, int position, int line,
                                       int column)
{
    CVekToken * const token = m_tokens ? m_tokens->Add(piece.text, piece.length) : nullptr;
    if (!token)
    {
        m_tokens.Reset(nullptr); // nothing more is collected
        return nullptr;
    }
    token->m_kind = static_cast<unsigned char>(kind);
    token->m_position = position;
    token->m_length = static_cast<int>(piece.reach);
    token->m_line = line;
    token->m_column = column;
    return token;
}

void CVekTokenizerCallback::OnKeywordFound(wchar_t const * text, int id, int position, int line, int column)
{
    size_t const length = TextLength(text);
    Piece const piece = {text, length, Available(At(position), m_end, length)};
    if (CVekToken * const token = Add(IVekTokenizer::TOKEN_KEYWORD, piece, position, line, column))
        token->m_number = id;
}

void CVekTokenizerCallback::OnOperatorFound(wchar_t const * text, int id, int position, int line, int column)
{
    // The registered operator may go on where the text does not.
    wchar_t const * const place = At(position);
    size_t const length = TextLength(text);
    size_t const limit = Available(place, m_end, length);
    size_t reach = 0;
    while (reach < limit && place[reach] == text[reach] && !(vek::ClassOf(text[reach]) & vek::CLASS_ENDS_RUN))
        ++reach;
    if (CVekToken * const token = Add(IVekTokenizer::TOKEN_OPERATOR, {text, length, reach}, position, line, column))
        token->m_number = id;
}

void CVekTokenizerCallback::OnIdentifierFound(wchar_t const * text, int position, int line, int column)
{
    size_t const length = TextLength(text);
    Add(IVekTokenizer::TOKEN_IDENTIFIER, {text, length, Available(At(position), m_end, length)}, position, line,
        column);
}

void CVekTokenizerCallback::OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t const length = place == m_end ? 0 : vek::MeasureNumber(place, m_end).length;
    if (CVekToken * const token = Add(IVekTokenizer::TOKEN_INTEGER, {place, length, length}, position, line, column))
    {
        token->m_number = value;
        token->m_format = static_cast<unsigned char>(format);
    }
}

void CVekTokenizerCallback::OnFloatFound(double value, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t const length = place == m_end ? 0 : vek::MeasureNumber(place, m_end).length;
    if (CVekToken * const token = Add(IVekTokenizer::TOKEN_FLOAT, {place, length, length}, position, line, column))
        token->m_real = value;
}

void CVekTokenizerCallback::OnStringFound(wchar_t const * text, int position, int line, int column)
{
    wchar_t const * const quote = At(position);
    wchar_t const * const place = quote == m_end ? m_end : quote + 1;
    size_t const length = vek::MeasureString(place, m_end);
    bool const isClosed = length < vek::LONGEST_STRING && place + length != m_end;
    size_t const reach = static_cast<size_t>(place - quote) + length + isClosed;
    Add(IVekTokenizer::TOKEN_STRING, WholeText(text, place, length, reach), position, line, column);
}

void CVekTokenizerCallback::OnInvalidSyntax(wchar_t const * text, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t const length = vek::MeasureRun(place, m_end);
    Add(IVekTokenizer::TOKEN_INVALID_SYNTAX, WholeText(text, place, length, length), position, line, column);
}

void CVekTokenizerCallback::OnError(wchar_t const * text, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t reach = 0;
    if (place != m_end)
    {
        vek::NumberSpan const span = vek::MeasureNumber(place, m_end);
        reach = span.length + span.isSpoilt;
    }
    Add(IVekTokenizer::TOKEN_ERROR, {text, TextLength(text), reach}, position, line, column);
}
