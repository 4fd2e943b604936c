#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tool
{

/// The encoding of a file, by the system's number for it.
class XmlEncoding
{
public:
    explicit XmlEncoding(unsigned int codePage) : m_codePage(codePage) {}

    /// The bytes of a unit: what markup is looked for in.
    std::size_t Width() const { return m_codePage == UTF16 || m_codePage == UTF16_BIG ? 2 : 1; }
    unsigned int UnitAt(std::string_view bytes, std::size_t offset) const;

    /// Appends text; a character that the encoding hasn't got as a reference, or, without them, not at all and with
    /// false.
    bool Encode(std::wstring_view text, bool withReferences, std::string & bytes) const;
    std::wstring Decode(std::string_view bytes) const;

private:
    static constexpr unsigned int UTF8 = 65001;
    static constexpr unsigned int UTF16 = 1200;
    static constexpr unsigned int UTF16_BIG = 1201;

    bool EncodeCharacter(std::wstring_view character, std::string & bytes) const;

    unsigned int m_codePage;
};

} // namespace tool
