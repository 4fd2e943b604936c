#pragma once

#include "base/Buffer.h"
#include "text/NameIndex.h"

#include <stdint.h>

namespace vek
{

/// A name within a longer text; null for none.
struct XMLNamePiece
{
    wchar_t const * text = nullptr;
    size_t length = 0;
};

/// The names of the entities whose text a document declares, and which ones their texts refer to.
class XMLEntityNames
{
public:
    /// False when memory is exhausted.
    bool Add(wchar_t const * name, wchar_t const * text, size_t length) noexcept;
    /// The text of a parameter entity; likewise.
    bool AddParameter(wchar_t const * text, size_t length) noexcept;
    /// The first reference of a piece of markup to what is not wholly declared. Of an entity that refers to others it
    /// is taken to be so only where no entity's text refers to one that isn't there.
    XMLNamePiece FindLost(wchar_t const * text, size_t length) noexcept;
    /// The first one of the parameter entities' texts.
    XMLNamePiece FindLostInParameters() noexcept { return FindOpen(m_inParameters); }

private:
    struct Entry
    {
        uint32_t begin;
        uint32_t length;
        bool refers;
    };
    /// Names, each with a semicolon behind it, up to where all are known to be declared.
    struct References
    {
        Buffer<wchar_t> names;
        size_t known = 0;
    };

    /// Null for a name that is not declared.
    Entry const * Find(XMLNamePiece const & name) const noexcept;
    static bool AddReferences(wchar_t const * text, size_t length, References & references) noexcept;
    XMLNamePiece FindOpen(References & references) const noexcept;

    Buffer<wchar_t> m_text;
    Buffer<Entry> m_entries;
    NameIndex m_index;
    References m_inEntities;
    References m_inParameters;
};

} // namespace vek
