#pragma once

#include "VekText.h"

#include "base/QuietRuntime.h"
#include "text/Fold.h"

#include <emmintrin.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

namespace vek
{

/// What differs between narrow and wide text: the order of characters, the runtime's routines, and 16 bytes of
/// characters at a time.
template <class T>
struct CharTraits;

template <>
struct CharTraits<char>
{
    // Kept: narrow characters are ordered as signed values, so bytes from 0x80 sort before ASCII.
    static int Order(char unit) noexcept { return static_cast<signed char>(unit); }
    static char From(char unit) noexcept { return unit; }
    static char From(wchar_t unit) noexcept { return static_cast<char>(unit & 0xFF); }

    // The underscore families are the system runtime's own.
    static int Format(char * buffer, size_t size, char const * format, va_list arguments) noexcept
    {
        QuietRuntime const quiet;
        return _vsnprintf(buffer, size, format, arguments);
    }
    static int FormattedLength(char const * format, va_list arguments) noexcept
    {
        QuietRuntime const quiet;
        return _vscprintf(format, arguments);
    }
    static void ToLower(char * text) noexcept { _strlwr(text); }
    static void ToUpper(char * text) noexcept { _strupr(text); }
    // Not atoi: the runtime's narrow and wide forms differ about numbers that are too large; these clamp both.
    static int ToInt(char const * text) noexcept { return strtol(text, nullptr, 10); }
    static unsigned long ToUInt(char const * text, int radix) noexcept { return strtoul(text, nullptr, radix); }
    // NOLINTNEXTLINE(cert-err34-c): what is no number is 0
    static double ToFloat(char const * text) noexcept { return atof(text); }
    static int Open(FILE ** file, char const * name, char const * mode) noexcept
    {
        QuietRuntime const quiet;
        return fopen_s(file, name, mode);
    }

    static __m128i Splat(char unit) noexcept { return _mm_set1_epi8(unit); }
    static __m128i Equal(__m128i a, __m128i b) noexcept { return _mm_cmpeq_epi8(a, b); }
    static __m128i Fold(__m128i units) noexcept { return FoldAsciiBytes(units); }
};

template <>
struct CharTraits<wchar_t>
{
    static int Order(wchar_t unit) noexcept { return unit; }
    // Kept: widening extends the sign, so the bytes 0x80-0xFF become 0xFF80-0xFFFF.
    static wchar_t From(char unit) noexcept { return static_cast<wchar_t>(static_cast<signed char>(unit)); }
    static wchar_t From(wchar_t unit) noexcept { return unit; }

    static int Format(wchar_t * buffer, size_t size, wchar_t const * format, va_list arguments) noexcept
    {
        QuietRuntime const quiet;
        return _vsnwprintf(buffer, size, format, arguments);
    }
    static int FormattedLength(wchar_t const * format, va_list arguments) noexcept
    {
        QuietRuntime const quiet;
        return _vscwprintf(format, arguments);
    }
    static void ToLower(wchar_t * text) noexcept { _wcslwr(text); }
    static void ToUpper(wchar_t * text) noexcept { _wcsupr(text); }
    static int ToInt(wchar_t const * text) noexcept { return wcstol(text, nullptr, 10); }
    static unsigned long ToUInt(wchar_t const * text, int radix) noexcept { return wcstoul(text, nullptr, radix); }
    static double ToFloat(wchar_t const * text) noexcept { return _wtof(text); }
    static int Open(FILE ** file, wchar_t const * name, wchar_t const * mode) noexcept
    {
        QuietRuntime const quiet;
        return _wfopen_s(file, name, mode);
    }

    static __m128i Splat(wchar_t unit) noexcept { return _mm_set1_epi16(static_cast<short>(unit)); }
    static __m128i Equal(__m128i a, __m128i b) noexcept { return _mm_cmpeq_epi16(a, b); }
    static __m128i Fold(__m128i units) noexcept { return FoldAscii(units); }
};

} // namespace vek
