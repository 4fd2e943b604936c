#include "xml/XMLEscape.h"

#include "text/StringAccess.h"

#include <emmintrin.h>
#include <limits.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

#include <bit>

namespace vek
{
namespace
{

struct Replacement
{
    wchar_t character;
    wchar_t const * text;
    size_t length;
};

// In the order of the passes that undo them: "&amp;" first, so that "&amp;lt;" comes back as "<". Kept: hosts' files
// rely on it.
constexpr Replacement ENTITIES[] = {
    {L'&', L"&amp;", 5}, {L'<', L"&lt;", 4}, {L'>', L"&gt;", 4}, {L'\'', L"&apos;", 6}, {L'"', L"&quot;", 6},
};
constexpr Replacement ESCAPED_NEWLINE = {L'\n', L"&lt;EOL&gt;", 11};
constexpr Replacement NEWLINE_MARKER = {L'\n', L"<EOL>", 5};
constexpr Replacement EXACT_MARKER = {L'<', L"&lt;EOL&#62;", 12};

Replacement const * FindReplacement(wchar_t character) noexcept
{
    if (character == L'\n')
        return &ESCAPED_NEWLINE;
    for (Replacement const & entity : ENTITIES)
    {
        if (entity.character == character)
            return &entity;
    }
    return nullptr;
}

// One bit for each of the sixteen units that is the terminator or needs escaping.
unsigned StopMask(__m128i const * block) noexcept
{
    // Units beyond ASCII become bytes that are no ASCII, or the last of it.
    __m128i const units = _mm_packs_epi16(_mm_load_si128(block), _mm_load_si128(block + 1));
    auto const are = [](__m128i bytes, char what) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(what)); };
    // Pairs that differ in one bit: & and ', < and >.
    __m128i hits = _mm_or_si128(are(_mm_or_si128(units, _mm_set1_epi8('&' ^ '\'')), '\''),
                                are(_mm_or_si128(units, _mm_set1_epi8('<' ^ '>')), '>'));
    hits = _mm_or_si128(hits, _mm_or_si128(are(units, '"'), are(units, '\n')));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(hits, are(units, 0))));
}

// One unit of a text at any address, odd ones included.
wchar_t UnitAt(wchar_t const * text, size_t index) noexcept
{
    wchar_t unit;
    memcpy(&unit, text + index, sizeof unit);
    return unit;
}

EscapeMeasure MeasureUnaligned(wchar_t const * text) noexcept
{
    EscapeMeasure measure = {0, 0};
    for (wchar_t unit = UnitAt(text, 0); unit; unit = UnitAt(text, ++measure.length))
    {
        Replacement const * const replacement = FindReplacement(unit);
        measure.escapedLength += replacement ? replacement->length : 1;
    }
    return measure;
}

// Replaces every occurrence, front to back; returns the new length.
size_t ReplaceAll(wchar_t * text, size_t length, Replacement const & what) noexcept
{
    size_t written = 0;
    for (size_t read = 0; read < length;)
    {
        if (text[read] == what.text[0] && length - read >= what.length &&
            memcmp(text + read, what.text, what.length * sizeof(wchar_t)) == 0)
        {
            text[written++] = what.character;
            read += what.length;
        }
        else
            text[written++] = text[read++];
    }
    return written;
}

// Writes the escaped form; the place holds the measured length.
void Escape(wchar_t const * text, size_t length, wchar_t * place) noexcept
{
    for (size_t i = 0; i < length; ++i)
    {
        wchar_t const character = UnitAt(text, i);
        Replacement const * const replacement = character <= L'>' ? FindReplacement(character) : nullptr;
        if (!replacement)
        {
            *place++ = character;
            continue;
        }
        memcpy(place, replacement->text, replacement->length * sizeof(wchar_t));
        place += replacement->length;
    }
}

} // namespace

EscapeMeasure MeasureEscape(wchar_t const * text) noexcept
{
    auto const address = reinterpret_cast<uintptr_t>(text);
    if (address % sizeof(wchar_t) != 0)
        return MeasureUnaligned(text);
    // Aligned blocks of 32 bytes never cross into a page that the text does not touch; what lies before the text is
    // masked out.
    auto const * block = reinterpret_cast<__m128i const *>(address & ~static_cast<uintptr_t>(31));
    unsigned mask = StopMask(block) & (0xFFFFU << (address % 32 / sizeof(wchar_t)));
    size_t extra = 0;
    for (;; mask = StopMask(block += 2))
    {
        for (; mask; mask &= mask - 1)
        {
            wchar_t const * const stop = reinterpret_cast<wchar_t const *>(block) + std::countr_zero(mask);
            if (!*stop)
            {
                auto const length = static_cast<size_t>(stop - text);
                return {length, length + extra};
            }
            extra += FindReplacement(*stop)->length - 1;
        }
    }
}

bool EscapedText::Make(wchar_t const * text) noexcept
{
    EscapeMeasure const measure = MeasureEscape(text);
    if (measure.escapedLength >= INT_MAX / sizeof(wchar_t))
        return false;
    m_text = text;
    m_length = static_cast<int>(measure.escapedLength);
    if (measure.escapedLength == measure.length)
        return true;
    m_scratch.Clear();
    wchar_t * const place = m_scratch.Extend(measure.escapedLength);
    if (place)
        Escape(text, measure.length, place);
    m_text = place;
    return place != nullptr;
}

bool EscapedText::MakeExact(wchar_t const * text) noexcept
{
    EscapeMeasure const measure = MeasureEscape(text);
    m_text = text;
    m_length = static_cast<int>(measure.length);
    if (measure.escapedLength == measure.length && measure.length < INT_MAX / sizeof(wchar_t))
        return true;
    // A marker gets one character longer than it was measured.
    size_t const limit = measure.escapedLength + measure.length / NEWLINE_MARKER.length;
    m_scratch.Clear();
    wchar_t * const place = limit < INT_MAX / sizeof(wchar_t) ? m_scratch.Extend(limit) : nullptr;
    m_text = place;
    if (!place)
        return false;
    wchar_t * end = place;
    for (wchar_t const * at = text; *at;)
    {
        bool const isMarker = wcsncmp(at, NEWLINE_MARKER.text, NEWLINE_MARKER.length) == 0;
        Replacement const * const replacement = isMarker                      ? &EXACT_MARKER
                                                : *at <= L'>' && *at != L'\n' ? FindReplacement(*at)
                                                                              : nullptr;
        at += isMarker ? NEWLINE_MARKER.length : 1;
        if (!replacement)
        {
            *end++ = at[-1];
            continue;
        }
        memcpy(end, replacement->text, replacement->length * sizeof(wchar_t));
        end += replacement->length;
    }
    m_length = static_cast<int>(end - place);
    return true;
}

bool EscapeTo(wchar_t const * text, CVekString<wchar_t> & target) noexcept
{
    EscapedText escaped;
    if (!escaped.Make(text))
        return false;
    CVekString<wchar_t> stored(escaped.Text(), escaped.Length());
    if (stored.GetLength() != escaped.Length())
        return false;
    target.Swap(stored);
    return true;
}

void Unescape(CVekString<wchar_t> & text) noexcept
{
    auto length = static_cast<size_t>(text.GetLength());
    if (!wmemchr(text, L'&', length) && !wmemchr(text, L'<', length))
        return;
    // The text only gets shorter: it stays in its block.
    wchar_t * const characters = StringAccess<wchar_t>::Text(text);
    for (Replacement const & entity : ENTITIES)
        length = ReplaceAll(characters, length, entity);
    length = ReplaceAll(characters, length, NEWLINE_MARKER);
    StringAccess<wchar_t>::SetLength(characters, length);
}

} // namespace vek
