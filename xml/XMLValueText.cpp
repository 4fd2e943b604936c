#include "xml/XMLValueText.h"

#include "text/PlainNumber.h"

#include <locale.h>
#include <stddef.h>
#include <stdio.h>
#include <wchar.h>

namespace vek
{
namespace
{

// Reads plain numbers with commas between them. False for anything else, which is left to the runtime.
bool ScanPlainReals(wchar_t const * text, wchar_t const * end, float (&values)[4]) noexcept
{
    for (float & value : values)
    {
        while (text != end && *text == L' ')
            ++text;
        PlainNumber number;
        text = number.Scan(text, end);
        bool const isEnd = text == end || !*text;
        if (!number.IsExact() || (!isEnd && *text != L','))
            return false;
        value = static_cast<float>(number.Value());
        if (isEnd)
            return true;
        ++text;
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
    if (*localeconv()->decimal_point == '.' && ScanPlainReals(text, text + length, values))
        return;
    for (float & value : values)
        value = 0;
    _snwscanf(text, static_cast<size_t>(length), L"%f, %f, %f, %f", &values[0], &values[1], &values[2], &values[3]);
}

} // namespace vek
