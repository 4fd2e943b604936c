#pragma once

#include "VekText.h"

#include "base/Buffer.h"
#include "xml/XMLRawText.h"

#include <expat.h>

namespace vek
{

/// Makes every line end of the text a newline, in place; returns the new length.
size_t JoinLineEnds(wchar_t * text, size_t length) noexcept;

/// A piece of the source, in bytes.
struct XMLRange
{
    unsigned int offset;
    unsigned int length;
};

/// The bytes of the document that is being parsed, and how they are encoded. The encodings that the tokenizer doesn't
/// know are taken from the system's code pages.
class XMLSource
{
public:
    /// Takes the bytes, which stay the caller's, until End.
    void Begin(void const * bytes, int size) noexcept;
    void End() noexcept { m_bytes = nullptr; }
    /// The encoding that the declaration names; null for none.
    void Declare(wchar_t const * name) noexcept;
    /// Answers the tokenizer, which doesn't know the encoding: false, with a message, when the system doesn't either.
    bool UsePlatform(wchar_t const * name, XML_Encoding & encoding) noexcept;

    unsigned int CodePage() const noexcept { return m_codePage; }
    int Size() const noexcept { return m_size; }
    /// The length of the byte order mark.
    int MarkLength() const noexcept { return m_markLength; }
    /// Whether the first line ends in a carriage return and a newline.
    bool HasCarriageReturns() const noexcept;
    /// Whether the tokenizer reads what stands behind the declaration as UTF-8, for certain.
    bool IsUtf8() const noexcept { return m_isUtf8; }
    /// Adds a piece of a text of UTF-8 that the tokenizer has read as text, as it would hand that out; what has no
    /// references is the inside of a CDATA section. False when memory is exhausted.
    bool ReadText(int begin, int end, bool hasReferences, Buffer<wchar_t> & text) const noexcept;
    /// The same, written to a place with room for RAW_TEXT_ROOM units more than the piece has bytes; returns its
    /// length.
    size_t ReadText(int begin, int end, bool hasReferences, wchar_t * place) const noexcept
    {
        return ReadRawText({m_bytes + begin, static_cast<size_t>(end - begin), static_cast<size_t>(m_size - begin)},
                           hasReferences, place);
    }
    /// The text of a piece, line ends as newlines; false when memory is exhausted.
    bool Decode(int begin, int end, CVekString<wchar_t> & text) const noexcept;
    /// Whether a tag begins there, rather than a reference to an entity.
    bool IsTagAt(int offset) const noexcept { return UnitAt(offset) == L'<'; }
    /// False when no reference can stand in the piece.
    bool MayHoldReference(XMLRange piece) const noexcept { return Has('&', piece); }
    /// Whether one of the bytes is this.
    bool Has(char byte, XMLRange piece) const noexcept;
    /// Between the quotes of the literal that begins there, if one does; else empty, at 0.
    XMLRange LiteralAt(int offset) const noexcept;
    /// Adds where the values of a start tag stand, in order; false when memory is exhausted.
    bool FindValues(XMLRange tag, Buffer<XMLRange> & values) const noexcept;

private:
    struct Platform;

    bool IsWide() const noexcept;
    int Step() const noexcept { return IsWide() ? 2 : 1; }
    /// The unit of UTF-16, or the byte, that begins there; 0 outside.
    wchar_t UnitAt(int offset) const noexcept;
    int SkipBlanks(int at, int end) const noexcept;
    bool DecodeWide(int begin, int end, Buffer<wchar_t> & text) const noexcept;
    bool DecodeBytes(int begin, int end, Buffer<wchar_t> & text) const noexcept;
    bool DecodePlatform(int begin, int end, Buffer<wchar_t> & text) const noexcept;

    unsigned char const * m_bytes = nullptr;
    int m_size = 0;
    int m_markLength = 0;
    unsigned int m_codePage = 0;
    bool m_isPlatform = false;
    bool m_isUtf8 = false;
    int m_map[256] = {}; // of the system's encoding, as the tokenizer has it
};

} // namespace vek
