#include "VekText.h"

#include "text/Scan.h"

#include <limits.h>

namespace
{

template <class To, class From>
void ConvertText(To * target, From const * source)
{
    if (!target)
        return;
    if (source)
        for (; *source; ++source)
            *target++ = vek::CharTraits<To>::From(*source);
    *target = 0;
}

template <class T>
void CopyText(T * target, T const * source)
{
    if (!target)
        return;
    if (source)
        vek::CopyBounded(target, source, -1);
    else
        *target = 0;
}

template <class T>
int CompareCounted(T const * first, T const * second, int count, bool caseSensitive)
{
    return count < 1 ? 0 : vek::CompareTexts(first, second, static_cast<size_t>(count), caseSensitive);
}

template <class T>
int LengthOf(T const * text)
{
    size_t const length = vek::TextLength(text);
    return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

template <class T>
void Concatenate(T * target, T const * source, int max)
{
    // The source's length is taken before the first character is written: a text can be appended to itself.
    vek::CopyBounded(target + vek::TextLength(target), source, max);
}

template <class T>
int FormatBounded(T * buffer, int size, T const * format, va_list arguments)
{
    if (!buffer || size <= 0)
        return -1;
    buffer[0] = 0;
    if (!format)
        return -1;
    int const length = vek::CharTraits<T>::Format(buffer, static_cast<size_t>(size), format, arguments);
    if (length >= 0 && length < size)
        return length;
    buffer[size - 1] = 0;
    return -1;
}

template <class T>
bool IsTerminated(T const * text, int size)
{
    return text && size > 0 && vek::BoundedLength(text, static_cast<size_t>(size)) < static_cast<size_t>(size);
}

template <class T>
void ToLower(T * text, int size)
{
    if (IsTerminated(text, size))
        vek::CharTraits<T>::ToLower(text);
}

template <class T>
void ToUpper(T * text, int size)
{
    if (IsTerminated(text, size))
        vek::CharTraits<T>::ToUpper(text);
}

template <class T>
unsigned long ToUInt(T const * text, int radix)
{
    // The runtime takes any other radix for a fault of the program.
    if (radix != 0 && (radix < 2 || radix > 36))
        return 0;
    return vek::CharTraits<T>::ToUInt(text, radix);
}

} // namespace

void VekStrAtoW(wchar_t * target, char const * source)
{
    ConvertText(target, source);
}

void VekStrWtoA(char * target, wchar_t const * source)
{
    ConvertText(target, source);
}

void VekStrAtoA(char * target, char const * source)
{
    CopyText(target, source);
}

void VekStrWtoW(wchar_t * target, wchar_t const * source)
{
    CopyText(target, source);
}

void VekStrCopyA(char * target, char const * source, int max)
{
    if (target && source)
        vek::CopyBounded(target, source, max);
}

void VekStrCopyW(wchar_t * target, wchar_t const * source, int max)
{
    // Kept: unlike the narrow form this one doesn't check for null.
    vek::CopyBounded(target, source, max);
}

int VekStrCompareA(char const * first, char const * second, bool caseSensitive)
{
    return vek::CompareTexts(first, second, SIZE_MAX, caseSensitive);
}

int VekStrCompareW(wchar_t const * first, wchar_t const * second, bool caseSensitive)
{
    return vek::CompareTexts(first, second, SIZE_MAX, caseSensitive);
}

int VekStrCompareA(char const * first, char const * second, int count, bool caseSensitive)
{
    return CompareCounted(first, second, count, caseSensitive);
}

int VekStrCompareW(wchar_t const * first, wchar_t const * second, int count, bool caseSensitive)
{
    return CompareCounted(first, second, count, caseSensitive);
}

int VekStrLenA(char const * text)
{
    return LengthOf(text);
}

int VekStrLenW(wchar_t const * text)
{
    return LengthOf(text);
}

void VekStrCatA(char * target, char const * source, int max)
{
    Concatenate(target, source, max);
}

void VekStrCatW(wchar_t * target, wchar_t const * source, int max)
{
    Concatenate(target, source, max);
}

int VekStrPrintfA(char * buffer, int size, char const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const length = FormatBounded(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

int VekStrPrintfW(wchar_t * buffer, int size, wchar_t const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const length = FormatBounded(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

int VekStrPrintfA(char * buffer, int size, char const * format, va_list arguments)
{
    return FormatBounded(buffer, size, format, arguments);
}

int VekStrPrintfW(wchar_t * buffer, int size, wchar_t const * format, va_list arguments)
{
    return FormatBounded(buffer, size, format, arguments);
}

int VekPrintfLengthA(char const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const length = vek::CharTraits<char>::FormattedLength(format, arguments);
    va_end(arguments);
    return length;
}

int VekPrintfLengthW(wchar_t const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const length = vek::CharTraits<wchar_t>::FormattedLength(format, arguments);
    va_end(arguments);
    return length;
}

void VekStrToLowerA(char * text, int size)
{
    ToLower(text, size);
}

void VekStrToLowerW(wchar_t * text, int size)
{
    ToLower(text, size);
}

void VekStrToUpperA(char * text, int size)
{
    ToUpper(text, size);
}

void VekStrToUpperW(wchar_t * text, int size)
{
    ToUpper(text, size);
}

int VekStrToIntA(char const * text)
{
    return vek::CharTraits<char>::ToInt(text);
}

int VekStrToIntW(wchar_t const * text)
{
    return vek::CharTraits<wchar_t>::ToInt(text);
}

unsigned long VekStrToUIntA(char const * text, int radix)
{
    return ToUInt(text, radix);
}

unsigned long VekStrToUIntW(wchar_t const * text, int radix)
{
    return ToUInt(text, radix);
}

double VekStrToFloatA(char const * text)
{
    return vek::CharTraits<char>::ToFloat(text);
}

double VekStrToFloatW(wchar_t const * text)
{
    return vek::CharTraits<wchar_t>::ToFloat(text);
}
