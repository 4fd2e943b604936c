#pragma once

#include "VekText.h"

#include "base/LargeBlocks.h"
#include "base/Pool.h"

#include <limits.h>
#include <stdint.h>
#include <string.h>

#include <bit>
#include <utility>

namespace vek
{

/// What stands in front of a string's characters.
struct StringHeader
{
    int length;
    int capacity;
    int growBy;
};
static_assert(sizeof(StringHeader) == 12);

/// Copies a piece of text that is usually short: a call of the runtime's memcpy costs more than its work then.
inline void CopyShort(void * target, void const * source, size_t bytes) noexcept
{
    auto * const to = static_cast<char *>(target);
    auto const * const from = static_cast<char const *>(source);
    if (bytes > 64)
        memcpy(to, from, bytes);
    else if (bytes >= 16)
    {
        // Pieces of fixed size, which the compiler copies in place; the last one may overlap the one before.
        for (size_t i = 0; i + 16 < bytes; i += 16)
            memcpy(to + i, from + i, 16);
        memcpy(to + bytes - 16, from + bytes - 16, 16);
    }
    else if (bytes >= 8)
    {
        memcpy(to, from, 8);
        memcpy(to + bytes - 8, from + bytes - 8, 8);
    }
    else if (bytes >= 4)
    {
        memcpy(to, from, 4);
        memcpy(to + bytes - 4, from + bytes - 4, 4);
    }
    else
    {
        for (size_t i = 0; i < bytes; ++i)
            to[i] = from[i];
    }
}

/// The inside of CVekString: its blocks, for the string itself and for code that writes a string's characters in place.
template <class T>
struct StringAccess
{
    static constexpr int MAX_CAPACITY = static_cast<int>((0x70000000 - sizeof(StringHeader)) / sizeof(T) - 1);

    static StringHeader & Header(T * text) noexcept { return reinterpret_cast<StringHeader *>(text)[-1]; }

    /// The size of the block for a capacity. Blocks are rounded up, so that a text that grows by small pieces is not
    /// copied each time, although its capacity grows by just what is asked for: to 8 or 16 bytes, from 128 bytes on by
    /// up to an eighth, as the pool does anyway, from 8 KB to the next power of two, from 64 MB by up to a quarter.
    /// Kept: no less than that up to an eighth, the inline appending of programs relies on it.
    static size_t BlockBytes(int capacity) noexcept
    {
        size_t const bytes = sizeof(StringHeader) + (static_cast<size_t>(capacity) + 1) * sizeof(T);
        if (bytes > POOL_LARGEST && bytes <= LARGEST_DOUBLED)
            return std::bit_ceil(bytes);
        size_t const step = bytes <= 64    ? 8
                            : bytes <= 128 ? 16
                                           : std::bit_floor(bytes) / (bytes <= POOL_LARGEST ? 8 : 4);
        return (bytes + step - 1) & ~(step - 1);
    }
    /// Makes an empty text of that capacity; null when there is no memory for it.
    static T * Allocate(size_t capacity, int growBy) noexcept
    {
        if (capacity > static_cast<size_t>(MAX_CAPACITY))
            return nullptr;
        int const units = static_cast<int>(capacity);
        size_t const bytes = BlockBytes(units);
        auto * const header =
            static_cast<StringHeader *>(bytes <= POOL_LARGEST ? PoolAllocate(bytes) : LargeAllocate(bytes));
        if (!header)
            return nullptr;
        *header = {0, units, growBy};
        T * const text = reinterpret_cast<T *>(header + 1);
        text[0] = 0;
        return text;
    }
    /// Raises the capacity as far as the text's block has room for it; false when it doesn't.
    static bool GrowInPlace(T * text, size_t capacity) noexcept
    {
        if (!text || IsEmbedded(text) || capacity > static_cast<size_t>(MAX_CAPACITY))
            return false;
        int const units = static_cast<int>(capacity);
        if (BlockBytes(units) != BlockBytes(Header(text).capacity))
            return false;
        Header(text).capacity = units;
        return true;
    }
    static void Free(T * text) noexcept
    {
        if (!text || IsEmbedded(text))
            return;
        size_t const bytes = BlockBytes(Header(text).capacity);
        bytes <= POOL_LARGEST ? PoolFree(&Header(text), bytes) : LargeFree(&Header(text), bytes);
    }
    static void SetLength(T * text, size_t length) noexcept
    {
        text[length] = 0;
        Header(text).length = static_cast<int>(length);
    }

    /// The grow-by that a larger block takes over.
    static int GrowBy(T * text) noexcept { return text && !IsEmbedded(text) ? Header(text).growBy : 0; }

    /// An object of the library may hold the first block of its string within its own block: one allocation for both.
    /// The string leaves such a block when it needs a larger one, and never frees it; it must not be handed to another
    /// string.
    static size_t EmbeddedBytes(size_t length) noexcept
    {
        return (sizeof(StringHeader) + (length + 1) * sizeof(T) + 3) & ~size_t{3};
    }
    /// Makes the block of a text of that length at the place.
    static CVekString<T> Embed(void * place, T const * source, size_t length) noexcept
    {
        auto * const header = static_cast<StringHeader *>(place);
        *header = {0, static_cast<int>(length), EMBEDDED};
        T * const text = reinterpret_cast<T *>(header + 1);
        CopyShort(text, source, length * sizeof(T));
        SetLength(text, length);
        return CVekString<T>(typename CVekString<T>::Block{text});
    }

    /// The same with a text that others use as well, by Share: it lasts longer than all of them, and is never written
    /// again. Such a string is changed behind MakeOwn only.
    static CVekString<T> EmbedShared(void * place, T const * source, size_t length) noexcept
    {
        CVekString<T> string = Embed(place, source, length);
        Header(string.m_text).growBy = SHARED;
        return string;
    }
    static CVekString<T> Share(T * text) noexcept { return CVekString<T>(typename CVekString<T>::Block{text}); }
    /// Gives a string whose text is shared one of its own; false when memory is exhausted.
    static bool MakeOwn(CVekString<T> & string) noexcept
    {
        if (!string.m_text || Header(string.m_text).growBy != SHARED)
            return true;
        CVekString<T> copy(string);
        if (copy.GetLength() != string.GetLength())
            return false;
        string.Swap(copy);
        return true;
    }
    /// Whether the string's end frees nothing.
    static bool HoldsNoBlock(CVekString<T> const & string) noexcept
    {
        return !string.m_text || IsEmbedded(string.m_text);
    }

    static T *& Text(CVekString<T> & string) noexcept { return string.m_text; }
    /// An empty string that has no block until a text is assigned, as a string that was moved from.
    static CVekString<T> Blockless() noexcept { return CVekString<T>(typename CVekString<T>::Block{nullptr}); }

    /// A string of that length whose characters the caller writes at the place given back; an empty string and null
    /// when there is no memory.
    static CVekString<T> Make(size_t length, T *& place) noexcept
    {
        place = length < static_cast<size_t>(MAX_CAPACITY) ? Allocate(length + 1, 0) : nullptr;
        if (!place)
            return CVekString<T>();
        SetLength(place, length);
        return CVekString<T>(typename CVekString<T>::Block{place});
    }

private:
    static constexpr size_t LARGEST_DOUBLED = 64 * 1024 * 1024;
    // In place of the grow-by.
    static constexpr int EMBEDDED = INT_MIN;
    static constexpr int SHARED = INT_MIN + 1;

    static bool IsEmbedded(T * text) noexcept { return Header(text).growBy <= SHARED; }
};

/// Whether two pieces of memory that are usually short are equal.
inline bool IsSameShort(void const * left, void const * right, size_t bytes) noexcept
{
    auto const * const a = static_cast<char const *>(left);
    auto const * const b = static_cast<char const *>(right);
    auto const isSame = [&](auto word, size_t at)
    {
        auto other = word;
        memcpy(&word, a + at, sizeof word);
        memcpy(&other, b + at, sizeof other);
        return word == other;
    };
    if (bytes > 16)
        return memcmp(a, b, bytes) == 0;
    if (bytes >= 8)
        return isSame(uint64_t{}, 0) && isSame(uint64_t{}, bytes - 8);
    if (bytes >= 4)
        return isSame(uint32_t{}, 0) && isSame(uint32_t{}, bytes - 4);
    return bytes == 0 || (isSame(uint8_t{}, 0) && isSame(uint8_t{}, bytes / 2) && isSame(uint8_t{}, bytes - 1));
}

/// A text of known length.
struct TextPiece
{
    wchar_t const * text;
    int length;
};

/// A new object of copies of one or two texts, which share its block when they are short. It is made by the function
/// construct, from its place and one string for each text. Null when memory is exhausted.
template <class T, class Construct, class... More>
T * MakeInOneBlock(Construct construct, TextPiece first, More... second) noexcept
{
    static_assert(sizeof...(second) <= 1);
    using Access = StringAccess<wchar_t>;
    constexpr int EMBEDDED_UNITS = 128;
    auto const units = [](TextPiece const & piece) { return static_cast<size_t>(piece.length); };
    if (first.length < EMBEDDED_UNITS && ((second.length < EMBEDDED_UNITS) && ...))
    {
        size_t const firstBytes = Access::EmbeddedBytes(units(first));
        size_t const secondBytes = (size_t{0} + ... + Access::EmbeddedBytes(units(second)));
        auto * const block = static_cast<char *>(PoolAllocate(sizeof(T) + firstBytes + secondBytes));
        char * const texts = block + sizeof(T);
        return block ? construct(block, Access::Embed(texts, first.text, units(first)),
                                 Access::Embed(texts + firstBytes, second.text, units(second))...)
                     : nullptr;
    }
    // Without memory for it a copy is empty.
    auto const finish = [construct, length = (units(first) + ... + units(second))](auto &&... texts) -> T *
    {
        bool const isWhole = (static_cast<size_t>(texts.GetLength()) + ...) == length;
        void * const block = isWhole ? PoolAllocate(sizeof(T)) : nullptr;
        return block ? construct(block, std::move(texts)...) : nullptr;
    };
    return finish(CVekString<wchar_t>(first.text, first.length), CVekString<wchar_t>(second.text, second.length)...);
}

} // namespace vek
