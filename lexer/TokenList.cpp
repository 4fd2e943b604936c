#include "lexer/TokenList.h"

#include "text/StringAccess.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

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
    if (m_count == INT_MAX || length >= INT_MAX || !NeedBlock())
        return nullptr;
    wchar_t const * const copy = length <= LONGEST_SHARED ? ShareText(text, length) : AddText(text, length);
    if (!copy)
        return nullptr;
    auto * const token = new (At(m_count)) CVekToken(this);
    ++m_count;
    token->m_text = copy;
    token->m_textLength = static_cast<int>(length);
    return token;
}

// Makes room for one more token.
bool TokenList::NeedBlock() noexcept
{
    size_t const index = static_cast<size_t>(m_count);
    size_t const block = index >= LARGEST_BLOCK ? LARGE_BLOCKS - 1 + index / LARGEST_BLOCK : BlockOf(index);
    if (block < m_blocks.Size())
        return true;
    size_t const size = block == 0 ? SMALLEST_BLOCK : block < LARGE_BLOCKS ? BlockStart(block) : LARGEST_BLOCK;
    void * const storage = m_blocks.Reserve(block + 1) ? malloc(size * sizeof(CVekToken)) : nullptr;
    return storage && m_blocks.Append(static_cast<CVekToken *>(storage));
}

// A copy of a short text: one that was made lately if it is the same.
wchar_t const * TokenList::ShareText(wchar_t const * text, size_t length) noexcept
{
    size_t const key = length == 0 ? 0 : length * 31 + text[0] * 7U + text[length / 2] * 3U + text[length - 1];
    RecentText & recent = m_recent[key % RECENT_TEXTS];
    if (recent.length == length && recent.text && memcmp(recent.text, text, length * sizeof(wchar_t)) == 0)
        return recent.text;
    wchar_t const * const copy = AddText(text, length);
    if (copy)
        recent = {copy, length};
    return copy;
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
