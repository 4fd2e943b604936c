#include "Utf8.h"

#include <cstdint>

namespace tool
{

namespace
{

void AppendCharacter(std::string & bytes, std::uint32_t character)
{
    auto const append = [&bytes](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    if (character < 0x80)
    {
        append(character);
        return;
    }
    if (character < 0x800)
    {
        append(0xC0 | character >> 6);
    }
    else
    {
        if (character < 0x10000)
        {
            append(0xE0 | character >> 12);
        }
        else
        {
            append(0xF0 | character >> 18);
            append(0x80 | (character >> 12 & 0x3F));
        }
        append(0x80 | (character >> 6 & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

/// The character that begins at the position, which is moved behind it; U+FFFD, one byte further on, for anything else.
std::uint32_t TakeCharacter(std::string_view text, std::size_t & position)
{
    std::uint32_t const first = static_cast<unsigned char>(text[position++]);
    if (first < 0x80)
        return first;
    std::size_t const more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() - position < more)
        return 0xFFFD;
    std::uint32_t character = first & (0x3FU >> more);
    for (std::size_t i = 0; i < more; ++i)
    {
        std::uint32_t const next = static_cast<unsigned char>(text[position + i]);
        if ((next & 0xC0) != 0x80)
            return 0xFFFD;
        character = character << 6 | (next & 0x3F);
    }
    bool const overlong = (more == 2 && character < 0x800) || (more == 3 && character < 0x10000);
    if (overlong || character > 0x10FFFF)
        return 0xFFFD;
    position += more;
    return character;
}

std::string Encode(std::wstring_view text, bool keepsLoneSurrogates)
{
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 8);
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        std::uint32_t character = text[i];
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
        {
            character = JoinSurrogates(text[i], text[i + 1]);
            ++i;
        }
        else if (!keepsLoneSurrogates && (IsHighSurrogate(text[i]) || IsLowSurrogate(text[i])))
        {
            character = 0xFFFD;
        }
        AppendCharacter(bytes, character);
    }
    return bytes;
}

} // namespace

std::string ToUtf8(std::wstring_view text)
{
    return Encode(text, false);
}

std::string ToUtf8KeepingAll(std::wstring_view text)
{
    return Encode(text, true);
}

std::wstring FromUtf8(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t position = 0; position < text.size();)
    {
        std::uint32_t const character = TakeCharacter(text, position);
        if (character < 0x10000)
        {
            wide.push_back(static_cast<wchar_t>(character));
            continue;
        }
        wide.push_back(static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10)));
        wide.push_back(static_cast<wchar_t>(0xDC00 + (character & 0x3FF)));
    }
    return wide;
}

std::vector<std::wstring> FromUtf8(std::vector<std::string> const & texts)
{
    std::vector<std::wstring> wide;
    for (std::string const & text : texts)
        wide.push_back(FromUtf8(text));
    return wide;
}

} // namespace tool
