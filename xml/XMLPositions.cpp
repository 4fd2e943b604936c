#include "xml/XMLPositions.h"

#include <string.h>

namespace vek
{
namespace
{

constexpr size_t FIRST_SLOTS = 64;
constexpr unsigned int NOWHERE = 0; // no value begins with the source

} // namespace

size_t XMLPositions::Home(IVekXMLElement const * element) const noexcept
{
    auto const address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(element) >> 3);
    return (address * 0x9E3779B1U >> 6) & (m_slots.Size() - 1);
}

bool XMLPositions::Begin(IVekXMLElement const * element, VekXMLPosition const & position) noexcept
{
    if (!element)
        return m_open.Append(0);
    auto const valueCount = static_cast<uint32_t>(m_values.Size());
    if (!m_records.Append({element, position, valueCount, 0, 0}))
        return false;
    auto const record = static_cast<uint32_t>(m_records.Size());
    return m_open.Append(record) && Enter(record);
}

bool XMLPositions::Enter(uint32_t record) noexcept
{
    uint32_t first = record;
    if (m_records.Size() * 2 > m_slots.Size())
    {
        size_t const size = m_slots.Empty() ? FIRST_SLOTS : m_slots.Size() * 2;
        m_slots.Clear();
        uint32_t * const slots = m_slots.Extend(size);
        if (!slots)
            return false;
        memset(slots, 0, size * sizeof *slots);
        first = 1;
    }
    for (; first <= record; ++first)
    {
        size_t slot = Home(m_records[first - 1].element);
        while (m_slots[slot])
            slot = (slot + 1) & (m_slots.Size() - 1);
        m_slots[slot] = first;
    }
    return true;
}

bool XMLPositions::AddValue(int firstIndex, XMLRange value) noexcept
{
    Record & record = m_records.Back();
    record.firstIndex = firstIndex;
    ++record.valueCount;
    return m_values.Append(value);
}

void XMLPositions::End(unsigned int end) noexcept
{
    if (m_open.Empty())
        return;
    if (uint32_t const record = m_open.Back())
        m_records[record - 1].position.end = end;
    m_open.PopBack();
}

XMLPositions::Record const * XMLPositions::RecordOf(IVekXMLElement const * element) const noexcept
{
    if (m_slots.Empty())
        return nullptr;
    for (size_t slot = Home(element); m_slots[slot]; slot = (slot + 1) & (m_slots.Size() - 1))
    {
        if (m_records[m_slots[slot] - 1].element == element)
            return &m_records[m_slots[slot] - 1];
    }
    return nullptr;
}

bool XMLPositions::Find(IVekXMLElement const * element, VekXMLPosition & position) const noexcept
{
    Record const * const record = RecordOf(element);
    if (record)
        position = record->position;
    return record != nullptr;
}

bool XMLPositions::FindValue(IVekXMLElement const * element, int index, XMLRange & value) const noexcept
{
    Record const * const record = RecordOf(element);
    if (!record || index < record->firstIndex)
        return false;
    auto const place = static_cast<uint32_t>(index - record->firstIndex);
    if (place >= record->valueCount || m_values[record->firstValue + place].offset == NOWHERE)
        return false;
    value = m_values[record->firstValue + place];
    return true;
}

} // namespace vek
