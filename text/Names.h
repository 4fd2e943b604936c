#pragma once

#include "VekCore.h"
#include "VekText.h"

#include "text/Fold.h"
#include "text/Scan.h"

#include <limits.h>

namespace vek
{

/// A name or text that a caller gave, measured once; null counts as empty.
struct GivenText
{
    explicit GivenText(wchar_t const * given) noexcept : text(given ? given : L""), length(Measure(text)) {}
    GivenText(wchar_t const * given, int givenLength) noexcept : text(given), length(givenLength) {}
    explicit GivenText(CVekString<wchar_t> const & string) noexcept : text(string), length(string.GetLength()) {}

    wchar_t const * text;
    int length; // -1 for one too long for any string

private:
    static int Measure(wchar_t const * text) noexcept
    {
        size_t const length = TextLength(text);
        return length < INT_MAX / sizeof(wchar_t) ? static_cast<int>(length) : -1;
    }
};

/// A new object made from a name, its length and whatever else it takes; null when memory for it or its name is
/// exhausted.
template <class T, class... More>
T * NewNamed(GivenText const & name, More... more) noexcept
{
    T * const object = name.length < 0 ? nullptr : new T(name.text, name.length, more...);
    if (!object || object->GetName().GetLength() == name.length)
        return object;
    delete object;
    return nullptr;
}

/// Stores a copy of the text; false, with the target unchanged, when memory is exhausted. The text may be the target's
/// own.
inline bool StoreText(GivenText const & given, CVekString<wchar_t> & target) noexcept
{
    if (given.length < 0)
        return false;
    CVekString<wchar_t> copy(given.text, given.length);
    if (copy.GetLength() != given.length)
        return false;
    target.Swap(copy);
    return true;
}

/// A name to be found, without regard to the case of ASCII letters.
class SoughtName
{
public:
    explicit SoughtName(GivenText const & name) noexcept
        : m_name(name), m_first(FoldAscii(name.text[0])),
          m_last(FoldAscii(name.text[name.length > 0 ? name.length - 1 : 0]))
    {
    }

    /// Names of one list tend to begin alike: their ends tell most of them apart.
    bool Is(CVekString<wchar_t> const & candidate) const noexcept
    {
        int const length = candidate.GetLength();
        if (length != m_name.length)
            return false;
        wchar_t const * const text = candidate;
        return length == 0 || (FoldAscii(text[0]) == m_first && FoldAscii(text[length - 1]) == m_last &&
                               EqualsNoCase(text, m_name.text, length));
    }

private:
    GivenText m_name;
    wchar_t m_first;
    wchar_t m_last;
};

/// The index of the first entry of that name, or -1. Null entries are skipped.
template <class T>
int FindName(CVekPointerArray<T> const & entries, GivenText const & name) noexcept
{
    SoughtName const sought(name);
    for (int i = 0; i < entries.GetCount(); ++i)
    {
        T const * const entry = entries[i];
        if (entry && sought.Is(entry->T::GetName()))
            return i;
    }
    return -1;
}

} // namespace vek
