#pragma once

#include "VekIO.h"

#include "base/Buffer.h"

#include <stdint.h>

#include <utility>

namespace vek
{

/// The writer's encodings. The numbers are kept: they are the writer's encoding types.
enum class XMLEncoding : int
{
    ASCII = 0,
    UTF8 = 1,
    UTF16 = 2,
    LATIN1 = 3
};

/// Encodes text for a stream and writes it in large blocks. A failed write is remembered: everything after it fails
/// too, so that a caller may check once for many pieces.
class XMLOutput
{
public:
    enum class NewLines
    {
        AS_THEY_ARE,
        CARRIAGE_RETURN_FIRST
    };

    XMLOutput(IVekIOStream & stream, XMLEncoding encoding, NewLines newLines) noexcept;

    /// Gives UTF-16 a byte order that is not the one of the stream's values.
    void SetBigEndian(bool isBigEndian) noexcept { m_reversed = isBigEndian; }

    void Text(wchar_t const * text, size_t length) noexcept;
    /// A literal of ASCII.
    template <size_t N>
    void Text(wchar_t const (&text)[N]) noexcept
    {
        if (m_encoding == XMLEncoding::UTF16)
            return Text(text, N - 1);
        if (char * const place = Room())
            m_place = PutLiteral(place, text, std::make_index_sequence<N - 1>());
    }
    void Text(CVekString<wchar_t> const & text) noexcept { Text(text, static_cast<size_t>(text.GetLength())); }
    void Spaces(uint64_t count) noexcept;
    /// Bytes that are not encoded, such as a byte order mark.
    void Bytes(void const * bytes, size_t count) noexcept;

    bool HasFailed() const noexcept { return m_failed; }
    /// Hands everything to the stream; false when anything was lost.
    bool Flush() noexcept;
    /// The same at the end of all text.
    bool Finish() noexcept;

private:
    // The most text that is encoded between two looks at the buffer, and the most bytes that a unit can become.
    static constexpr size_t SLICE = 4096;
    static constexpr size_t UNIT_BYTES = 3;
    static constexpr size_t BLOCK_BYTES = 64 * 1024;

    // Whoever writes a few bytes writes them as one piece of this size.
    static constexpr size_t PIECE = 16;

    /// Makes room for the largest encoding of a slice, and a piece behind it; null when the output has failed.
    char * Room() noexcept { return m_place < m_limit ? m_place : RoomAnew(); }
    char * RoomAnew() noexcept;
    // Units that the compiler knows become one or two stores.
    template <size_t N, size_t... I>
    char * PutLiteral(char * place, wchar_t const (&text)[N], std::index_sequence<I...>) const noexcept
    {
        auto const put = [&](wchar_t unit)
        {
            if (unit == L'\n' && m_carriageReturns)
                *place++ = '\r';
            *place++ = static_cast<char>(unit);
        };
        (put(text[I]), ...);
        return place;
    }
    void Fail() noexcept
    {
        m_failed = true;
        m_limit = nullptr;
    }
    char * Encode(wchar_t const * text, size_t length, char * place) const noexcept;
    char * EncodeUnit(wchar_t unit, char * place) const noexcept;

    IVekIOStream & m_stream;
    Buffer<char> m_block;
    char * m_place = nullptr; // where the next byte goes
    char * m_limit = nullptr; // from here on there may be no room; null without a block, and once the output has failed
    XMLEncoding m_encoding;
    wchar_t m_plainLimit; // units below it are one byte as they stand
    bool m_carriageReturns;
    bool m_reversed;
    bool m_failed = false;
};

} // namespace vek
