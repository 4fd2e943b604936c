#include "xml/XMLSource.h"

#include "VekCore.h"

#include "xml/XMLCodePages.h"
#include "xml/XMLMarkup.h"

#include <string.h>
#include <windows.h>

namespace vek
{
namespace
{

constexpr unsigned int UTF16_LITTLE = 1200;
constexpr unsigned int UTF16_BIG = 1201;
constexpr unsigned int LATIN1 = 28591;
constexpr unsigned int ASCII = 20127;

struct Mark
{
    char const * bytes;
    int length; // of what tells the encoding
    int skipped;
    unsigned int codePage;
};

// The last two are the "<" of a text without a mark.
constexpr Mark MARKS[] = {
    {"\xEF\xBB\xBF", 3, 3, CP_UTF8}, {"\xFF\xFE", 2, 2, UTF16_LITTLE}, {"\xFE\xFF", 2, 2, UTF16_BIG},
    {"<\0", 2, 0, UTF16_LITTLE},     {"\0<", 2, 0, UTF16_BIG},
};

} // namespace

size_t JoinLineEnds(wchar_t * text, size_t length) noexcept
{
    size_t written = 0;
    for (size_t read = 0; read < length; ++read)
    {
        if (text[read] != L'\r')
            text[written++] = text[read];
        else if (read + 1 == length || text[read + 1] != L'\n')
            text[written++] = L'\n';
    }
    return written;
}

void XMLSource::Begin(void const * bytes, int size) noexcept
{
    m_bytes = static_cast<unsigned char const *>(bytes);
    m_size = size;
    m_markLength = 0;
    m_codePage = CP_UTF8;
    m_isPlatform = false;
    m_isUtf8 = size > 1 && m_bytes[0] != 0 && m_bytes[1] != 0 && m_bytes[0] < 0xFE;
    for (Mark const & mark : MARKS)
    {
        if (size < mark.length || memcmp(bytes, mark.bytes, static_cast<size_t>(mark.length)) != 0)
            continue;
        m_markLength = mark.skipped;
        m_codePage = mark.codePage;
        return;
    }
}

void XMLSource::Declare(wchar_t const * name) noexcept
{
    if (name && VekStrCompareW(name, L"UTF-8", false) != 0)
        m_isUtf8 = false;
    if (!name || m_markLength > 0 || IsWide() || m_isPlatform)
        return;
    if (VekStrCompareW(name, L"ISO-8859-1", false) == 0)
        m_codePage = LATIN1;
    else if (VekStrCompareW(name, L"US-ASCII", false) == 0)
        m_codePage = ASCII;
}

bool XMLSource::UsePlatform(wchar_t const * name, XML_Encoding & encoding) noexcept
{
    unsigned int const codePage = CodePageOf(name);
    if (!codePage || !FillEncoding(codePage, encoding))
    {
        VekLogOutput(0, L"CVekXMLParser::Parse --> Encoding not supported %s", name);
        return false;
    }
    m_codePage = codePage;
    m_isPlatform = true;
    memcpy(m_map, encoding.map, sizeof m_map);
    return true;
}

bool XMLSource::IsWide() const noexcept
{
    return m_codePage == UTF16_LITTLE || m_codePage == UTF16_BIG;
}

wchar_t XMLSource::UnitAt(int offset) const noexcept
{
    if (offset < 0 || offset > m_size - Step())
        return 0;
    if (!IsWide())
        return m_bytes[offset];
    unsigned const first = m_bytes[offset];
    unsigned const second = m_bytes[offset + 1];
    return static_cast<wchar_t>(m_codePage == UTF16_LITTLE ? first | second << 8 : first << 8 | second);
}

bool XMLSource::HasCarriageReturns() const noexcept
{
    if (m_size > 0 && !IsWide())
    {
        auto const * const newline =
            static_cast<unsigned char const *>(memchr(m_bytes, '\n', static_cast<size_t>(m_size)));
        return newline && newline != m_bytes && newline[-1] == '\r';
    }
    for (int at = m_markLength; at < m_size; at += Step())
    {
        if (UnitAt(at) == L'\n')
            return UnitAt(at - Step()) == L'\r';
    }
    return false;
}

bool XMLSource::Decode(int begin, int end, CVekString<wchar_t> & text) const noexcept
{
    Buffer<wchar_t> units;
    bool const isDecoded = IsWide()       ? DecodeWide(begin, end, units)
                           : m_isPlatform ? DecodePlatform(begin, end, units)
                                          : DecodeBytes(begin, end, units);
    if (!isDecoded)
        return false;
    auto const length = static_cast<int>(JoinLineEnds(units.Data(), units.Size()));
    CVekString<wchar_t> decoded(units.Data() ? units.Data() : L"", length);
    if (decoded.GetLength() != length)
        return false;
    text.Swap(decoded);
    return true;
}

bool XMLSource::ReadText(int begin, int end, bool hasReferences, Buffer<wchar_t> & text) const noexcept
{
    size_t const before = text.Size();
    wchar_t * const place = text.Extend(static_cast<size_t>(end - begin) + RAW_TEXT_ROOM);
    if (place)
        text.Shrink(before + ReadText(begin, end, hasReferences, place));
    return place != nullptr;
}

bool XMLSource::DecodeWide(int begin, int end, Buffer<wchar_t> & text) const noexcept
{
    if (!text.Reserve(static_cast<size_t>(end - begin) / 2 + 1))
        return false;
    for (int at = begin; at + 1 < end; at += 2)
        text.Append(UnitAt(at)); // room was made above
    return true;
}

// UTF-8, or bytes that are characters as they stand.
bool XMLSource::DecodeBytes(int begin, int end, Buffer<wchar_t> & text) const noexcept
{
    int const length = end - begin;
    wchar_t * const place = text.Extend(static_cast<size_t>(length));
    if (!place || length == 0)
        return place != nullptr;
    auto const * const bytes = reinterpret_cast<char const *>(m_bytes) + begin;
    int written = length;
    if (m_codePage == CP_UTF8)
        written = MultiByteToWideChar(CP_UTF8, 0, bytes, length, place, length);
    else
    {
        for (int i = 0; i < length; ++i)
            place[i] = m_bytes[begin + i];
    }
    text.Shrink(static_cast<size_t>(written));
    return true;
}

bool XMLSource::DecodePlatform(int begin, int end, Buffer<wchar_t> & text) const noexcept
{
    if (!text.Reserve(static_cast<size_t>(end - begin) + 1))
        return false;
    for (int at = begin; at < end;)
    {
        int const entry = m_map[m_bytes[at]];
        int const length = entry < -1 ? -entry : 1;
        if (at + length > end)
            break;
        int const unit = entry < -1 ? DecodeCharacter(m_codePage, m_bytes + at, length) : entry;
        text.Append(static_cast<wchar_t>(unit < 0 ? 0xFFFD : unit));
        at += length;
    }
    return true;
}

bool XMLSource::Has(char byte, XMLRange piece) const noexcept
{
    return memchr(m_bytes + piece.offset, byte, piece.length) != nullptr;
}

int XMLSource::SkipBlanks(int at, int end) const noexcept
{
    while (at < end && IsBlank(UnitAt(at)))
        at += Step();
    return at;
}

XMLRange XMLSource::LiteralAt(int offset) const noexcept
{
    wchar_t const quote = UnitAt(offset);
    if (quote != L'"' && quote != L'\'')
        return {0, 0};
    int const begin = offset + Step();
    int at = begin;
    while (at < m_size && UnitAt(at) != quote)
        at += Step();
    return {static_cast<unsigned int>(begin), static_cast<unsigned int>(at - begin)};
}

// No byte within a longer character is one of those that are looked for: they all lie below 0x40.
bool XMLSource::FindValues(XMLRange tag, Buffer<XMLRange> & values) const noexcept
{
    int const step = Step();
    int const end = static_cast<int>(tag.offset + tag.length);
    int at = static_cast<int>(tag.offset) + step;
    while (at < end && !IsBlank(UnitAt(at)))
        at += step;
    for (;;)
    {
        at = SkipBlanks(at, end);
        while (at < end && UnitAt(at) != L'=')
            at += step;
        at = SkipBlanks(at + step, end);
        if (at >= end)
            return true;
        XMLRange const value = LiteralAt(at);
        if (!value.offset || !values.Append(value))
            return false;
        at = static_cast<int>(value.offset + value.length) + step;
    }
}

} // namespace vek
