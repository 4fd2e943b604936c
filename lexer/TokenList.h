#pragma once

#include "VekCore.h"

#include "base/Buffer.h"
#include "base/Pool.h"
#include "lexer/Token.h"
#include "lexer/TokenTexts.h"

#include <new>

namespace vek
{

/// The tokens of one text and their texts, in blocks that never move. Counted: the tokenizer holds it, and so does each
/// reference to one of its tokens.
class TokenList final : public CVekRefCounted<IVekObject>
{
public:
    TokenList() = default;
    TokenList(TokenList const &) = delete;
    TokenList & operator=(TokenList const &) = delete;
    ~TokenList() override;

    /// Adds a token with a copy of its text; null, with nothing added, when memory is exhausted.
    CVekToken * Add(wchar_t const * text, size_t length) noexcept
    {
        return NeedBlock() ? Place(m_texts.Copy(text, length), length) : nullptr;
    }
    /// Likewise with a terminated text.
    CVekToken * Add(wchar_t const * text) noexcept
    {
        size_t length = 0;
        wchar_t const * const copy = NeedBlock() ? m_texts.CopyTerminated(text, length) : nullptr;
        return Place(copy, length);
    }

    int Count() const noexcept { return m_count; }
    /// The index must be inside the list.
    CVekToken * At(int index) const noexcept
    {
        auto const at = static_cast<size_t>(index);
        return m_blocks[at / BLOCK_TOKENS] + at % BLOCK_TOKENS;
    }

private:
    // The blocks are the pool's: a list that goes leaves them to the next one, as they are.
    static constexpr size_t BLOCK_BYTES = 5120;
    static constexpr size_t BLOCK_TOKENS = BLOCK_BYTES / sizeof(CVekToken);

    bool NeedBlock() noexcept { return m_next != m_blockEnd || NewBlock(); }
    bool NewBlock() noexcept;
    CVekToken * Place(wchar_t const * text, size_t length) noexcept
    {
        if (!text)
            return nullptr;
        ++m_count;
        return new (m_next++) CVekToken(this, text, static_cast<int>(length));
    }

    int m_count = 0;
    Buffer<CVekToken *> m_blocks;
    CVekToken * m_next = nullptr; // of the last block
    CVekToken * m_blockEnd = nullptr;
    TokenTexts m_texts;
};

} // namespace vek
