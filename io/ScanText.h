#pragma once

#include "base/QuietRuntime.h"

#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <wchar.h>

#include <utility>

namespace vek
{

/// The most arguments that a scan can have. The system runtime's bounds-checked scans take no argument list, so that
/// the arguments are handed on one by one: each is a pointer or a size, and has the place of a pointer.
constexpr int MAX_SCAN_ARGUMENTS = 64;

/// Where the character set that starts behind "[" ends: at its "]", or at the format's end.
template <class Char>
Char const * SkipScanSet(Char const * format) noexcept
{
    if (*format == '^')
        ++format;
    if (*format == ']')
        ++format;
    while (*format && *format != ']')
        ++format;
    return format;
}

/// The number of arguments that a scan of the format takes: two for texts and characters, one for anything else.
template <class Char>
int CountScanArguments(Char const * format) noexcept
{
    int count = 0;
    while (*format)
    {
        if (*format++ != '%')
            continue;
        bool suppressed = false;
        for (; (*format >= '0' && *format <= '9') || (*format && wcschr(L"*hlLwzIFN", static_cast<wchar_t>(*format)));
             ++format)
            suppressed |= *format == '*';
        auto const conversion = static_cast<wchar_t>(*format);
        if (conversion == L'\0')
            break;
        ++format;
        if (conversion == L'[')
            format = SkipScanSet(format);
        if (suppressed || count > MAX_SCAN_ARGUMENTS)
            continue;
        count += wcschr(L"cCsS[", conversion) ? 2 : wcschr(L"diouxXpneEfgGaA", conversion) ? 1 : 0;
    }
    return count;
}

inline int ScanString(char const * text, char const * format, auto... arguments)
{
    return sscanf_s(text, format, arguments...);
}
inline int ScanString(wchar_t const * text, wchar_t const * format, auto... arguments)
{
    return swscanf_s(text, format, arguments...);
}
inline int ScanFile(FILE * file, char const * format, auto... arguments)
{
    return fscanf_s(file, format, arguments...);
}
inline int ScanFile(FILE * file, wchar_t const * format, auto... arguments)
{
    return fwscanf_s(file, format, arguments...);
}

/// Calls the scan with the list's arguments; false, without a call, when the format takes too many of them.
template <class Char, class Scan>
bool ScanWithList(Char const * format, va_list list, Scan const & scan)
{
    QuietRuntime const quiet;
    int const count = CountScanArguments(format);
    if (count > MAX_SCAN_ARGUMENTS)
        return false;
    void * arguments[MAX_SCAN_ARGUMENTS] = {};
    for (int i = 0; i < count; ++i)
        arguments[i] = va_arg(list, void *);
    [&]<size_t... Index>(std::index_sequence<Index...>)
    {
        scan(arguments[Index]...);
    }
    (std::make_index_sequence<MAX_SCAN_ARGUMENTS>{});
    return true;
}

} // namespace vek
