#include "xml/XMLEntityNames.h"

#include "xml/XMLMarkup.h"

#include <limits.h>
#include <wchar.h>

namespace vek
{
namespace
{

// The name of the next reference to an entity that not every document knows; the text's beginning goes up to its end.
XMLNamePiece NextReference(wchar_t const *& text, wchar_t const * end) noexcept
{
    while ((text = wmemchr(text, L'&', static_cast<size_t>(end - text))) != nullptr)
    {
        wchar_t const * const name = ++text;
        while (text < end && *text != L';' && *text != L'&' && *text != L'<' && !IsBlank(*text))
            ++text;
        auto const length = static_cast<size_t>(text - name);
        if (text < end && *text == L';' && length > 0 && *name != L'#' && !PredefinedEntity(name, length))
            return {name, length};
    }
    return {};
}

} // namespace

bool XMLEntityNames::Add(wchar_t const * name, wchar_t const * text, size_t length) noexcept
{
    GivenText const given(name);
    auto const begin = static_cast<uint32_t>(m_text.Size());
    auto const nameLength = static_cast<uint32_t>(given.length);
    size_t const before = m_inEntities.names.Size();
    return given.length >= 0 && AddReferences(text, length, m_inEntities) && m_text.Append(name, nameLength) &&
           m_entries.Append({begin, nameLength, m_inEntities.names.Size() > before}) && m_index.Add(given);
}

bool XMLEntityNames::AddParameter(wchar_t const * text, size_t length) noexcept
{
    return AddReferences(text, length, m_inParameters);
}

bool XMLEntityNames::AddReferences(wchar_t const * text, size_t length, References & references) noexcept
{
    for (wchar_t const * const end = text + length;;)
    {
        XMLNamePiece const name = NextReference(text, end);
        if (!name.text)
            return true;
        if (!references.names.Append(name.text, name.length + 1)) // with its semicolon
            return false;
    }
}

XMLEntityNames::Entry const * XMLEntityNames::Find(XMLNamePiece const & name) const noexcept
{
    auto const isName = [this, &name](int position)
    {
        Entry const & entry = m_entries[static_cast<size_t>(position)];
        return entry.length == name.length && wmemcmp(m_text.Data() + entry.begin, name.text, name.length) == 0;
    };
    int const place =
        name.length <= INT_MAX ? m_index.Find(GivenText(name.text, static_cast<int>(name.length)), isName) : -1;
    return place >= 0 ? &m_entries[static_cast<size_t>(place)] : nullptr;
}

XMLNamePiece XMLEntityNames::FindOpen(References & references) const noexcept
{
    while (references.known < references.names.Size())
    {
        wchar_t const * const name = references.names.Data() + references.known;
        auto const length = static_cast<size_t>(wmemchr(name, L';', references.names.Size() - references.known) - name);
        if (!Find({name, length}))
            return {name, length};
        references.known += length + 1;
    }
    return {};
}

XMLNamePiece XMLEntityNames::FindLost(wchar_t const * text, size_t length) noexcept
{
    for (wchar_t const * const end = text + length;;)
    {
        XMLNamePiece const name = NextReference(text, end);
        if (!name.text)
            return {};
        Entry const * const entry = Find(name);
        XMLNamePiece const lost = !entry ? name : entry->refers ? FindOpen(m_inEntities) : XMLNamePiece();
        if (lost.text)
            return lost;
    }
}

} // namespace vek
