#include "lexer/TokenList.h"

#include "text/StringAccess.h"

#include <limits.h>
#include <stdlib.h>

#include <new>

namespace vek
{

TokenList::~TokenList()
{
    for (size_t i = 0; i < m_blocks.Size(); ++i)
        free(m_blocks[i]);
    for (size_t i = 0; i < m_textBlocks.Size(); ++i)
        free(m_textBlocks[i]);
}

CVekToken * TokenList::Add(wchar_t const * text, size_t length) noexcept
{
    size_t const index = static_cast<size_t>(m_count);
    if (m_count == INT_MAX || length >= INT_MAX)
        return nullptr;
    if (index == m_blocks.Size() * BLOCK_TOKENS)
    {
        void * const block = m_blocks.Reserve(m_blocks.Size() + 1) ? malloc(BLOCK_TOKENS * sizeof(CVekToken)) : nullptr;
        if (!block)
            return nullptr;
        m_blocks.Append(static_cast<CVekToken *>(block));
    }
    wchar_t * const copy = AddText(text, length);
    if (!copy)
        return nullptr;
    ++m_count;
    auto * const token = new (At(static_cast<int>(index))) CVekToken(this);
    token->m_text = copy;
    token->m_textLength = static_cast<int>(length);
    return token;
}

wchar_t * TokenList::AddText(wchar_t const * text, size_t length) noexcept
{
    size_t const units = length + 1;
    wchar_t * copy = m_room;
    if (units > m_roomUnits)
    {
        copy = NewTextBlock(units);
        if (!copy)
            return nullptr;
    }
    if (copy == m_room)
    {
        m_room += units;
        m_roomUnits -= units;
    }
    CopyShort(copy, text, length * sizeof(wchar_t));
    copy[length] = 0;
    return copy;
}

wchar_t * TokenList::NewTextBlock(size_t units) noexcept
{
    // A long text gets a block of its own, so that the room in the other one is not lost.
    bool const isOwn = units > BLOCK_UNITS / 4;
    size_t const size = isOwn ? units : BLOCK_UNITS;
    if (!m_textBlocks.Reserve(m_textBlocks.Size() + 1))
        return nullptr;
    auto * const block = static_cast<wchar_t *>(malloc(size * sizeof(wchar_t)));
    if (!block)
        return nullptr;
    m_textBlocks.Append(block);
    if (!isOwn)
    {
        m_room = block;
        m_roomUnits = size;
    }
    return block;
}

} // namespace vek
