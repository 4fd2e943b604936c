#include "xml/XMLEntityNames.h"

#include "xml/XMLMarkup.h"

#include <limits.h>
#include <wchar.h>

namespace vek
{

bool XMLEntityNames::Add(wchar_t const * name) noexcept
{
    GivenText const given(name);
    auto const begin = static_cast<uint32_t>(m_text.Size());
    auto const length = static_cast<uint32_t>(given.length);
    return given.length >= 0 && m_text.Append(name, length) && m_entries.Append({begin, length}) && m_index.Add(given);
}

bool XMLEntityNames::Has(wchar_t const * name, size_t length) const noexcept
{
    if ((length > 0 && *name == L'#') || PredefinedEntity(name, length))
        return true;
    auto const isName = [this, name, length](int position)
    {
        Entry const & entry = m_entries[static_cast<size_t>(position)];
        return entry.length == length && wmemcmp(m_text.Data() + entry.begin, name, length) == 0;
    };
    return length <= INT_MAX && m_index.Find(GivenText(name, static_cast<int>(length)), isName) >= 0;
}

} // namespace vek
