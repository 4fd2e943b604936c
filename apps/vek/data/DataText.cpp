#include "data/DataText.h"

#include "LibraryText.h"
#include "Utf8.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <type_traits>

namespace tool
{

namespace
{

constexpr std::wstring_view TYPE_NAMES[] = {
    L"",       L"bool",    L"byte",  L"char",  L"wchar", L"int16", L"word",  L"int32", L"dword", L"float", L"double",
    L"string", L"wstring", L"rgba8", L"rgbaf", L"vec4i", L"vec4f", L"vec4d", L"mat4f", L"mat4d", L"guid",  L"buffer"};
constexpr wchar_t const * HEXADECIMAL_DIGITS = L"0123456789ABCDEF";

template <class T>
using BitsOf = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

template <class T>
T const & As(VEK_VARIANT const & value)
{
    return value;
}

void AppendHex(std::wstring & text, std::uint64_t bits, int digits)
{
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text.push_back(HEXADECIMAL_DIGITS[bits >> shift & 15]);
}

template <class T>
void AppendNumber(std::wstring & text, T number)
{
    if constexpr (std::is_floating_point_v<T>)
    {
        if (!std::isfinite(number))
        {
            text += L"0x";
            return AppendHex(text, std::bit_cast<BitsOf<T>>(number), 2 * sizeof(T));
        }
    }
    char digits[64];
    char const * const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text.append(static_cast<char const *>(digits), end);
}

template <class T>
std::wstring NumbersText(T const * numbers, int count)
{
    std::wstring text;
    for (int i = 0; i < count; ++i)
    {
        if (i != 0)
            text += L", ";
        AppendNumber(text, numbers[i]);
    }
    return text;
}

template <class T>
std::wstring ColorText(CVekRGBA<T> const & color)
{
    T const numbers[] = {color.red, color.green, color.blue, color.alpha};
    return NumbersText(numbers, 4);
}

template <class T>
std::wstring VectorText(CVekVector4D<T> const & vector)
{
    T const numbers[] = {vector.x, vector.y, vector.z, vector.w};
    return NumbersText(numbers, 4);
}

std::wstring EscapeNarrow(std::string_view text)
{
    std::wstring escaped;
    for (char const character : text)
    {
        auto const byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte < 0x7F && byte != '\\' && byte != '&' && byte != '<')
            escaped.push_back(byte);
        else if (byte == '\\')
            escaped += L"\\\\";
        else
            AppendHex(escaped += L"\\x", byte, 2);
    }
    return escaped;
}

std::wstring BufferText(VEK_VARIANT const & value, std::size_t limit)
{
    auto const size = static_cast<std::size_t>(value.GetBufferSize());
    std::size_t const shown = size < limit ? size : limit;
    std::wstring text;
    text.reserve(2 * shown);
    for (std::size_t i = 0; i < shown; ++i)
        AppendHex(text, value.GetBuffer()[i], 2);
    return text;
}

template <class T>
std::wstring NumberText(VEK_VARIANT const & value)
{
    return NumbersText(&As<T>(value), 1);
}

std::wstring ScalarText(VEK_VARIANT const & value)
{
    switch (value.GetType())
    {
    case VEK_DT_BOOL:
        return As<bool>(value) ? L"true" : L"false";
    case VEK_DT_UCHAR:
        return NumberText<unsigned char>(value);
    case VEK_DT_CHAR:
        return EscapeNarrow({&As<char>(value), 1});
    case VEK_DT_WCHAR:
    {
        wchar_t const unit = static_cast<wchar_t>(As<unsigned short>(value));
        return EscapeText({&unit, 1});
    }
    case VEK_DT_SHORT:
        return NumberText<short>(value);
    case VEK_DT_USHORT:
        return NumberText<unsigned short>(value);
    case VEK_DT_INT:
        return NumberText<int>(value);
    case VEK_DT_UINT:
        return NumberText<unsigned int>(value);
    case VEK_DT_FLOAT:
        return NumberText<float>(value);
    case VEK_DT_DOUBLE:
        return NumberText<double>(value);
    default:
        return {};
    }
}

} // namespace

std::wstring_view TypeName(VEK_DATATYPE type)
{
    return type > 0 && type < static_cast<int>(std::size(TYPE_NAMES)) ? TYPE_NAMES[type] : std::wstring_view();
}

VEK_DATATYPE TypeOf(std::wstring_view name)
{
    int type = 0;
    for (int i = 1; i < static_cast<int>(std::size(TYPE_NAMES)); ++i)
    {
        if (TYPE_NAMES[i] == name)
            type = i;
    }
    return static_cast<VEK_DATATYPE>(type);
}

std::wstring ValueText(VEK_VARIANT const & value, std::size_t bufferLimit)
{
    switch (value.GetType())
    {
    case VEK_DT_STRINGA:
    {
        CVekString<char> const & text = value;
        return EscapeNarrow({text, static_cast<std::size_t>(text.GetLength())});
    }
    case VEK_DT_STRINGW:
        return EscapeText(View(As<CVekString<wchar_t>>(value)));
    case VEK_DT_RGBA_UCHAR:
        return ColorText(As<CVekRGBA<unsigned char>>(value));
    case VEK_DT_RGBA_FLOAT:
        return ColorText(As<CVekRGBA<float>>(value));
    case VEK_DT_VECTOR4D_INT:
        return VectorText(As<CVekVector4D<int>>(value));
    case VEK_DT_VECTOR4D_FLOAT:
        return VectorText(As<CVekVector4D<float>>(value));
    case VEK_DT_VECTOR4D_DOUBLE:
        return VectorText(As<CVekVector4D<double>>(value));
    case VEK_DT_MATRIX4X4_FLOAT:
        return NumbersText(As<CVekMatrix4x4<float>>(value).GetElements(), 16);
    case VEK_DT_MATRIX4X4_DOUBLE:
        return NumbersText(As<CVekMatrix4x4<double>>(value).GetElements(), 16);
    case VEK_DT_BUFFER:
        return BufferText(value, bufferLimit);
    default:
        return ScalarText(value);
    }
}

std::wstring EscapeText(std::wstring_view text)
{
    std::wstring escaped;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        wchar_t const unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            escaped.append(text, i++, 2);
        else if (unit == L'\\')
            escaped += L"\\\\";
        else if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || (unit >= 0xD800 && unit < 0xE000) || unit >= 0xFFFE ||
                 unit == L'&' || unit == L'<')
            AppendHex(escaped += L"\\u", unit, 4);
        else
            escaped.push_back(unit);
    }
    return escaped;
}

} // namespace tool
