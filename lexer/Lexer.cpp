#include "VekLexer.h"
#include "VekRef.h"

#include "base/LiveObjects.h"
#include "lexer/LexerRun.h"
#include "lexer/LexerTables.h"
#include "text/Scan.h"

#include <new>

CVekLexer::CVekLexer() : m_callback(nullptr), m_tables(nullptr)
{
    vek::CountBirth(vek::LiveClass::Lexer);
}

CVekLexer::~CVekLexer()
{
    vek::CountEnd(vek::LiveClass::Lexer);
    RemoveAll();
    if (m_callback)
        m_callback->Release();
}

void CVekLexer::SetCallback(IVekLexer::Callback * callback)
{
    IVekLexer::Callback * const old = m_callback;
    if (callback)
        callback->AddRef();
    m_callback = callback;
    if (old)
        old->Release();
}

IVekLexer::Callback * CVekLexer::GetCallback()
{
    return m_callback;
}

IVekLexer::Callback * CVekLexer::GetCallback() const
{
    return m_callback;
}

void CVekLexer::RemoveAll()
{
    Tables * const tables = m_tables;
    m_tables = nullptr;
    if (tables)
        tables->Release();
}

CVekLexer::Tables * CVekLexer::NeedTables()
{
    if (!m_tables)
        m_tables = new (std::nothrow) Tables;
    return m_tables;
}

int CVekLexer::AddComment(wchar_t const * start, wchar_t const * end)
{
    if (!start || !end)
        return 0;
    // Kept: a refusal is as true as a success; callers never looked closer.
    size_t const startLength = vek::TextLength(start);
    if (startLength > Comment::LONGEST_DELIMITER)
        return static_cast<int>(startLength);
    size_t const endLength = vek::TextLength(end);
    if (endLength > Comment::LONGEST_DELIMITER)
        return static_cast<int>(endLength);
    return NeedTables() && m_tables->AddComment(start, end);
}

bool CVekLexer::AddKeyword(wchar_t const * text, int id, bool caseSensitive)
{
    return text && NeedTables() && m_tables->keywords.Add(text, id, caseSensitive);
}

bool CVekLexer::AddOperator(wchar_t const * text, int id)
{
    return text && NeedTables() && m_tables->operators.Add(text, id);
}

int CVekLexer::Parse(wchar_t const * text, int length)
{
    if (!text || length <= 0)
        return 0;
    auto const self = CVekRef<CVekLexer>::Share(this);
    return vek::LexerRun(*this, text, length).Parse();
}
