#include "lexer/NumberText.h"

#include "text/PlainNumber.h"

#include <locale.h>
#include <stdio.h>
#include <wchar.h>

namespace vek
{
namespace
{

// A float holds these whole numbers and powers of ten exactly, so that the nearest float to their quotient is what any
// right scan gives; a quotient of higher precision is never so near to the middle of two floats that its rounding
// could differ.
constexpr int EXACT_INTEGER = 1 << 24;
constexpr int EXACT_POWER = 10;

bool ExactReal(wchar_t const * text, size_t length, float & value) noexcept
{
    PlainNumber number;
    if (number.Scan(text, text + length) != text + length || !number.IsExact() || number.Whole() > EXACT_INTEGER ||
        number.Decimals() > EXACT_POWER)
        return false;
    value = static_cast<float>(number.Value());
    return true;
}

} // namespace

int DecimalValue(wchar_t const * text, size_t length) noexcept
{
    bool const isNegative = text[0] == L'-';
    unsigned int value = 0;
    for (size_t i = isNegative; i < length; ++i)
        value = value * 10 + static_cast<unsigned int>(text[i] - L'0');
    return static_cast<int>(isNegative ? 0 - value : value);
}

int OctalValue(wchar_t const * text, size_t length) noexcept
{
    unsigned int value = 0;
    for (size_t i = 0; i < length && text[i] >= L'0' && text[i] <= L'7'; ++i)
        value = value * 8 + static_cast<unsigned int>(text[i] - L'0');
    return static_cast<int>(value);
}

float RealValue(wchar_t const * text, size_t length) noexcept
{
    float value = 0;
    // Where a host's locale has a decimal comma, the runtime's scan ends at the point.
    if (*localeconv()->decimal_point == '.' && ExactReal(text, length, value))
        return value;
    _snwscanf(text, length, L"%f", &value);
    return value;
}

} // namespace vek
