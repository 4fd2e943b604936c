#pragma once

#include "lexer/LexerKeyword.h"

#include "base/Buffer.h"

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
    /// The keyword for a scanned word, or null.
    CVekLexer::Keyword const * Find(wchar_t const * word, size_t length, uint32_t hash) const noexcept
    {
        // Most words of a text are no keywords: an empty slot tells at once.
        int const first = m_slots.Empty() ? NONE : m_slots[hash & (m_slots.Size() - 1)].first;
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

    CVekLexer::Keyword const * Search(int first, wchar_t const * word, size_t length, uint32_t hash) const noexcept;
    static bool Equals(CVekLexer::Keyword const & keyword, wchar_t const * word, size_t length) noexcept;
    bool MakeSlots(size_t count) noexcept;
    void Link(int index) noexcept;

    Buffer<Entry> m_entries;
    Buffer<Slot> m_slots; // a power of two, or none
};

} // namespace vek
