#include "lexer/TokenList.h"

#include <limits.h>

namespace vek
{

TokenList::~TokenList()
{
    for (size_t i = 0; i < m_blocks.Size(); ++i)
        PoolFree(m_blocks[i], BLOCK_BYTES);
}

bool TokenList::NewBlock() noexcept
{
    if (m_count > INT_MAX - static_cast<int>(BLOCK_TOKENS) || !m_blocks.Reserve(m_blocks.Size() + 1))
        return false;
    auto * const block = static_cast<CVekToken *>(PoolAllocate(BLOCK_BYTES));
    if (!block)
        return false;
    m_blocks.Append(block);
    m_next = block;
    m_blockEnd = block + BLOCK_TOKENS;
    return true;
}

} // namespace vek
