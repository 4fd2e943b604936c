#pragma once

#include "base/Buffer.h"
#include "text/NameHash.h"

#include <stddef.h>
#include <stdint.h>

namespace vek
{

/// A text that objects of one stretch of a pool's row share.
struct XMLSharedText
{
    wchar_t * text;
    uint32_t stretch; // 0 for none
};

/// The attribute names of one parse. The tokenizer hands out the same pointer for each known name, so that a name's
/// length and its identity without regard to case are found by address; an element that repeats a name is seen in one
/// step, however many attributes it has.
class XMLNameCache
{
public:
    /// A known name; valid until the next call of Find or Add.
    struct Name
    {
        wchar_t const * text;
        uint32_t length;
        uint32_t foldedId;
        XMLSharedText shared;
    };

    /// The name at that address, measured on first sight; the text must stay where it is. Null when memory is
    /// exhausted.
    Name * Find(wchar_t const * text) noexcept;
    /// The identity of a name that does not come from the tokenizer; false when memory is exhausted.
    bool Add(wchar_t const * text, size_t length, uint32_t & foldedId) noexcept;

    /// Begins the next element.
    void BeginElement() noexcept { ++m_element; }
    /// True for the first name of this identity in the element.
    bool MarkUsed(uint32_t foldedId) noexcept;

private:
    struct Folded
    {
        wchar_t const * text;
        uint32_t length;
        uint32_t hash;
        uint32_t element; // the last element that used it
    };

    bool GrowPointers() noexcept;
    bool GrowFolded() noexcept;
    size_t PointerSlot(wchar_t const * text) const noexcept;

    Buffer<Name> m_names; // an open-addressing table, its size a power of two; an empty slot has no text
    size_t m_nameCount = 0;
    Buffer<Folded> m_folded;
    Buffer<uint32_t> m_foldedSlots; // likewise; an empty slot is 0, others index m_folded from 1
    uint32_t m_element = 0;
    NameHash m_hash;
};

} // namespace vek
