#pragma once

#include <stddef.h>

namespace vek
{

/// A piece of UTF-8 that a tokenizer has found to be well-formed.
struct XMLRawText
{
    unsigned char const * bytes;
    size_t length;
    size_t readable; // bytes from the first one on, those behind the piece included
};

/// Units that are written behind a text at most.
constexpr size_t RAW_TEXT_ROOM = 16;

/// Writes the text as a tokenizer hands it out: line ends as newlines and, unless it is the inside of a CDATA section,
/// the characters of references, which are such as every parser knows. Returns its length, which is at most the
/// piece's; the place has RAW_TEXT_ROOM units more.
size_t ReadRawText(XMLRawText const & raw, bool hasReferences, wchar_t * place) noexcept;

} // namespace vek
