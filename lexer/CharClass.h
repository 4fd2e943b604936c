#pragma once

#include <stdint.h>

namespace vek
{

/// What a character is to the lexer. Everything that has no bit here is a character of operators.
enum CharClass : uint8_t
{
    CLASS_OPERATOR = 0,
    CLASS_WORD = 1, // letters and the underscore
    CLASS_DIGIT = 2,
    CLASS_BLANK = 4,
    CLASS_MINUS = 8,
    CLASS_QUOTE = 16,

    CLASS_ENDS_RUN = CLASS_WORD | CLASS_DIGIT | CLASS_BLANK
};

constexpr unsigned int CLASSED_UNITS = 128;

struct CharClasses
{
    uint8_t of[CLASSED_UNITS] = {};

    constexpr CharClasses()
    {
        for (int letter = 0; letter < 26; ++letter)
            of['a' + letter] = of['A' + letter] = CLASS_WORD;
        of[static_cast<int>('_')] = CLASS_WORD;
        for (int digit = 0; digit < 10; ++digit)
            of['0' + digit] = CLASS_DIGIT;
        // Kept: the bell is a blank, the carriage return is not: hosts register it as an operator.
        of[static_cast<int>(' ')] = of[static_cast<int>('\n')] = of[static_cast<int>('\t')] =
            of[static_cast<int>('\a')] = CLASS_BLANK;
        of[static_cast<int>('-')] = CLASS_MINUS;
        of[static_cast<int>('"')] = CLASS_QUOTE;
    }
};

inline constexpr CharClasses CHAR_CLASSES;

constexpr uint8_t ClassOf(wchar_t unit) noexcept
{
    return unit < CLASSED_UNITS ? CHAR_CLASSES.of[unit] : static_cast<uint8_t>(CLASS_OPERATOR);
}

} // namespace vek
