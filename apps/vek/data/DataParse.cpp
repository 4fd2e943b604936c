#include "data/DataParse.h"

#include "Utf8.h"

#include <guiddef.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace tool
{

namespace
{

template <class T>
using BitsOf = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

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
