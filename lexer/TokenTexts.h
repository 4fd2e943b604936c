#pragma once

#include "base/Buffer.h"
#include "base/Pool.h"
#include "text/Scan.h"

#include <limits.h>

namespace vek
{

/// Terminated copies of the texts of tokens, one behind the other, which go together.
class TokenTexts
{
public:
    TokenTexts() = default;
    TokenTexts(TokenTexts const &) = delete;
    TokenTexts & operator=(TokenTexts const &) = delete;
    ~TokenTexts();

    /// The copy of a text of that length; null when memory is exhausted.
    wchar_t const * Copy(wchar_t const * text, size_t length) noexcept
    {
        if (length == 0 || length >= BLOCK || !IsInPage(text))
            return CopyAny(text, length);
        wchar_t * const copy = CopyBlock(Load(text), length);
        if (copy)
            copy[length] = 0;
        return copy;
    }
    /// Likewise of a terminated text, whose length it tells.
    wchar_t const * CopyTerminated(wchar_t const * text, size_t & length) noexcept
    {
        if (IsInPage(text))
        {
            Block const block = Load(text);
            __m128i const zero = _mm_setzero_si128();
            __m128i const ends = _mm_packs_epi16(_mm_cmpeq_epi16(block.low, zero), _mm_cmpeq_epi16(block.high, zero));
            unsigned int const mask = static_cast<unsigned int>(_mm_movemask_epi8(ends));
            if (mask != 0)
            {
                length = static_cast<size_t>(std::countr_zero(mask));
                return CopyBlock(block, length);
            }
        }
        length = TextLength(text);
        return CopyAny(text, length);
    }

private:
    // Most texts are shorter than that: they are measured and copied at once.
    static constexpr size_t BLOCK = 16;
    static constexpr size_t STORE_UNITS = 5120 / sizeof(wchar_t); // from the pool

    struct Block
    {
        __m128i low;
        __m128i high;
    };
    struct Store
    {
        wchar_t * units;
        size_t count;
    };

    /// Whether a block at the place reaches into no page but the first character's, so that it may be read whatever of
    /// it belongs to the text.
    static bool IsInPage(wchar_t const * text) noexcept
    {
        return reinterpret_cast<uintptr_t>(text) % SMALLEST_PAGE <= SMALLEST_PAGE - sizeof(Block);
    }
    static Block Load(wchar_t const * text) noexcept
    {
        auto const * const place = reinterpret_cast<__m128i const *>(text);
        return {_mm_loadu_si128(place), _mm_loadu_si128(place + 1)};
    }
    /// Stores the whole block; what stands in it behind the terminator is the next text's place.
    wchar_t * CopyBlock(Block const & block, size_t length) noexcept
    {
        if (m_roomUnits < BLOCK && !NewRoom())
            return nullptr;
        wchar_t * const copy = TakeRoom(length + 1);
        auto * const place = reinterpret_cast<__m128i *>(copy);
        _mm_storeu_si128(place, block.low);
        _mm_storeu_si128(place + 1, block.high);
        return copy;
    }
    wchar_t * TakeRoom(size_t units) noexcept
    {
        wchar_t * const place = m_room;
        m_room += units;
        m_roomUnits -= units;
        return place;
    }
    wchar_t const * CopyAny(wchar_t const * text, size_t length) noexcept;
    bool NewRoom() noexcept;
    wchar_t * NewStore(size_t units) noexcept;

    wchar_t * m_room = nullptr; // of the store that is being filled
    size_t m_roomUnits = 0;
    Buffer<Store> m_stores;
};

} // namespace vek
