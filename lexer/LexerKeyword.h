#pragma once

#include "VekLexer.h"
#include "VekText.h"

/// A registered keyword.
class CVekLexer::Keyword
{
public:
    Keyword(wchar_t const * text, int length, int id, bool caseSensitive)
        : m_text(text, length), m_id(id), m_caseSensitive(caseSensitive)
    {
    }
    virtual ~Keyword() = default;

    CVekString<wchar_t> m_text;
    int m_id;
    bool m_caseSensitive;
};
