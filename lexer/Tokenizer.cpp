#include "VekLexer.h"
#include "VekRef.h"

#include "VekIO.h"

#include "base/Buffer.h"
#include "base/LiveObjects.h"
#include "lexer/StreamText.h"
#include "lexer/TokenizerCallback.h"
#include "text/Scan.h"

#include <limits.h>
#include <stdlib.h>

#include <new>

CVekTokenizer::CVekTokenizer() : m_tokens(nullptr), m_filter(TOKEN_ALL), m_selected(nullptr), m_numSelected(0)
{
    vek::CountBirth(vek::LiveClass::Tokenizer);
}

CVekTokenizer::~CVekTokenizer()
{
    vek::CountEnd(vek::LiveClass::Tokenizer);
    RemoveAll();
}

void CVekTokenizer::RemoveAll()
{
    vek::TokenList * const tokens = m_tokens;
    m_tokens = nullptr;
    free(m_selected);
    m_selected = nullptr;
    m_numSelected = 0;
    if (tokens)
        tokens->Release();
}

bool CVekTokenizer::Tokenize(IVekLexer * lexer, wchar_t const * text, int length)
{
    if (!lexer)
    {
        RemoveAll();
        VekLogOutput(0, L"CVekTokenizer::Tokenize --> Lexer is NULL");
        return false;
    }
    size_t const count = !text || length < -1 ? 0 : length < 0 ? vek::TextLength(text) : static_cast<size_t>(length);
    return Collect(*lexer, text, count < INT_MAX ? static_cast<int>(count) : INT_MAX);
}

bool CVekTokenizer::Tokenize(IVekLexer * lexer, IVekIOStream * stream)
{
    if (!lexer || !stream)
    {
        RemoveAll();
        VekLogOutput(0, L"CVekTokenizer::Tokenize --> %s is NULL", lexer ? L"Stream" : L"Lexer");
        return false;
    }
    // A host's stream may let go of both.
    auto const self = CVekRef<CVekTokenizer>::Share(this);
    auto const holder = CVekRef<IVekLexer>::Share(lexer);
    vek::Buffer<wchar_t> text;
    vek::StreamReading const reading =
        stream->IsReadable() ? vek::ReadStreamText(*stream, text) : vek::StreamReading::Failed;
    if (reading == vek::StreamReading::Done && text.Size() <= INT_MAX)
        return Collect(*lexer, text.Data(), static_cast<int>(text.Size()));
    RemoveAll();
    if (reading == vek::StreamReading::Failed)
        VekLogOutput(0, L"CVekTokenizer::Tokenize --> Failed to read stream");
    else
        VekLogOutput(0, L"CVekTokenizer::Tokenize --> Failed to allocate text");
    return false;
}

// The text may be a token's of the list that is replaced, and the lexer may come back here: the old list stays until
// the new one is whole.
bool CVekTokenizer::Collect(IVekLexer & lexer, wchar_t const * text, int length)
{
    auto const self = CVekRef<CVekTokenizer>::Share(this);
    auto const old = CVekRef<vek::TokenList>::Share(m_tokens);
    CVekRef<vek::TokenList> tokens;
    auto const collector =
        CVekRef<CVekTokenizerCallback>::Adopt(new (std::nothrow) CVekTokenizerCallback(text, length));
    if (collector)
    {
        auto const holder = CVekRef<IVekLexer>::Share(&lexer);
        auto const callback = CVekRef<IVekLexer::Callback>::Share(lexer.GetCallback());
        lexer.SetCallback(collector.Get());
        lexer.Parse(text, length);
        lexer.SetCallback(callback.Get());
        tokens.Reset(collector->Finish());
    }
    RemoveAll();
    if (tokens && Select(tokens.Get(), m_filter, m_selected, m_numSelected))
    {
        m_tokens = tokens.Detach();
        return true;
    }
    VekLogOutput(0, L"CVekTokenizer::Tokenize --> Failed to allocate tokens");
    return false;
}

// False, with neither of the two set, when memory is exhausted.
bool CVekTokenizer::Select(vek::TokenList const * tokens, unsigned int kinds, int *& indices, int & count)
{
    int const all = tokens ? tokens->Count() : 0;
    if ((kinds & TOKEN_ALL) == TOKEN_ALL || all == 0)
    {
        indices = nullptr;
        count = all;
        return true;
    }
    int matching = 0;
    for (int i = 0; i < all; ++i)
        matching += (tokens->At(i)->m_kind & kinds) != 0;
    auto * const selected = static_cast<int *>(malloc((static_cast<size_t>(matching) + 1) * sizeof(int)));
    if (!selected)
        return false;
    int * end = selected;
    for (int i = 0; i < all; ++i)
        if (tokens->At(i)->m_kind & kinds)
            *end++ = i;
    indices = selected;
    count = matching;
    return true;
}

bool CVekTokenizer::SetFilter(unsigned int kinds)
{
    int * selected = nullptr;
    int count = 0;
    if (!Select(m_tokens, kinds, selected, count))
    {
        VekLogOutput(0, L"CVekTokenizer::SetFilter --> Failed to allocate token index");
        return false;
    }
    free(m_selected);
    m_selected = selected;
    m_numSelected = count;
    m_filter = kinds;
    return true;
}

unsigned int CVekTokenizer::GetFilter() const
{
    return m_filter;
}

int CVekTokenizer::GetNumTokens() const
{
    return m_numSelected;
}

int CVekTokenizer::TokenIndex(int index) const
{
    return m_selected ? m_selected[index] : index;
}

IVekTokenizer::IToken * CVekTokenizer::GetToken(int index)
{
    return index >= 0 && index < m_numSelected ? m_tokens->At(TokenIndex(index)) : nullptr;
}

IVekTokenizer::IToken const * CVekTokenizer::GetToken(int index) const
{
    return index >= 0 && index < m_numSelected ? m_tokens->At(TokenIndex(index)) : nullptr;
}

// The index of the first token at or behind the position, or the number of tokens.
int CVekTokenizer::LowerBound(int position) const
{
    int low = 0;
    int high = m_numSelected;
    while (low < high)
    {
        int const middle = low + (high - low) / 2;
        if (m_tokens->At(TokenIndex(middle))->m_position < position)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

int CVekTokenizer::FindTokenFrom(int position) const
{
    int const index = LowerBound(position);
    return index < m_numSelected ? index : -1;
}

int CVekTokenizer::FindTokenAt(int position) const
{
    // The token that begins there, or else the last that begins before it; an error shares the place of its number.
    int index = LowerBound(position);
    if (index == m_numSelected || m_tokens->At(TokenIndex(index))->m_position != position)
    {
        if (index == 0)
            return -1;
        index = LowerBound(m_tokens->At(TokenIndex(index - 1))->m_position);
    }
    CVekToken const & token = *m_tokens->At(TokenIndex(index));
    return static_cast<long long>(position) - token.m_position < token.m_length ? index : -1;
}
