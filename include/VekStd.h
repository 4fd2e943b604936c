/// @file
/// The library's texts, references and bytes beside the standard library's. VekLib.h does not bring this header: a host
/// that uses the standard library includes it. The functions may throw std::bad_alloc, where they make something of the
/// standard library's.
#ifndef VEK_STD_H
#define VEK_STD_H

#include "VekIO.h"
#include "VekRef.h"
#include "VekText.h"
#include "VekVariant.h"
#include "VekXML.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)
#if __has_include(<span>)
#include <span>
#endif
#endif

// --- texts ----------------------------------------------------------------------------------------------------------

/// The string's characters, valid until it is changed or destroyed.
template <class T>
std::basic_string_view<T> VekView(CVekString<T> const & string) noexcept
{
    return {static_cast<T const *>(string), static_cast<std::size_t>(string.GetLength())};
}

/// A copy of the string.
template <class T>
std::basic_string<T> VekToStd(CVekString<T> const & string)
{
    return std::basic_string<T>(VekView(string));
}

/// @cond internal
namespace vek
{
template <class T>
CVekString<T> ToString(std::basic_string_view<T> text) noexcept
{
    std::size_t const length = text.find(T(0)) == text.npos ? text.size() : text.find(T(0));
    return length <= 0x7FFFFFF0 ? CVekString<T>(text.data(), static_cast<int>(length)) : CVekString<T>();
}
} // namespace vek
/// @endcond

/// A copy of the text up to its first zero. Empty for a text of 2 GB and more, and when memory is exhausted.
inline CVekString<wchar_t> VekToString(std::wstring_view text) noexcept
{
    return vek::ToString(text);
}
inline CVekString<char> VekToString(std::string_view text) noexcept
{
    return vek::ToString(text);
}

/// A variant of the type VEK_DT_STRINGW or VEK_DT_STRINGA, with a copy as VekToString makes it. A narrow text is no
/// UTF-8 for the library: see VekWideFromUtf8.
inline VEK_VARIANT VekToVariant(std::wstring_view text)
{
    return VekToString(text);
}
inline VEK_VARIANT VekToVariant(std::string_view text)
{
    return VekToString(text);
}

/// By value, as the operator == compares.
template <class T>
struct std::hash<CVekString<T>>
{
    std::size_t operator()(CVekString<T> const & string) const noexcept
    {
        return std::hash<std::basic_string_view<T>>()(VekView(string));
    }
};

/// By the object, as the operator == compares.
template <class T>
struct std::hash<CVekRef<T>>
{
    std::size_t operator()(CVekRef<T> const & reference) const noexcept
    {
        return std::hash<T const *>()(reference.Get());
    }
};

// --- UTF-8 ----------------------------------------------------------------------------------------------------------

/// @cond internal
namespace vek
{
static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16");

/// Takes the character that the bytes begin with off them; 0x110000, with the bytes as they were, when it is none:
/// overlong, cut off, half of a surrogate pair, or out of range.
inline char32_t TakeUtf8(std::string_view & bytes) noexcept
{
    constexpr char32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
    constexpr char32_t NONE = 0x110000;
    char32_t const first = static_cast<unsigned char>(bytes[0]);
    std::size_t const more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    if ((first >= 0x80 && first < 0xC2) || first > 0xF4 || bytes.size() <= more)
        return NONE;
    char32_t character = more == 0 ? first : first & (0x3FU >> more);
    for (std::size_t i = 1; i <= more; ++i)
    {
        char32_t const next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80)
            return NONE;
        character = character << 6 | (next & 0x3F);
    }
    if (character < LEAST[more] || (character & 0x1FF800) == 0xD800 || character > 0x10FFFF)
        return NONE;
    bytes.remove_prefix(more + 1);
    return character;
}

inline void AppendUtf8(std::string & bytes, char32_t character)
{
    int const more = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr char32_t MARKS[] = {0, 0xC0, 0xE0, 0xF0};
    bytes.push_back(static_cast<char>(MARKS[more] | character >> (6 * more)));
    for (int i = more - 1; i >= 0; --i)
        bytes.push_back(static_cast<char>(0x80 | (character >> (6 * i) & 0x3F)));
}
} // namespace vek
/// @endcond

/// UTF-8 as wide text; nothing when the bytes are not well formed: overlong forms, sequences that are cut off, halves
/// of surrogate pairs and numbers beyond U+10FFFF. A byte order mark is a character as any other.
inline std::optional<std::wstring> VekWideFromUtf8(std::string_view bytes)
{
    std::wstring wide;
    wide.reserve(bytes.size());
    while (!bytes.empty())
    {
        char32_t const character = vek::TakeUtf8(bytes);
        if (character > 0x10FFFF)
            return std::nullopt;
        if (character > 0xFFFF)
            wide.push_back(static_cast<wchar_t>(0xD7C0 + (character >> 10)));
        wide.push_back(static_cast<wchar_t>(character > 0xFFFF ? 0xDC00 | (character & 0x3FF) : character));
    }
    return wide;
}
#if defined(__cpp_lib_char8_t)
inline std::optional<std::wstring> VekWideFromUtf8(std::u8string_view bytes)
{
    return VekWideFromUtf8(std::string_view(reinterpret_cast<char const *>(bytes.data()), bytes.size()));
}
#endif

/// Wide text as UTF-8; nothing when it holds half of a surrogate pair without the other.
inline std::optional<std::string> VekUtf8FromWide(std::wstring_view wide)
{
    std::string bytes;
    bytes.reserve(wide.size() + wide.size() / 8);
    for (std::size_t i = 0; i < wide.size(); ++i)
    {
        char32_t character = wide[i];
        if ((character & 0xF800) == 0xD800)
        {
            bool const isPair = character < 0xDC00 && i + 1 < wide.size() && (wide[i + 1] & 0xFC00) == 0xDC00;
            if (!isPair)
                return std::nullopt;
            character = 0x10000 + ((character & 0x3FF) << 10) + (wide[++i] & 0x3FF);
        }
        vek::AppendUtf8(bytes, character);
    }
    return bytes;
}
inline std::optional<std::string> VekUtf8FromWide(CVekString<wchar_t> const & wide)
{
    return VekUtf8FromWide(VekView(wide));
}

// --- bytes ----------------------------------------------------------------------------------------------------------

/// The text of an element's CDATA section, valid until the section is removed; empty without one.
inline std::wstring_view VekCDATAText(IVekXMLElement const & element) noexcept
{
    auto const size = static_cast<std::size_t>(element.GetCDATASectionSize());
    return {reinterpret_cast<wchar_t const *>(element.GetCDATASection()), size / sizeof(wchar_t)};
}

/// Makes the text the element's CDATA section, in place of the one it has. False, with a message, when memory is
/// exhausted, or for a text of 2 GB and more; the element has no section then.
inline bool VekSetCDATAText(IVekXMLElement & element, std::wstring_view text)
{
    // The text may be the section's own.
    std::wstring const copy(text);
    element.RemoveCDATASection();
    int const size = copy.size() < 0x40000000 ? static_cast<int>(copy.size() * sizeof(wchar_t)) : -1;
    return element.AddCDATASection(reinterpret_cast<unsigned char const *>(copy.data()), size);
}

/// All bytes of a file; nothing, with a message, when it can't be read whole.
inline std::optional<std::string> VekReadFile(wchar_t const * path)
{
    CVekFileIOStream file;
    if (!file.Open(path, VEK_IO_READ | VEK_IO_BINARY, 0))
        return std::nullopt;
    unsigned int const size = file.GetSize();
    std::string bytes(size, '\0');
    if (size > 0 && !file.Read(bytes.data(), size, true))
        return std::nullopt;
    return bytes;
}

/// Makes a file of the bytes, in place of one that is there; false, with a message, when they can't be written whole.
inline bool VekWriteFile(wchar_t const * path, std::string_view bytes)
{
    CVekFileIOStream file;
    return bytes.size() < 0xFFFFFFFF && file.Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0) &&
           (bytes.empty() || file.Write(bytes.data(), static_cast<unsigned int>(bytes.size()), true)) && file.Flush();
}

#if defined(__cpp_lib_span)
/// The block of a memory stream, valid until it is closed; empty for a closed one.
inline std::span<std::byte> VekBytes(IVekMemoryIOStream & stream) noexcept
{
    return {reinterpret_cast<std::byte *>(stream.GetBuffer()), stream.GetBuffer() ? stream.GetSize() : 0};
}
inline std::span<std::byte const> VekBytes(IVekMemoryIOStream const & stream) noexcept
{
    return {reinterpret_cast<std::byte const *>(stream.GetBuffer()), stream.GetBuffer() ? stream.GetSize() : 0};
}

/// Opens a memory stream on a copy of the bytes, at its start, for reading and writing in binary mode. False, with a
/// message, when there is no memory or there are 2 GB and more.
inline bool VekOpenBytes(IVekMemoryIOStream & stream, std::span<std::byte const> bytes)
{
    unsigned int const size = bytes.size() <= 0x7FFFFFFF ? static_cast<unsigned int>(bytes.size()) : 0xFFFFFFFF;
    if (!stream.Open(L"", VEK_IO_BINARY | VEK_IO_READ | VEK_IO_WRITE, size))
        return false;
    if (!bytes.empty())
        std::memcpy(stream.GetBuffer(), bytes.data(), bytes.size());
    return true;
}
#endif

#endif
