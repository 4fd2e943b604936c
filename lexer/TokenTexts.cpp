#include "lexer/TokenTexts.h"

#include <string.h>

namespace vek
{

TokenTexts::~TokenTexts()
{
    for (size_t i = 0; i < m_stores.Size(); ++i)
        PoolFree(m_stores[i].units, m_stores[i].count * sizeof(wchar_t));
}

wchar_t const * TokenTexts::CopyAny(wchar_t const * text, size_t length) noexcept
{
    if (length >= INT_MAX)
        return nullptr;
    size_t const units = length + 1;
    // A long text gets a store of its own, so that the room in the other one is not lost.
    bool const isOwn = units > STORE_UNITS / 4;
    if (!isOwn && units > m_roomUnits && !NewRoom())
        return nullptr;
    wchar_t * const copy = isOwn ? NewStore(units) : TakeRoom(units);
    if (!copy)
        return nullptr;
    if (length > 0)
        memcpy(copy, text, length * sizeof(wchar_t));
    copy[length] = 0;
    return copy;
}

bool TokenTexts::NewRoom() noexcept
{
    wchar_t * const store = NewStore(STORE_UNITS);
    if (!store)
        return false;
    m_room = store;
    m_roomUnits = STORE_UNITS;
    return true;
}

wchar_t * TokenTexts::NewStore(size_t units) noexcept
{
    if (!m_stores.Reserve(m_stores.Size() + 1))
        return nullptr;
    auto * const store = static_cast<wchar_t *>(PoolAllocate(units * sizeof(wchar_t)));
    if (store)
        m_stores.Append({store, units});
    return store;
}

} // namespace vek
