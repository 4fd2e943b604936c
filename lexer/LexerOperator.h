#pragma once

#include "VekLexer.h"
#include "VekText.h"

/// A registered operator.
class CVekLexer::Operator
{
public:
    Operator(wchar_t const * text, int length, int id) : m_text(text, length), m_id(id) {}
    virtual ~Operator() = default;

    CVekString<wchar_t> m_text;
    int m_id;
};
