#include "core/EventMap.h"

#include "core/EventEntry.h"

#include <emmintrin.h>

#include <bit>
#include <new>

namespace vek
{
namespace
{

/// The order of the identifiers by their sixteen bytes: below, at or above 0.
int Compare(GUID const & left, GUID const & right) noexcept
{
    __m128i const a = _mm_loadu_si128(reinterpret_cast<__m128i const *>(&left));
    __m128i const b = _mm_loadu_si128(reinterpret_cast<__m128i const *>(&right));
    unsigned const differing = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b))) ^ 0xFFFFU;
    if (differing == 0)
        return 0;
    int const first = std::countr_zero(differing);
    return reinterpret_cast<unsigned char const *>(&left)[first] -
           reinterpret_cast<unsigned char const *>(&right)[first];
}

} // namespace

EventMap::~EventMap()
{
    while (m_entries.GetCount() > 0)
    {
        EventEntry * const entry = m_entries[0];
        m_entries.RemoveAt(0);
        delete entry;
    }
    m_entries.Free();
}

bool EventMap::Register(GUID const & id) noexcept
{
    int const index = Find(id);
    if (index >= 0)
        return false;
    auto * const entry = new (std::nothrow) EventEntry(id);
    if (entry && m_entries.Insert(~index, entry))
        return true;
    delete entry;
    return false;
}

void EventMap::Unregister(GUID const & id) noexcept
{
    int const index = Find(id);
    if (index < 0)
        return;
    EventEntry * const entry = m_entries[index];
    m_entries.RemoveAt(index);
    delete entry;
}

EventEntry * EventMap::Get(GUID const & id) const noexcept
{
    int const index = Find(id);
    return index >= 0 ? m_entries[index] : nullptr;
}

int EventMap::Find(GUID const & id) const noexcept
{
    int low = 0;
    int high = m_entries.GetCount();
    while (low < high)
    {
        int const middle = low + (high - low) / 2;
        int const order = Compare(m_entries[middle]->Id(), id);
        if (order == 0)
            return middle;
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return ~low;
}

} // namespace vek
