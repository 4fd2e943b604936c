#include "lexer/TokenizerCallback.h"

#include "base/Compiler.h"
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

VEK_ALWAYS_INLINE wchar_t const * CVekTokenizerCallback::At(int position) const
{
    return position >= 0 && position < m_end - m_text ? m_text + position : m_end;
}

VEK_ALWAYS_INLINE int CVekTokenizerCallback::Reach(int position, int length) const
{
    return static_cast<int>(Available(At(position), m_end, static_cast<size_t>(length)));
}

VEK_ALWAYS_INLINE CVekToken * CVekTokenizerCallback::Finish(CVekToken * token, IVekTokenizer::TOKEN_KIND kind,
                                                            int position, int line, int column)
{
    if (!token)
    {
        m_tokens.Reset(nullptr); // nothing more is collected
        return nullptr;
    }
    token->m_kind = static_cast<unsigned char>(kind);
    token->m_position = position;
    token->m_line = line;
    token->m_column = column;
    return token;
}

VEK_ALWAYS_INLINE CVekToken * CVekTokenizerCallback::AddTold(IVekTokenizer::TOKEN_KIND kind, wchar_t const * text,
                                                             int position, int line, int column)
{
    return Finish(m_tokens ? m_tokens->Add(text) : nullptr, kind, position, line, column);
}

inline CVekToken * CVekTokenizerCallback::Add(IVekTokenizer::TOKEN_KIND kind, wchar_t const * text, size_t length,
                                              int position, int line, int column)
{
    return Finish(m_tokens ? m_tokens->Add(text, length) : nullptr, kind, position, line, column);
}

CVekToken * CVekTokenizerCallback::AddNumber(IVekTokenizer::TOKEN_KIND kind, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t const length = place == m_end ? 0 : vek::MeasureNumber(place, m_end).length;
    CVekToken * const token = Add(kind, place, length, position, line, column);
    if (token)
        token->m_length = token->m_textLength;
    return token;
}

CVekToken * CVekTokenizerCallback::AddWhole(IVekTokenizer::TOKEN_KIND kind, wchar_t const * told, wchar_t const * place,
                                            size_t length, int position, int line, int column)
{
    // What is told ends at the first zero of the text.
    size_t const toldLength = TextLength(told);
    bool const isBeginning = toldLength <= length && memcmp(told, place, toldLength * sizeof(wchar_t)) == 0;
    return Add(kind, isBeginning ? place : told, isBeginning ? length : toldLength, position, line, column);
}

void CVekTokenizerCallback::OnKeywordFound(wchar_t const * text, int id, int position, int line, int column)
{
    if (CVekToken * const token = AddTold(IVekTokenizer::TOKEN_KEYWORD, text, position, line, column))
    {
        token->m_length = Reach(position, token->m_textLength);
        token->m_value[0] = id;
    }
}

void CVekTokenizerCallback::OnOperatorFound(wchar_t const * text, int id, int position, int line, int column)
{
    CVekToken * const token = AddTold(IVekTokenizer::TOKEN_OPERATOR, text, position, line, column);
    if (!token)
        return;
    // The registered operator may go on where the text does not.
    wchar_t const * const place = At(position);
    int const limit = Reach(position, token->m_textLength);
    int reach = 0;
    while (reach < limit && place[reach] == text[reach] && !(vek::ClassOf(text[reach]) & vek::CLASS_ENDS_RUN))
        ++reach;
    token->m_length = reach;
    token->m_value[0] = id;
}

void CVekTokenizerCallback::OnIdentifierFound(wchar_t const * text, int position, int line, int column)
{
    if (CVekToken * const token = AddTold(IVekTokenizer::TOKEN_IDENTIFIER, text, position, line, column))
        token->m_length = Reach(position, token->m_textLength);
}

void CVekTokenizerCallback::OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int position, int line, int column)
{
    if (CVekToken * const token = AddNumber(IVekTokenizer::TOKEN_INTEGER, position, line, column))
    {
        token->m_value[0] = value;
        token->m_format = static_cast<unsigned char>(format);
    }
}

void CVekTokenizerCallback::OnFloatFound(double value, int position, int line, int column)
{
    if (CVekToken * const token = AddNumber(IVekTokenizer::TOKEN_FLOAT, position, line, column))
        token->SetReal(value);
}

void CVekTokenizerCallback::OnStringFound(wchar_t const * text, int position, int line, int column)
{
    wchar_t const * const quote = At(position);
    wchar_t const * const place = quote == m_end ? m_end : quote + 1;
    size_t const length = vek::MeasureString(place, m_end);
    bool const isClosed = length < vek::LONGEST_STRING && place + length != m_end;
    if (CVekToken * const token = AddWhole(IVekTokenizer::TOKEN_STRING, text, place, length, position, line, column))
        token->m_length = static_cast<int>(static_cast<size_t>(place - quote) + length + isClosed);
}

void CVekTokenizerCallback::OnInvalidSyntax(wchar_t const * text, int position, int line, int column)
{
    wchar_t const * const place = At(position);
    size_t const length = vek::MeasureRun(place, m_end);
    if (CVekToken * const token =
            AddWhole(IVekTokenizer::TOKEN_INVALID_SYNTAX, text, place, length, position, line, column))
        token->m_length = static_cast<int>(length);
}

void CVekTokenizerCallback::OnError(wchar_t const * text, int position, int line, int column)
{
    CVekToken * const token = AddTold(IVekTokenizer::TOKEN_ERROR, text, position, line, column);
    wchar_t const * const place = At(position);
    if (!token || place == m_end)
        return;
    vek::NumberSpan const span = vek::MeasureNumber(place, m_end);
    token->m_length = static_cast<int>(span.length + span.isSpoilt);
}
