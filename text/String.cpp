#include "VekText.h"

#include "text/Scan.h"
#include "text/Search.h"
#include "text/StringAccess.h"

namespace
{

template <class T>
using Access = vek::StringAccess<T>;

/// A part of a source text, cut to what the source has.
struct Part
{
    size_t start;
    size_t count;
};

template <class T>
Part FindPart(T const * text, int start, int count)
{
    if (!text || start < 0 || count < 0)
        return {0, 0};
    size_t const first = static_cast<size_t>(start);
    size_t const skipped = vek::BoundedLength(text, first);
    if (skipped < first)
        return {0, 0};
    T const * const begin = text + first;
    return {first, count == 0 ? vek::TextLength(begin) : vek::BoundedLength(begin, static_cast<size_t>(count))};
}

template <class T>
Part FindPart(CVekString<T> const & other, int start, int count)
{
    int const length = other.GetLength();
    if (start < 0 || count < 0 || start >= length)
        return {0, 0};
    int const rest = length - start;
    return {static_cast<size_t>(start), static_cast<size_t>(count == 0 || count > rest ? rest : count)};
}

template <class T>
void MakeEmpty(CVekString<T> & string)
{
    T *& text = Access<T>::Text(string);
    if (text)
        Access<T>::SetLength(text, 0);
    else
        text = Access<T>::Allocate(0, 0);
}

// Replaces the contents by characters that may be the string's own; a block that must grow gets growBy + count + 1.
template <class T>
void Store(CVekString<T> & string, T const * source, size_t count, int growBy)
{
    if (count == 0)
        return MakeEmpty(string);
    T *& text = Access<T>::Text(string);
    if (static_cast<size_t>(string.GetCapacity()) > count)
    {
        memmove(text, source, count * sizeof(T));
        return Access<T>::SetLength(text, count);
    }
    int const keptGrowBy = Access<T>::GrowBy(text);
    T * const grown = Access<T>::Allocate(static_cast<size_t>(growBy) + count + 1, keptGrowBy);
    if (!grown)
        return;
    memcpy(grown, source, count * sizeof(T));
    Access<T>::SetLength(grown, count);
    Access<T>::Free(text);
    text = grown;
}

// Appends characters that may be the string's own; a block that must grow gets growBy + length + count + 1.
template <class T>
void Add(CVekString<T> & string, T const * source, size_t count, int growBy)
{
    T *& text = Access<T>::Text(string);
    size_t const length = static_cast<size_t>(string.GetLength());
    if (static_cast<size_t>(string.GetCapacity()) <= length + count)
    {
        size_t const capacity = static_cast<size_t>(growBy) + length + count + 1;
        if (!Access<T>::GrowInPlace(text, capacity))
        {
            T * const grown = Access<T>::Allocate(capacity, Access<T>::GrowBy(text));
            if (!grown)
                return;
            if (text)
                memcpy(grown, text, length * sizeof(T));
            memcpy(grown + length, source, count * sizeof(T));
            Access<T>::SetLength(grown, length + count);
            Access<T>::Free(text);
            text = grown;
            return;
        }
    }
    memmove(text + length, source, count * sizeof(T));
    Access<T>::SetLength(text, length + count);
}

template <class T>
int GrowBy(CVekString<T> & string)
{
    return Access<T>::GrowBy(Access<T>::Text(string));
}

// A string of its own; when there is no memory for it, an empty one.
template <class T>
T * CopyText(T const * source, size_t length)
{
    T * const text = length == 0 ? nullptr : Access<T>::Allocate(length + 1, 0);
    if (!text)
        return Access<T>::Allocate(0, 0);
    memcpy(text, source, length * sizeof(T));
    Access<T>::SetLength(text, length);
    return text;
}

template <class T>
void AppendArguments(CVekString<T> & string, T const * format, va_list arguments)
{
    // Formatted aside first: an argument may be the string's own text, which ends where the new text begins.
    constexpr int SHORT_SIZE = 256;
    T shortText[SHORT_SIZE];
    va_list again;
    va_copy(again, arguments);
    int length = vek::CharTraits<T>::Format(shortText, SHORT_SIZE, format, arguments);
    T * text = shortText;
    T * block = nullptr;
    if (length < 0 || length >= SHORT_SIZE)
    {
        va_list once;
        va_copy(once, again);
        length = vek::CharTraits<T>::FormattedLength(format, once);
        va_end(once);
        block = length > 0 ? Access<T>::Allocate(static_cast<size_t>(length), 0) : nullptr;
        text = block;
        if (block)
            length = vek::CharTraits<T>::Format(block, static_cast<size_t>(length) + 1, format, again);
    }
    va_end(again);
    // A formatted zero ends the text. The block grows to just the text, without grow-by.
    if (text && length >= 0)
        Add(string, text, vek::BoundedLength(text, static_cast<size_t>(length)), 0);
    Access<T>::Free(block);
}

template <class T>
bool IsAnyOf(T unit, T const * set, bool caseSensitive)
{
    T const wanted = caseSensitive ? unit : vek::FoldAscii(unit);
    for (; *set; ++set)
        if ((caseSensitive ? *set : vek::FoldAscii(*set)) == wanted)
            return true;
    return false;
}

} // namespace

template <class T>
CVekString<T>::CVekString() noexcept : m_text(Access<T>::Allocate(0, 0))
{
}

template <class T>
CVekString<T>::CVekString(T const * text) noexcept : m_text(CopyText(text, text ? vek::TextLength(text) : 0))
{
}

template <class T>
CVekString<T>::CVekString(T const * text, int length) noexcept
    : m_text(CopyText(text, text && length > 0 ? static_cast<size_t>(length) : 0))
{
}

template <class T>
CVekString<T>::CVekString(CVekString const & other) noexcept
    : m_text(CopyText(static_cast<T const *>(other), static_cast<size_t>(other.GetLength())))
{
}

template <class T>
CVekString<T>::~CVekString()
{
    Access<T>::Free(m_text);
}

template <class T>
T const * CVekString<T>::NoText() noexcept
{
    static constexpr T NOTHING[1] = {};
    return NOTHING;
}

template <class T>
bool CVekString<T>::Reserve(int capacity, bool keep) noexcept
{
    if (capacity < 0)
        return false;
    T * const text = Access<T>::Allocate(static_cast<size_t>(capacity), capacity == 0 ? 0 : GrowBy(*this));
    if (!text)
        return false;
    if (keep && capacity > 0)
    {
        int const length = GetLength() < capacity ? GetLength() : capacity - 1;
        memcpy(text, static_cast<T const *>(*this), static_cast<size_t>(length) * sizeof(T));
        Access<T>::SetLength(text, static_cast<size_t>(length));
    }
    Access<T>::Free(m_text);
    m_text = text;
    return true;
}

template <class T>
void CVekString<T>::Assign(T const * text) noexcept
{
    // A text that is just assigned gets no extra room: grow-by counts in AssignPart only.
    Store(*this, text, text ? vek::TextLength(text) : 0, 0);
}

template <class T>
void CVekString<T>::Assign(CVekString const & other) noexcept
{
    Store(*this, static_cast<T const *>(other), static_cast<size_t>(other.GetLength()), 0);
}

template <class T>
void CVekString<T>::AssignPart(T const * text, int start, int count) noexcept
{
    Part const part = FindPart(text, start, count);
    Store(*this, text + part.start, part.count, GrowBy(*this));
}

template <class T>
void CVekString<T>::AssignPart(CVekString const & other, int start, int count) noexcept
{
    Part const part = FindPart(other, start, count);
    Store(*this, other + part.start, part.count, GrowBy(*this));
}

template <class T>
void CVekString<T>::AppendAny(T const * text, int start, int count) noexcept
{
    Part const part = FindPart(text, start, count);
    if (part.count > 0)
        Add(*this, text + part.start, part.count, GrowBy(*this));
}

template <class T>
void CVekString<T>::AppendString(CVekString const & other) noexcept
{
    if (!other.IsEmpty())
        Add(*this, static_cast<T const *>(other), static_cast<size_t>(other.GetLength()), GrowBy(*this));
}

template <class T>
void CVekString<T>::AppendFormat(T const * format, ...) noexcept
{
    if (!format)
        return;
    va_list arguments;
    va_start(arguments, format);
    AppendArguments(*this, format, arguments);
    va_end(arguments);
}

template <class T>
int CVekString<T>::Compare(T const * text, bool caseSensitive) const noexcept
{
    if (!text)
        return IsEmpty() ? 0 : -1;
    // Kept: the argument is the left operand, so the result is negative when it sorts before this string.
    return vek::CompareTexts(text, static_cast<T const *>(*this), SIZE_MAX, caseSensitive);
}

template <class T>
int CVekString<T>::Compare(CVekString const & other, bool caseSensitive) const noexcept
{
    size_t const shorter = static_cast<size_t>(other.GetLength() < GetLength() ? other.GetLength() : GetLength());
    size_t const same = vek::EqualBlocks(static_cast<T const *>(other), static_cast<T const *>(*this), shorter);
    return vek::CompareTexts(other + same, *this + same, SIZE_MAX, caseSensitive);
}

template <class T>
int CVekString<T>::Find(T const * pattern, int start, bool caseSensitive) const noexcept
{
    int const length = GetLength();
    int const first = start < 0 ? 0 : start;
    if (!pattern || !*pattern || first >= length)
        return -1;
    size_t const patternLength = vek::BoundedLength(pattern, static_cast<size_t>(length) + 1);
    if (patternLength > static_cast<size_t>(length - first))
        return -1;
    return vek::PatternSearch<T>(pattern, static_cast<int>(patternLength), caseSensitive).FindIn(m_text, length, first);
}

template <class T>
int CVekString<T>::ReverseFind(T const * pattern, int start, bool caseSensitive) const noexcept
{
    int const length = GetLength();
    if (!pattern || !*pattern || start < -1 || start >= length)
        return -1;
    size_t const patternLength = vek::BoundedLength(pattern, static_cast<size_t>(length) + 1);
    if (patternLength > static_cast<size_t>(length))
        return -1;
    vek::PatternSearch<T> const search(pattern, static_cast<int>(patternLength), caseSensitive);
    int const last = length - static_cast<int>(patternLength);
    for (int position = start == -1 || start > last ? last : start; position >= 0; --position)
        if (search.MatchesAt(m_text + position))
            return position;
    return -1;
}

template <class T>
int CVekString<T>::FindOneOf(T const * set, int start, bool caseSensitive) const noexcept
{
    if (!set)
        return -1;
    int const length = GetLength();
    for (int position = start < 0 ? 0 : start; position < length; ++position)
        if (IsAnyOf(m_text[position], set, caseSensitive))
            return position;
    return -1;
}

template <class T>
int CVekString<T>::ReverseFindOneOf(T const * set, int start, bool caseSensitive) const noexcept
{
    int const length = GetLength();
    if (!set || start < -1 || start >= length)
        return -1;
    for (int position = start == -1 ? length - 1 : start; position >= 0; --position)
        if (IsAnyOf(m_text[position], set, caseSensitive))
            return position;
    return -1;
}

template <class T>
void CVekString<T>::MoveCharacters(int from, int to, int count) noexcept
{
    int const length = GetLength();
    if (from < 0 || to < 0 || count <= 0 || from == to || from >= length)
        return;
    bool const isTail = count >= length - from;
    int const moved = isTail ? length - from : count;
    if (to > GetCapacity() - moved)
        return;
    // A gap that opens between the old end and the moved characters holds terminators.
    for (int i = length; i < to; ++i)
        m_text[i] = 0;
    memmove(m_text + to, m_text + from, static_cast<size_t>(moved) * sizeof(T));
    // A piece from the middle never changes the length: what it moves past the end is cut.
    Access<T>::SetLength(m_text, static_cast<size_t>(isTail ? to + moved : length));
}

template class CVekString<char>;
template class CVekString<wchar_t>;
