#pragma once

#include "VekText.h"

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

/// Writes the escaped form of the text: the five characters that XML reserves as their entities, a newline as the
/// escaped marker "<EOL>". The place must hold the measured escaped length; no terminator is written.
void Escape(wchar_t const * text, size_t length, wchar_t * place) noexcept;

/// Stores the escaped form of a zero-terminated text (not a part of the target itself); false, with the target
/// unchanged, when memory is exhausted.
bool EscapeTo(wchar_t const * text, CVekString<wchar_t> & target) noexcept;

/// Undoes the escaping, one entity after the other, "&amp;" first.
void Unescape(CVekString<wchar_t> & text) noexcept;

} // namespace vek
