#include "xml/XmlEncoding.h"

#include "Platform.h"
#include "Utf8.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr unsigned int EUC_JP = 20932;
constexpr std::size_t CODE_PIECE = 0x100000; // what the system is asked for at once

} // namespace

unsigned int XmlEncoding::UnitAt(std::string_view bytes, std::size_t offset) const
{
    auto const byte = [bytes](std::size_t at)
    { return at < bytes.size() ? static_cast<unsigned int>(static_cast<unsigned char>(bytes[at])) : 0U; };
    if (Width() == 1)
        return byte(offset);
    return m_codePage == UTF16 ? byte(offset) | byte(offset + 1) << 8 : byte(offset) << 8 | byte(offset + 1);
}

bool XmlEncoding::Encode(std::wstring_view text, bool withReferences, std::string & bytes) const
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        bool const isPair = IsHighSurrogate(text[i]) && i + 1 < text.size();
        std::wstring_view const character = text.substr(i, isPair ? 2 : 1);
        i += isPair ? 1 : 0;
        if (EncodeCharacter(character, bytes))
            continue;
        if (!withReferences)
            return false;
        unsigned int const number = isPair ? JoinSurrogates(character[0], character[1]) : character[0];
        bytes += "&#" + std::to_string(number) + ";";
    }
    return true;
}

bool XmlEncoding::EncodeCharacter(std::wstring_view character, std::string & bytes) const
{
    if (Width() == 2)
    {
        for (wchar_t const unit : character)
        {
            char const low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
            bytes.append({m_codePage == UTF16 ? low : high, m_codePage == UTF16 ? high : low});
        }
        return true;
    }
    if (m_codePage == UTF8 || character[0] < 0x80)
    {
        bytes += ToUtf8(character);
        return true;
    }
    char narrow[8];
    wchar_t back[4];
    int const size = WideCharToMultiByte(m_codePage, 0, character.data(), static_cast<int>(character.size()), narrow,
                                         sizeof narrow, nullptr, nullptr);
    int const length = size > 0 ? MultiByteToWideChar(m_codePage, 0, narrow, size, back, 4) : 0;
    bool const isWhole = length > 0 && std::wstring_view(back, static_cast<std::size_t>(length)) == character;
    // Of EUC-JP's characters of three bytes the system gives two, the second one below 0x80.
    if (!isWhole || (m_codePage == EUC_JP && size == 2 && static_cast<signed char>(narrow[1]) >= 0))
        return false;
    bytes.append(narrow, static_cast<std::size_t>(size));
    return true;
}

std::wstring XmlEncoding::Decode(std::string_view bytes) const
{
    if (m_codePage == UTF8)
        return FromUtf8(bytes);
    std::wstring text;
    if (Width() == 2)
    {
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            text.push_back(static_cast<wchar_t>(UnitAt(bytes, i)));
        return text;
    }
    text.resize(std::min(bytes.size(), CODE_PIECE));
    int const size = static_cast<int>(text.size());
    int const length = size ? MultiByteToWideChar(m_codePage, 0, bytes.data(), size, text.data(), size) : 0;
    text.resize(static_cast<std::size_t>(length));
    return text;
}

} // namespace tool
