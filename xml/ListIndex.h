#pragma once

#include "VekCore.h"

#include "base/ArrayAttachment.h"
#include "text/NameIndex.h"
#include "text/Names.h"

#include <stdint.h>

#include <algorithm>
#include <new>

namespace vek
{

/// How an index meets entries whose names last until the list's owner changes them.
struct LastingNames
{
    template <class T>
    static CVekString<wchar_t> const & Of(T const & entry) noexcept
    {
        return entry.GetName();
    }
    /// Whether the entry can be found by the name that it has now.
    template <class T>
    static bool Enter(T &) noexcept
    {
        return true;
    }
};

/// What a long list of named entries is searched through; it goes with the list's storage. It is made when a walk has
/// found nothing among the first entries, and filled when such walks have cost as much as that: a list that is searched
/// once, or changed between searches, costs no more than the walks, and adding only what is not there yet takes linear
/// time. The list's owner tells what becomes of entries that were there before; appended ones are seen.
class ListIndex
{
public:
    /// The index of the first entry of that name for which the predicate is true, or -1. Null entries are skipped.
    template <class T, class Predicate, class Names = LastingNames>
    static int Find(CVekPointerArray<T> const & entries, GivenText const & name, Predicate predicate,
                    Names names = {}) noexcept;

    /// The list's index; null while it has none.
    static ListIndex * Of(CVekPointerArrayBase const & entries) noexcept
    {
        void ** const place = ArrayAttachment::Place(entries);
        return place ? static_cast<ListIndex *>(*place) : nullptr;
    }
    /// To be called before the entry is removed; an index outside the list does nothing.
    static void Leave(CVekPointerArrayBase const & entries, int leaving) noexcept
    {
        ListIndex * const index = Of(entries);
        if (!index || leaving < 0 || leaving >= index->m_names.Count())
            return;
        if (leaving == index->m_names.Count() - 1)
            index->m_names.ForgetLast();
        else
            index->Clear();
    }
    /// Names or places of entries have changed.
    static void Change(CVekPointerArrayBase const & entries) noexcept
    {
        if (ListIndex * const index = Of(entries))
            index->Clear();
    }
    /// Deletes the index. To be called before the storage is freed or handed to another list.
    static void Drop(CVekPointerArrayBase const & entries) noexcept
    {
        if (ListIndex * const index = Of(entries))
        {
            delete index;
            *ArrayAttachment::Place(entries) = nullptr;
        }
    }

    /// Forgets everything when the time is not that of the call before.
    void KeepTime(uint32_t time) noexcept
    {
        if (m_time != time)
            Clear();
        m_time = time;
    }

private:
    // Where a list begins to be long; what entering a name costs, in steps of a walk.
    static constexpr int WALKED = ArrayAttachment::SMALL;
    static constexpr int64_t STEPS_OF_ENTERING = 4;

    static ListIndex * Make(CVekPointerArrayBase const & entries) noexcept
    {
        ListIndex * index = Of(entries);
        if (!index)
            *ArrayAttachment::Place(entries) = index = new (std::nothrow) ListIndex;
        return index;
    }
    void Clear() noexcept
    {
        m_names.Clear();
        m_walked = 0;
    }
    template <class T, class Names>
    bool Update(CVekPointerArray<T> const & entries, Names names) noexcept;

    NameIndex m_names;
    int64_t m_walked = 0;
    uint32_t m_time = 0;
};

template <class T, class Predicate, class Names>
int ListIndex::Find(CVekPointerArray<T> const & entries, GivenText const & name, Predicate predicate,
                    Names names) noexcept
{
    SoughtName const sought(name);
    auto const isMatch = [&](int index)
    {
        T const * const entry = entries[index];
        return entry && sought.Is(names.Of(*entry)) && predicate(*entry);
    };
    int const count = entries.GetCount();
    int const front = std::min(count, WALKED);
    for (int i = 0; i < front; ++i)
    {
        if (isMatch(i))
            return i;
    }
    if (front == count)
        return -1;
    // Empty names are not entered.
    ListIndex * const index = name.length != 0 ? Make(entries) : nullptr;
    if (index && index->Update(entries, names))
        return index->m_names.Find(name, isMatch);
    for (int i = front; i < count; ++i)
    {
        if (isMatch(i))
            return i;
    }
    return -1;
}

// Brings the index up to the list's end; false when it can't be used.
template <class T, class Names>
bool ListIndex::Update(CVekPointerArray<T> const & entries, Names names) noexcept
{
    int const count = entries.GetCount();
    if (m_names.Count() > count)
        Clear();
    m_walked += count;
    if (m_walked < STEPS_OF_ENTERING * (count - m_names.Count()))
        return false;
    while (m_names.Count() < count)
    {
        T * const entry = entries[m_names.Count()];
        if (!entry)
        {
            m_names.Skip();
            continue;
        }
        bool const isEntered = names.Enter(*entry);
        CVekString<wchar_t> const & name = names.Of(*entry);
        if (isEntered && name.IsEmpty())
            m_names.Skip();
        else if (!isEntered || !m_names.Add(name))
        {
            m_walked = 0;
            return false;
        }
    }
    return true;
}

} // namespace vek
