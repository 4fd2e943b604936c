#pragma once

#include <stddef.h>

namespace vek
{

/// The value of a decimal number, with or without minus sign: what the runtime's "%d" gives, the low 32 bits of one
/// that is too large; 0 for a lone minus sign.
int DecimalValue(wchar_t const * text, size_t length) noexcept;

/// The value of the octal digits at the beginning, as "%o" gives it; 0 when there are none.
int OctalValue(wchar_t const * text, size_t length) noexcept;

/// What "%f" gives for digits with one point and perhaps a minus sign; 0 when there is no digit.
float RealValue(wchar_t const * text, size_t length) noexcept;

} // namespace vek
