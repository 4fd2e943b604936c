#pragma once

#include "VekCore.h"

#include "core/Buffer.h"
#include "lexer/Token.h"

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

    /// Adds a token with a terminated copy of its text; null, with nothing added, when memory is exhausted.
    CVekToken * Add(wchar_t const * text, size_t length) noexcept;

    int Count() const noexcept { return m_count; }
    /// The index must be inside the list.
    CVekToken * At(int index) const noexcept
    {
        auto const at = static_cast<size_t>(index);
        return m_blocks[at / BLOCK_TOKENS] + at % BLOCK_TOKENS;
    }

private:
    static constexpr size_t BLOCK_TOKENS = 512;
    static constexpr size_t BLOCK_UNITS = 16 * 1024;

    wchar_t * AddText(wchar_t const * text, size_t length) noexcept;
    wchar_t * NewTextBlock(size_t units) noexcept;

    int m_count = 0;
    Buffer<CVekToken *> m_blocks;
    Buffer<wchar_t *> m_textBlocks;
    wchar_t * m_room = nullptr; // of the block that is being filled
    size_t m_roomUnits = 0;
};

} // namespace vek
