#pragma once

#include "VekCore.h"

#include "xml/ListIndex.h"

namespace vek
{

/// An ordered list of counted objects that have a name for life; each entry holds one reference, and T::ReleaseAll
/// gives all of a list's references back.
template <class T>
class NamedList
{
public:
    NamedList() noexcept = default;
    NamedList(NamedList const &) = delete;
    NamedList & operator=(NamedList const &) = delete;
    ~NamedList() { RemoveAll(); }

    int GetCount() const noexcept { return m_entries.GetCount(); }
    bool Has(int index) const noexcept { return m_entries.Has(index); }
    /// The entry at an index, or null.
    T * At(int index) const noexcept { return m_entries.At(index); }
    CVekPointerArray<T> & Entries() noexcept { return m_entries; }

    /// The index of the first entry of that name, or -1.
    int Find(wchar_t const * name) const noexcept
    {
        return FindIf(GivenText(name), [](T const &) { return true; });
    }
    /// The index of the first entry of that name for which the predicate is true, or -1.
    template <class Predicate>
    int FindIf(GivenText const & name, Predicate predicate) const noexcept
    {
        return ListIndex::Find(m_entries, name, predicate);
    }

    /// Appends a new object and takes its reference over. Returns its index; -1, with the message for the case, when
    /// there is no object or no room for it, which ends the object.
    int AppendNew(T * entry, wchar_t const * allocationFailure, wchar_t const * additionFailure) noexcept
    {
        if (!entry)
        {
            VekLogOutput(0, allocationFailure);
            return -1;
        }
        if (!m_entries.Append(entry))
        {
            VekLogOutput(0, additionFailure);
            entry->Release();
            return -1;
        }
        return m_entries.GetCount() - 1;
    }

    /// Removes and releases the entry, which must be there.
    void RemoveAt(int index) noexcept
    {
        T * const entry = m_entries[index];
        ListIndex::Leave(m_entries, index);
        m_entries.RemoveAt(index);
        entry->Release();
    }
    void RemoveAll() noexcept
    {
        ListIndex::Drop(m_entries);
        CVekPointerArray<T> entries;
        entries.Swap(m_entries);
        T::ReleaseAll(entries);
    }

private:
    CVekPointerArray<T> m_entries;
};

/// Gives back the references of a list whose entries hold none of their own kind, and frees its storage.
template <class T>
void ReleaseEach(CVekPointerArray<T> & entries) noexcept
{
    for (int i = 0; i < entries.GetCount(); ++i)
        entries[i]->Release();
    entries.Free();
}

} // namespace vek
