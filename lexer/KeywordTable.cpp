#include "lexer/KeywordTable.h"

#include "text/Fold.h"
#include "text/Scan.h"

#include <limits.h>

#include <new>

namespace vek
{
namespace
{

constexpr size_t FIRST_SLOTS = 64;
constexpr size_t SLOTS_PER_KEYWORD = 4;
constexpr size_t MOST_KEYWORDS = INT_MAX / 2;

} // namespace

KeywordTable::~KeywordTable()
{
    for (size_t i = 0; i < m_entries.Size(); ++i)
        delete m_entries[i].keyword;
}

bool KeywordTable::Add(wchar_t const * text, int id, bool caseSensitive) noexcept
{
    size_t const length = TextLength(text);
    size_t const count = m_entries.Size() + 1;
    if (length >= INT_MAX || count > MOST_KEYWORDS || !m_entries.Reserve(count))
        return false;
    auto * const keyword = new (std::nothrow) CVekLexer::Keyword(text, static_cast<int>(length), id, caseSensitive);
    if (m_slots.Size() < count * SLOTS_PER_KEYWORD)
        MakeSlots(m_slots.Size() * 2); // if that fails, fuller ones will do
    if (!keyword || keyword->m_text.GetLength() != static_cast<int>(length) || m_slots.Empty())
    {
        delete keyword;
        return false;
    }
    if (length > 0)
        m_lengths[LettersOf(text, length)] |= LengthBit(length);
    m_entries.Append({keyword, HashOf(text, length), NONE});
    Link(static_cast<int>(count - 1));
    return true;
}

bool KeywordTable::MakeSlots(size_t count) noexcept
{
    size_t const size = count < FIRST_SLOTS ? FIRST_SLOTS : count;
    if (!m_slots.Reserve(size))
        return false;
    m_slots.Clear();
    m_slots.Extend(size);
    for (size_t i = 0; i < size; ++i)
        m_slots[i] = {NONE, NONE};
    for (size_t i = 0; i < m_entries.Size(); ++i)
        Link(static_cast<int>(i));
    return true;
}

void KeywordTable::Link(int index) noexcept
{
    Entry & entry = m_entries[static_cast<size_t>(index)];
    Slot & slot = m_slots[entry.hash & (m_slots.Size() - 1)];
    entry.next = NONE;
    (slot.last == NONE ? slot.first : m_entries[static_cast<size_t>(slot.last)].next) = index;
    slot.last = index;
}

bool KeywordTable::Equals(CVekLexer::Keyword const & keyword, wchar_t const * word, size_t length) noexcept
{
    int const units = static_cast<int>(length);
    if (keyword.m_text.GetLength() != units)
        return false;
    return keyword.m_caseSensitive ? memcmp(keyword.m_text, word, length * sizeof(wchar_t)) == 0
                                   : EqualsNoCase(keyword.m_text, word, units);
}

CVekLexer::Keyword const * KeywordTable::Search(int first, wchar_t const * word, size_t length,
                                                uint32_t hash) const noexcept
{
    // Kept: keywords without regard to case stand under both cases of their first letter, and the lower case is
    // searched first. So for a capitalised word they go before those that only the upper case has.
    bool const isCapitalised = word[0] >= L'A' && word[0] <= L'Z';
    CVekLexer::Keyword const * exact = nullptr;
    for (int i = first; i != NONE;)
    {
        Entry const & entry = m_entries[static_cast<size_t>(i)];
        i = entry.next;
        if (entry.hash != hash || !Equals(*entry.keyword, word, length))
            continue;
        if (!isCapitalised || !entry.keyword->m_caseSensitive)
            return entry.keyword;
        if (!exact)
            exact = entry.keyword;
    }
    return exact;
}

} // namespace vek
