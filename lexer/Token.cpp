#include "lexer/Token.h"

#include "lexer/TokenList.h"

unsigned int CVekToken::AddRef()
{
    return m_list->AddRef();
}

unsigned int CVekToken::Release()
{
    return m_list->Release();
}

unsigned int CVekToken::GetRefCount() const
{
    return m_list->GetRefCount();
}

IVekTokenizer::TOKEN_KIND CVekToken::GetKind() const
{
    return static_cast<IVekTokenizer::TOKEN_KIND>(m_kind);
}

wchar_t const * CVekToken::GetText() const
{
    return m_text;
}

int CVekToken::GetTextLength() const
{
    return m_textLength;
}

int CVekToken::GetID() const
{
    return m_kind & (IVekTokenizer::TOKEN_KEYWORD | IVekTokenizer::TOKEN_OPERATOR) ? m_value[0] : 0;
}

int CVekToken::GetInteger() const
{
    return m_kind == IVekTokenizer::TOKEN_INTEGER ? m_value[0] : 0;
}

IVekLexer::NUM_FORMAT CVekToken::GetNumFormat() const
{
    return static_cast<IVekLexer::NUM_FORMAT>(m_format);
}

double CVekToken::GetFloat() const
{
    if (m_kind != IVekTokenizer::TOKEN_FLOAT)
        return GetInteger();
    double value;
    memcpy(&value, m_value, sizeof value);
    return value;
}

int CVekToken::GetPosition() const
{
    return m_position;
}

int CVekToken::GetLength() const
{
    return m_length;
}

int CVekToken::GetLine() const
{
    return m_line;
}

int CVekToken::GetColumn() const
{
    return m_column;
}
