#pragma once

#include <expat.h>

namespace vek
{

/// The system's code page for an encoding that is neither UTF-8 nor UTF-16; 0 for one that is in no list of
/// ours. docs/xml.md tells which there are.
unsigned int CodePageOf(wchar_t const * name) noexcept;
/// Tells the tokenizer about a code page; false when the system doesn't have it.
bool FillEncoding(unsigned int codePage, XML_Encoding & encoding) noexcept;
/// The character that so many bytes are; -1 for none.
int DecodeCharacter(unsigned int codePage, unsigned char const * bytes, int length) noexcept;
/// The bytes of a character beyond ASCII, and how many they are; 0 for one that the code page lacks.
int EncodeCharacter(unsigned int codePage, wchar_t unit, unsigned char (&bytes)[3]) noexcept;

} // namespace vek
