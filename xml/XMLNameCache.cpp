#include "xml/XMLNameCache.h"

#include "text/Fold.h"

#include <limits.h>
#include <wchar.h>

namespace vek
{
namespace
{

constexpr size_t FIRST_SLOTS = 64;

template <class T>
bool MakeSlots(Buffer<T> & slots, size_t count) noexcept
{
    slots.Clear();
    T * const place = slots.Extend(count);
    if (place)
        memset(static_cast<void *>(place), 0, count * sizeof(T));
    return place != nullptr;
}

} // namespace

size_t XMLNameCache::PointerSlot(wchar_t const * text) const noexcept
{
    auto const address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(text) >> 1);
    return (address * 0x9E3779B1U >> 8) & (m_names.Size() - 1);
}

XMLNameCache::Name * XMLNameCache::Find(wchar_t const * text) noexcept
{
    if ((m_nameCount + 1) * 2 > m_names.Size() && !GrowPointers())
        return nullptr;
    size_t slot = PointerSlot(text);
    for (; m_names[slot].text; slot = (slot + 1) & (m_names.Size() - 1))
    {
        if (m_names[slot].text == text)
            return &m_names[slot];
    }
    size_t const length = wcslen(text);
    uint32_t foldedId = 0;
    if (!Add(text, length, foldedId))
        return nullptr;
    ++m_nameCount;
    m_names[slot] = {text, static_cast<uint32_t>(length), foldedId, {nullptr, 0}};
    return &m_names[slot];
}

bool XMLNameCache::Add(wchar_t const * text, size_t length, uint32_t & foldedId) noexcept
{
    if (length > INT_MAX || ((m_folded.Size() + 1) * 2 > m_foldedSlots.Size() && !GrowFolded()))
        return false;
    uint32_t const hash = m_hash(text, length);
    size_t slot = hash & (m_foldedSlots.Size() - 1);
    for (; m_foldedSlots[slot]; slot = (slot + 1) & (m_foldedSlots.Size() - 1))
    {
        foldedId = m_foldedSlots[slot] - 1;
        Folded const & known = m_folded[foldedId];
        if (known.hash == hash &&
            EqualsNoCase(known.text, static_cast<int>(known.length), text, static_cast<int>(length)))
            return true;
    }
    foldedId = static_cast<uint32_t>(m_folded.Size());
    if (!m_folded.Append({text, static_cast<uint32_t>(length), hash, m_element - 1}))
        return false;
    m_foldedSlots[slot] = foldedId + 1;
    return true;
}

bool XMLNameCache::MarkUsed(uint32_t foldedId) noexcept
{
    bool const first = m_folded[foldedId].element != m_element;
    m_folded[foldedId].element = m_element;
    return first;
}

bool XMLNameCache::GrowPointers() noexcept
{
    Buffer<Name> old;
    if (!old.Append(m_names.Data(), m_names.Size()) || !MakeSlots(m_names, old.Size() ? old.Size() * 2 : FIRST_SLOTS))
        return false;
    for (size_t i = 0; i < old.Size(); ++i)
    {
        if (!old[i].text)
            continue;
        size_t slot = PointerSlot(old[i].text);
        while (m_names[slot].text)
            slot = (slot + 1) & (m_names.Size() - 1);
        m_names[slot] = old[i];
    }
    return true;
}

bool XMLNameCache::GrowFolded() noexcept
{
    if (!MakeSlots(m_foldedSlots, m_foldedSlots.Size() ? m_foldedSlots.Size() * 2 : FIRST_SLOTS))
        return false;
    for (size_t i = 0; i < m_folded.Size(); ++i)
    {
        size_t slot = m_folded[i].hash & (m_foldedSlots.Size() - 1);
        while (m_foldedSlots[slot])
            slot = (slot + 1) & (m_foldedSlots.Size() - 1);
        m_foldedSlots[slot] = static_cast<uint32_t>(i + 1);
    }
    return true;
}

} // namespace vek
