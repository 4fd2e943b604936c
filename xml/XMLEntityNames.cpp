#include "xml/XMLEntityNames.h"

#include <string.h>
#include <wchar.h>

namespace vek
{
namespace
{

constexpr size_t FIRST_SLOTS = 64;
constexpr wchar_t const * PREDEFINED[] = {L"amp", L"lt", L"gt", L"quot", L"apos"};

} // namespace

// That of the name, or the empty one where it belongs.
size_t XMLEntityNames::SlotOf(wchar_t const * name, size_t length) const noexcept
{
    size_t slot = m_hash(name, length) & (m_slots.Size() - 1);
    for (; m_slots[slot]; slot = (slot + 1) & (m_slots.Size() - 1))
    {
        Entry const & entry = m_entries[m_slots[slot] - 1];
        if (entry.length == length && wmemcmp(m_text.Data() + entry.begin, name, length) == 0)
            break;
    }
    return slot;
}

bool XMLEntityNames::Add(wchar_t const * name) noexcept
{
    size_t const length = wcslen(name);
    auto const begin = static_cast<uint32_t>(m_text.Size());
    if (!m_text.Append(name, length) || !m_entries.Append({begin, static_cast<uint32_t>(length)}))
        return false;
    size_t first = m_entries.Size();
    if (m_entries.Size() * 2 > m_slots.Size())
    {
        size_t const size = m_slots.Empty() ? FIRST_SLOTS : m_slots.Size() * 2;
        m_slots.Clear();
        uint32_t * const slots = m_slots.Extend(size);
        if (!slots)
            return false;
        memset(slots, 0, size * sizeof *slots);
        first = 1;
    }
    for (; first <= m_entries.Size(); ++first)
    {
        Entry const & entry = m_entries[first - 1];
        m_slots[SlotOf(m_text.Data() + entry.begin, entry.length)] = static_cast<uint32_t>(first);
    }
    return true;
}

bool XMLEntityNames::Has(wchar_t const * name, size_t length) const noexcept
{
    if (length > 0 && *name == L'#')
        return true;
    for (wchar_t const * known : PREDEFINED)
    {
        if (wcslen(known) == length && wmemcmp(known, name, length) == 0)
            return true;
    }
    return !m_slots.Empty() && m_slots[SlotOf(name, length)] != 0;
}

} // namespace vek
