#pragma once

#include <stddef.h>
#include <wchar.h>

namespace vek
{

template <size_t N>
bool BeginsWith(wchar_t const * text, size_t length, wchar_t const (&what)[N]) noexcept
{
    return length >= N - 1 && wmemcmp(text, what, N - 1) == 0;
}

inline bool IsBlank(wchar_t unit) noexcept
{
    return unit == L' ' || unit == L'\n' || unit == L'\t' || unit == L'\r';
}

/// The character of the entity that every document knows by that name; 0 for another name.
wchar_t PredefinedEntity(wchar_t const * name, size_t length) noexcept;

/// The length of the reference that the text begins with, if it is one to a character by its number, whether XML has a
/// place for it or not, or to an entity that every document knows; 0 for none. Its character is stored.
size_t ReadReference(wchar_t const * text, size_t length, unsigned int & character) noexcept;

/// The length of the reference that the text begins with, if it is one that every parser knows: to a character by its
/// number, or to one of the five that have names. 0 for none.
size_t ReferenceLength(wchar_t const * text, size_t length) noexcept;

/// Where characters are written: in text, in a value in double quotes, or where there are no references.
enum class XMLPlace
{
    TEXT,
    VALUE,
    LITERAL
};

/// Whether the unit may not simply be written there.
bool NeedsLook(wchar_t unit, XMLPlace place) noexcept;
/// The length of the text's beginning that can be written anywhere as it is; at times it is told too short.
size_t PlainLength(wchar_t const * text, size_t length) noexcept;

} // namespace vek
