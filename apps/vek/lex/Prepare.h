#pragma once

#include "lex/Language.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool
{

/// The text as the lexer is to see it, each character at its place, so that what a language writes otherwise than the
/// lexer comes out right: carriage returns are blanks; an escaped quote ends no string, nor does one of the language's
/// other quotes; numbers with exponents, prefixes and suffixes are digits; a minus sign is an operator's, where the
/// language has such operators.
std::wstring Prepare(std::wstring text, Language const & language);

/// An operator as it is in a prepared text.
std::wstring PrepareOperator(std::wstring text);

/// The value of a whole number as languages write it, octal and hexadecimal ones among the rest; nothing for another
/// text, or a number of more than 64 bits.
std::optional<unsigned long long> IntegerValue(std::wstring_view text);

} // namespace tool
