#pragma once

#include "lexer/LexerKeyword.h"

#include "base/Buffer.h"
#include "lexer/WordScan.h"

#include <stdint.h>

namespace vek
{

/// The keywords in the order of their registration, found by a hash that ignores case.
class KeywordTable
{
public:
    KeywordTable() = default;
    KeywordTable(KeywordTable const &) = delete;
    KeywordTable & operator=(KeywordTable const &) = delete;
    ~KeywordTable();

    /// False, with nothing added, when memory is exhausted.
    bool Add(wchar_t const * text, int id, bool caseSensitive) noexcept;
    /// The keyword for a scanned word, or null. The word stands in whole blocks of 8 characters.
    CVekLexer::Keyword const * Find(wchar_t const * word, size_t length) const noexcept
    {
        // Most words of a text are no keywords: mostly their length and two letters tell, then the hash.
        if (!(m_lengths[LettersOf(word, length)] & LengthBit(length)))
            return nullptr;
        uint32_t const hash = HashOfBlocks(word, length);
        int const first = m_slots[hash & (m_slots.Size() - 1)].first;
        return first == NONE ? nullptr : Search(first, word, length, hash);
    }

private:
    struct Entry
    {
        CVekLexer::Keyword * keyword;
        uint32_t hash;
        int next; // of the same slot, in the order of registration; NONE at its end
    };
    struct Slot
    {
        int first;
        int last;
    };
    static constexpr int NONE = -1;
    static constexpr size_t LETTERS = 256;

    // The same for both cases.
    static size_t LettersOf(wchar_t const * word, size_t length) noexcept
    {
        return (word[0] % 32U * 8) ^ (word[length - 1] % 32U);
    }
    static uint32_t LengthBit(size_t length) noexcept { return 1U << (length < 31 ? length : 31); }

    CVekLexer::Keyword const * Search(int first, wchar_t const * word, size_t length, uint32_t hash) const noexcept;
    static bool Equals(CVekLexer::Keyword const & keyword, wchar_t const * word, size_t length) noexcept;
    bool MakeSlots(size_t count) noexcept;
    void Link(int index) noexcept;

    uint32_t m_lengths[LETTERS] = {}; // of the keywords, a bit each, by the first and last character
    Buffer<Entry> m_entries;
    Buffer<Slot> m_slots; // a power of two, or none
};

} // namespace vek
