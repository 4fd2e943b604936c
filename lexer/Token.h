#pragma once

#include "VekLexer.h"

#include <string.h>

namespace vek
{
class TokenList;
}

/// A token in its list, which counts the references for it. It owns nothing: the list frees its storage.
class CVekToken final : public IVekTokenizer::IToken
{
public:
    CVekToken(vek::TokenList * list, wchar_t const * text, int textLength)
        : m_list(list), m_text(text), m_textLength(textLength)
    {
    }
    CVekToken(CVekToken const &) = delete;
    CVekToken & operator=(CVekToken const &) = delete;

    unsigned int AddRef() override;
    unsigned int Release() override;
    unsigned int GetRefCount() const override;
    IVekTokenizer::TOKEN_KIND GetKind() const override;
    wchar_t const * GetText() const override;
    int GetTextLength() const override;
    int GetID() const override;
    int GetInteger() const override;
    IVekLexer::NUM_FORMAT GetNumFormat() const override;
    double GetFloat() const override;
    int GetPosition() const override;
    int GetLength() const override;
    int GetLine() const override;
    int GetColumn() const override;

    void SetReal(double value) { memcpy(m_value, &value, sizeof value); }

    vek::TokenList * const m_list;
    wchar_t const * m_text;
    int m_textLength;
    int m_position = 0;
    int m_length = 0;
    int m_line = 0;
    int m_column = 0;
    unsigned char m_kind = 0;
    unsigned char m_format = IVekLexer::NUM_DECIMAL;
    int m_value[2] =
        {}; // an identifier or an integer, or the two halves of a double, which would need an aligned place
};
