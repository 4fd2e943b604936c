#include "xml/XMLValueText.h"

#include <locale.h>
#include <stddef.h>
#include <stdio.h>
#include <wchar.h>

namespace vek
{
namespace
{

// A plain decimal number of at most so many digits is exact as an integer, and so is the power of ten that it is
// divided by: the quotient is the nearest number, as the runtime finds it.
constexpr int EXACT_DIGITS = 15;
constexpr double POWERS_OF_TEN[EXACT_DIGITS + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Reads a plain number in front of a comma or the text's end and moves behind it. False for anything else, which is
// left to the runtime.
bool ScanPlainReal(wchar_t const *& text, float & value) noexcept
{
    wchar_t const * at = text;
    while (*at == L' ')
        ++at;
    bool const isNegative = *at == L'-';
    at += isNegative;
    long long number = 0;
    int digits = 0;
    int decimals = 0;
    bool isBehindPoint = false;
    for (; (*at >= L'0' && *at <= L'9') || (*at == L'.' && !isBehindPoint); ++at)
    {
        if (*at == L'.')
        {
            isBehindPoint = true;
            continue;
        }
        if (++digits > EXACT_DIGITS)
            return false;
        number = number * 10 + (*at - L'0');
        decimals += isBehindPoint;
    }
    if (digits == 0 || (*at && *at != L','))
        return false;
    double const real = static_cast<double>(number) / POWERS_OF_TEN[decimals];
    value = static_cast<float>(isNegative ? -real : real);
    text = at;
    return true;
}

bool ScanPlainReals(wchar_t const * text, float (&values)[4]) noexcept
{
    for (float & value : values)
    {
        if (!ScanPlainReal(text, value))
            return false;
        if (!*text++)
            return true;
    }
    return true;
}

} // namespace

wchar_t const * BooleanText(bool value) noexcept
{
    return value ? L"TRUE" : L"FALSE";
}

void PrintInteger(ValueText & text, int value) noexcept
{
    _snwprintf(text, VALUE_TEXT_ROOM, L"%d", value);
}

void PrintReal(ValueText & text, double value) noexcept
{
    _snwprintf(text, VALUE_TEXT_ROOM, L"%f", value);
}

void PrintIntegers(ValueText & text, int first, int second, int third, int fourth) noexcept
{
    _snwprintf(text, VALUE_TEXT_ROOM, L"%d, %d, %d, %d", first, second, third, fourth);
}

void PrintReals(ValueText & text, double first, double second, double third, double fourth) noexcept
{
    _snwprintf(text, VALUE_TEXT_ROOM, L"%f, %f, %f, %f", first, second, third, fourth);
}

void ScanIntegers(wchar_t const * text, int length, int (&values)[4]) noexcept
{
    for (int & value : values)
        value = 0;
    _snwscanf(text, static_cast<size_t>(length), L"%d, %d, %d, %d", &values[0], &values[1], &values[2], &values[3]);
}

void ScanReals(wchar_t const * text, int length, float (&values)[4]) noexcept
{
    for (float & value : values)
        value = 0;
    // Where a host's locale has a decimal comma, the runtime reads and prints one here, too.
    if (*localeconv()->decimal_point == '.' && ScanPlainReals(text, values))
        return;
    for (float & value : values)
        value = 0;
    _snwscanf(text, static_cast<size_t>(length), L"%f, %f, %f, %f", &values[0], &values[1], &values[2], &values[3]);
}

} // namespace vek
