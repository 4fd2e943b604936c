#include "xml/XMLMarkup.h"

#include <emmintrin.h>

namespace vek
{
namespace
{

constexpr wchar_t SPECIAL[] = {L'&', L'<', L'>', L'"'};
constexpr unsigned int BEYOND = 0x110000;

struct Entity
{
    wchar_t const * name;
    size_t length;
    wchar_t unit;
};
constexpr Entity ENTITIES[] = {
    {L"amp", 3, L'&'}, {L"lt", 2, L'<'}, {L"gt", 2, L'>'}, {L"quot", 4, L'"'}, {L"apos", 4, L'\''}};
constexpr size_t LONGEST_NAME = 4;

int DigitOf(wchar_t unit) noexcept
{
    if (unit >= L'0' && unit <= L'9')
        return unit - L'0';
    unit |= 0x20;
    return unit >= L'a' && unit <= L'f' ? unit - L'a' + 10 : 16;
}

bool IsCharacter(unsigned int code) noexcept
{
    if (code < 0x20)
        return code == '\n' || code == '\t' || code == '\r';
    return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < BEYOND);
}

// The length of the reference to a character that the text, which begins with "&#", begins with; 0 for none.
size_t ReadNumber(wchar_t const * text, size_t length, unsigned int & code) noexcept
{
    bool const isHex = length > 2 && text[2] == L'x';
    size_t const first = isHex ? 3 : 2;
    int const base = isHex ? 16 : 10;
    code = 0;
    for (size_t i = first; i < length; ++i)
    {
        if (text[i] == L';')
            return i > first && code < BEYOND ? i + 1 : 0;
        if (DigitOf(text[i]) >= base || code >= BEYOND)
            return 0;
        code = code * static_cast<unsigned int>(base) + static_cast<unsigned int>(DigitOf(text[i]));
    }
    return 0;
}

constexpr unsigned int LAST_TABLED = 0x40;

// One for the units that need a look, in text, values and elsewhere.
struct LookTable
{
    constexpr LookTable() noexcept
    {
        for (unsigned unit = 0; unit < 0x20; ++unit)
            look[0][unit] = look[1][unit] = look[2][unit] = true;
        look[0][L'\t'] = look[2][L'\t'] = false;
        look[0][L'&'] = look[0][L'<'] = look[0][L'>'] = true;
        look[1][L'&'] = look[1][L'<'] = look[1][L'"'] = true;
    }

    bool look[3][LAST_TABLED] = {};
};
constexpr LookTable LOOKS;

} // namespace

wchar_t PredefinedEntity(wchar_t const * name, size_t length) noexcept
{
    for (Entity const & entity : ENTITIES)
    {
        if (length == entity.length && wmemcmp(name, entity.name, length) == 0)
            return entity.unit;
    }
    return 0;
}

size_t ReadReference(wchar_t const * text, size_t length, unsigned int & character) noexcept
{
    if (BeginsWith(text, length, L"&#"))
        return ReadNumber(text, length, character);
    size_t end = 1;
    while (end < length && end <= LONGEST_NAME && text[end] != L';')
        ++end;
    character =
        length > 0 && *text == L'&' && end < length && text[end] == L';' ? PredefinedEntity(text + 1, end - 1) : 0;
    return character ? end + 1 : 0;
}

size_t ReferenceLength(wchar_t const * text, size_t length) noexcept
{
    unsigned int character = 0;
    size_t const referenceLength = ReadReference(text, length, character);
    return referenceLength && IsCharacter(character) ? referenceLength : 0;
}

bool NeedsLook(wchar_t unit, XMLPlace place) noexcept
{
    return unit < LAST_TABLED ? LOOKS.look[static_cast<int>(place)][unit]
                              : unit >= 0xD800 && (unit < 0xE000 || unit >= 0xFFFE);
}

size_t PlainLength(wchar_t const * text, size_t length) noexcept
{
    __m128i const blank = _mm_set1_epi16(L' ');
    __m128i const lastPlain = _mm_set1_epi16(static_cast<short>(0xD7FF));
    size_t i = 0;
    for (; length - i >= 8; i += 8)
    {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(text + i));
        __m128i hits = _mm_or_si128(_mm_subs_epu16(blank, units), _mm_subs_epu16(units, lastPlain));
        hits = _mm_xor_si128(_mm_cmpeq_epi16(hits, _mm_setzero_si128()), _mm_set1_epi16(-1));
        for (wchar_t const unit : SPECIAL)
            hits = _mm_or_si128(hits, _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit))));
        if (_mm_movemask_epi8(hits) != 0)
            break;
    }
    while (i < length && !NeedsLook(text[i], XMLPlace::TEXT) && !NeedsLook(text[i], XMLPlace::VALUE))
        ++i;
    return i;
}

} // namespace vek
