#pragma once

#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <wchar.h>

namespace vek
{

// The system runtime's formatting under one name per width: "%s" in a wide format is wide text.

/// The characters that the text needs without its terminator; negative when it can't be formatted.
inline int FormattedLength(char const * format, va_list arguments)
{
    return _vscprintf(format, arguments);
}
inline int FormattedLength(wchar_t const * format, va_list arguments)
{
    return _vscwprintf(format, arguments);
}

/// Formats into a buffer of size characters; the terminator is left out where it doesn't fit.
inline int FormatInto(char * buffer, size_t size, char const * format, va_list arguments)
{
    return _vsnprintf(buffer, size, format, arguments);
}
inline int FormatInto(wchar_t * buffer, size_t size, wchar_t const * format, va_list arguments)
{
    return _vsnwprintf(buffer, size, format, arguments);
}

} // namespace vek
