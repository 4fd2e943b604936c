#include "lexer/NumberText.h"

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
constexpr double POWERS_OF_TEN[EXACT_POWER + 1] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

bool ExactReal(wchar_t const * text, size_t length, float & value) noexcept
{
    size_t i = text[0] == L'-' ? 1 : 0;
    int number = 0;
    int digits = 0;
    int decimals = 0;
    bool isBehindPoint = false;
    for (; i < length; ++i)
    {
        if (text[i] == L'.')
        {
            isBehindPoint = true;
            continue;
        }
        number = number * 10 + (text[i] - L'0');
        ++digits;
        decimals += isBehindPoint;
        if (number > EXACT_INTEGER || decimals > EXACT_POWER)
            return false;
    }
    if (digits == 0)
        return false;
    float const real = static_cast<float>(static_cast<double>(number) / POWERS_OF_TEN[decimals]);
    value = text[0] == L'-' ? -real : real;
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
