#pragma once

namespace vek
{

/// Room for the text of any value: four doubles of 309 digits before the point and 6 behind it, with ", " between them.
constexpr int VALUE_TEXT_ROOM = 1280;
using ValueText = wchar_t[VALUE_TEXT_ROOM];

wchar_t const * BooleanText(bool value) noexcept;
void PrintInteger(ValueText & text, int value) noexcept;
void PrintReal(ValueText & text, double value) noexcept;
void PrintIntegers(ValueText & text, int first, int second, int third, int fourth) noexcept;
void PrintReals(ValueText & text, double first, double second, double third, double fourth) noexcept;

/// Scan four numbers separated by commas; those from the first one on that the text doesn't have are 0.
void ScanIntegers(wchar_t const * text, int length, int (&values)[4]) noexcept;
void ScanReals(wchar_t const * text, int length, float (&values)[4]) noexcept;

} // namespace vek
