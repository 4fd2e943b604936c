#pragma once

#include "VekText.h"

#include "base/Buffer.h"

#include <stddef.h>

namespace vek
{

/// The length of a text and the length that it has once escaped; they are equal when nothing needs escaping.
struct EscapeMeasure
{
    size_t length;
    size_t escapedLength;
};

/// Measures a zero-terminated text in one pass.
EscapeMeasure MeasureEscape(wchar_t const * text) noexcept;

/// The escaped form of a text: the five characters that XML reserves as their entities, a newline as the escaped marker
/// "<EOL>". A text that needs no escaping is used where it stands.
class EscapedText
{
public:
    /// Escapes a zero-terminated text; false when memory is exhausted or the form would be too long for a string.
    bool Make(wchar_t const * text) noexcept;
    /// The same, but a newline stays one, and a text that looks like the marker is told from it.
    bool MakeExact(wchar_t const * text) noexcept;
    /// Not terminated. Valid as long as this object, or until the next text, and the text that was given.
    wchar_t const * Text() const noexcept { return m_text; }
    int Length() const noexcept { return m_length; }

private:
    Buffer<wchar_t> m_scratch;
    wchar_t const * m_text = nullptr;
    int m_length = 0;
};

/// Stores the escaped form of a zero-terminated text (not a part of the target itself); false, with the target
/// unchanged, when memory is exhausted.
bool EscapeTo(wchar_t const * text, CVekString<wchar_t> & target) noexcept;

/// Undoes the escaping, one entity after the other, "&amp;" first.
void Unescape(CVekString<wchar_t> & text) noexcept;

} // namespace vek
