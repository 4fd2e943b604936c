#include "DataText.h"

#include "Console.h"
#include "Utf8.h"
#include "XmlFile.h"

#include <guiddef.h>

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
constexpr wchar_t const * DIGITS = L"0123456789ABCDEF";

template <class T>
using BitsOf = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

template <class T>
T const & As(VEK_VARIANT const & value)
{
    return value;
}

// --- to text --------------------------------------------------------------------------------------------------------

void AppendHex(std::wstring & text, std::uint64_t bits, int digits)
{
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text.push_back(DIGITS[bits >> shift & 15]);
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

// --- from text ------------------------------------------------------------------------------------------------------

/// Takes one number off the front; false when there is none, or one too large for its type.
template <class T>
bool TakeNumber(std::string_view & text, T & number)
{
    char const * const end = text.data() + text.size();
    std::from_chars_result result{};
    if (std::is_floating_point_v<T> && text.starts_with("0x"))
    {
        std::conditional_t<std::is_floating_point_v<T>, BitsOf<T>, unsigned int> bits = 0;
        result = std::from_chars(text.data() + 2, end, bits, 16);
        if constexpr (std::is_floating_point_v<T>)
            number = std::bit_cast<T>(bits);
    }
    else
        result = std::from_chars(text.data(), end, number);
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return result.ec == std::errc();
}

template <class T>
bool ParseNumbers(std::wstring_view wide, T * numbers, int count)
{
    std::string const narrow = ToUtf8(wide);
    std::string_view text = narrow;
    auto const skipBlanks = [&text] { text.remove_prefix(std::min(text.find_first_not_of(' '), text.size())); };
    for (int i = 0; i < count; ++i)
    {
        skipBlanks();
        if (i != 0 && text.starts_with(','))
            text.remove_prefix(1);
        else if (i != 0)
            return false;
        skipBlanks();
        if (!TakeNumber(text, numbers[i]))
            return false;
    }
    skipBlanks();
    return text.empty();
}

template <class T, class Store>
bool PackNumber(std::wstring_view text, Store store)
{
    T number{};
    return ParseNumbers(text, &number, 1) && store(number);
}

template <class T, class Store>
bool PackFour(std::wstring_view text, Store store)
{
    T four[4] = {};
    return ParseNumbers(text, four, 4) && store(four);
}

template <class T>
bool PackMatrix(CVekTypedDataWriter & writer, wchar_t const * name, std::wstring_view text)
{
    CVekMatrix4x4<T> matrix;
    return ParseNumbers(text, matrix.GetElements(), 16) && writer.WriteMatrix(name, matrix);
}

int HexDigit(wchar_t unit)
{
    if (unit >= L'0' && unit <= L'9')
        return unit - L'0';
    wchar_t const upper = static_cast<wchar_t>(unit & ~0x20);
    return upper >= L'A' && upper <= L'F' ? upper - L'A' + 10 : -1;
}

bool TakeHex(std::wstring_view text, std::size_t digits, unsigned int & number)
{
    number = 0;
    if (text.size() < digits)
        return false;
    for (std::size_t i = 0; i < digits; ++i)
    {
        int const digit = HexDigit(text[i]);
        if (digit < 0)
            return false;
        number = number << 4 | static_cast<unsigned int>(digit);
    }
    return true;
}

bool PackBuffer(CVekTypedDataWriter & writer, wchar_t const * name, std::wstring_view text)
{
    std::vector<unsigned char> bytes(text.size() / 2);
    if (bytes.empty() || text.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        unsigned int byte = 0;
        if (!TakeHex(text.substr(2 * i), 2, byte))
            return false;
        bytes[i] = static_cast<unsigned char>(byte);
    }
    return writer.WriteBuffer(name, bytes.data(), static_cast<int>(bytes.size()));
}

bool Narrow(std::wstring_view wide, std::string & narrow)
{
    narrow.clear();
    for (wchar_t const unit : wide)
    {
        if (unit > 0xFF)
            return false;
        narrow.push_back(static_cast<char>(unit));
    }
    return true;
}

/// Texts and single characters.
bool PackText(CVekTypedDataWriter & writer, wchar_t const * name, VEK_DATATYPE type, std::wstring_view text)
{
    std::wstring plain;
    std::string narrow;
    bool const isNarrow = type == VEK_DT_CHAR || type == VEK_DT_STRINGA;
    if (!UnescapeText(text, plain) || (isNarrow && !Narrow(plain, narrow)))
        return false;
    if (type == VEK_DT_CHAR)
        return narrow.size() == 1 && writer.WriteChar(name, narrow[0]);
    if (type == VEK_DT_WCHAR)
        return plain.size() == 1 && writer.WriteWChar(name, plain[0]);
    if (plain.find(L'\0') != std::wstring::npos)
        return false;
    return isNarrow ? writer.WriteString(name, narrow.c_str()) : writer.WriteWString(name, plain.c_str());
}

bool PackScalar(CVekTypedDataWriter & writer, wchar_t const * name, VEK_DATATYPE type, std::wstring_view text)
{
    switch (type)
    {
    case VEK_DT_BOOL:
        return (text == L"true" || text == L"false") && writer.WriteBool(name, text == L"true");
    case VEK_DT_UCHAR:
        return PackNumber<unsigned char>(text, [&](auto n) { return writer.WriteByte(name, n); });
    case VEK_DT_SHORT:
        return PackNumber<short>(text, [&](auto n) { return writer.WriteInt16(name, n); });
    case VEK_DT_USHORT:
        return PackNumber<unsigned short>(text, [&](auto n) { return writer.WriteWord(name, n); });
    case VEK_DT_INT:
        return PackNumber<int>(text, [&](auto n) { return writer.WriteInt32(name, n); });
    case VEK_DT_UINT:
        return PackNumber<unsigned int>(text, [&](auto n) { return writer.WriteDWord(name, n); });
    case VEK_DT_FLOAT:
        return PackNumber<float>(text, [&](auto n) { return writer.WriteFloat(name, n); });
    case VEK_DT_DOUBLE:
        return PackNumber<double>(text, [&](auto n) { return writer.WriteDouble(name, n); });
    default:
        return PackText(writer, name, type, text);
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

bool UnescapeText(std::wstring_view text, std::wstring & plain)
{
    plain.clear();
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != L'\\')
        {
            plain.push_back(text[i]);
            continue;
        }
        wchar_t const kind = ++i < text.size() ? text[i] : L'\0';
        std::size_t const digits = kind == L'u' ? 4 : kind == L'x' ? 2 : 0;
        unsigned int unit = L'\\';
        if ((digits == 0 && kind != L'\\') || (digits != 0 && !TakeHex(text.substr(i + 1), digits, unit)))
            return false;
        plain.push_back(static_cast<wchar_t>(unit));
        i += digits;
    }
    return true;
}

bool PackValue(CVekTypedDataWriter & writer, wchar_t const * name, VEK_DATATYPE type, std::wstring_view text)
{
    switch (type)
    {
    case VEK_DT_RGBA_UCHAR:
        return PackFour<unsigned char>(
            text, [&](auto n) { return writer.WriteColor(name, CVekRGBA<unsigned char>(n[0], n[1], n[2], n[3])); });
    case VEK_DT_RGBA_FLOAT:
        return PackFour<float>(text, [&](auto n)
                               { return writer.WriteColor(name, CVekRGBA<float>(n[0], n[1], n[2], n[3])); });
    case VEK_DT_VECTOR4D_INT:
        return PackFour<int>(text, [&](auto n)
                             { return writer.WriteVector(name, CVekVector4D<int>(n[0], n[1], n[2], n[3])); });
    case VEK_DT_VECTOR4D_FLOAT:
        return PackFour<float>(text, [&](auto n)
                               { return writer.WriteVector(name, CVekVector4D<float>(n[0], n[1], n[2], n[3])); });
    case VEK_DT_VECTOR4D_DOUBLE:
        return PackFour<double>(text, [&](auto n)
                                { return writer.WriteVector(name, CVekVector4D<double>(n[0], n[1], n[2], n[3])); });
    case VEK_DT_MATRIX4X4_FLOAT:
        return PackMatrix<float>(writer, name, text);
    case VEK_DT_MATRIX4X4_DOUBLE:
        return PackMatrix<double>(writer, name, text);
    case VEK_DT_GUID:
        return writer.WriteGUID(name, GUID{});
    case VEK_DT_BUFFER:
        return PackBuffer(writer, name, text);
    default:
        return PackScalar(writer, name, type, text);
    }
}

} // namespace tool
