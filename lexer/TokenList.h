#pragma once

#include "VekCore.h"

#include "base/Buffer.h"
#include "lexer/Token.h"

#include <bit>

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
        if (at >= LARGEST_BLOCK)
            return m_blocks[LARGE_BLOCKS - 1 + at / LARGEST_BLOCK] + at % LARGEST_BLOCK;
        size_t const block = BlockOf(at);
        return m_blocks[block] + (at - BlockStart(block));
    }

private:
    // The blocks of tokens double up to the largest size, and then have that: 64, 64, 128, ... 2,048, 4,096, 4,096, ...
    static constexpr size_t SMALLEST_BLOCK = 64;
    static constexpr size_t LARGEST_BLOCK = 4096;
    static constexpr size_t LARGE_BLOCKS = 7; // the first of that size
    static constexpr size_t BLOCK_UNITS = 16 * 1024;
    // Texts that were added lately, to be shared by tokens that have the same.
    static constexpr size_t RECENT_TEXTS = 512;
    static constexpr size_t LONGEST_SHARED = 32;
    struct RecentText
    {
        wchar_t const * text;
        size_t length;
    };

    static size_t BlockOf(size_t index) noexcept { return static_cast<size_t>(std::bit_width(index / SMALLEST_BLOCK)); }
    static size_t BlockStart(size_t block) noexcept { return block == 0 ? 0 : SMALLEST_BLOCK << (block - 1); }

    bool NeedBlock() noexcept;
    wchar_t const * ShareText(wchar_t const * text, size_t length) noexcept;
    wchar_t * AddText(wchar_t const * text, size_t length) noexcept;
    wchar_t * NewTextBlock(size_t units) noexcept;

    int m_count = 0;
    Buffer<CVekToken *> m_blocks;
    Buffer<wchar_t *> m_textBlocks;
    wchar_t * m_room = nullptr; // of the block that is being filled
    size_t m_roomUnits = 0;
    RecentText m_recent[RECENT_TEXTS] = {};
};

} // namespace vek
