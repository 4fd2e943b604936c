#include "xml/XMLMarkup.h"

#include <emmintrin.h>

namespace vek
{
namespace
{

constexpr wchar_t SPECIAL[] = {L'&', L'<', L'>', L'"'};
constexpr wchar_t const * NAMED[] = {L"&amp;", L"&lt;", L"&gt;", L"&quot;", L"&apos;"};

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
    return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

// The length of the reference to a character that the text, which begins with "&#", begins with; 0 for none.
size_t NumberLength(wchar_t const * text, size_t length) noexcept
{
    bool const isHex = length > 2 && text[2] == L'x';
    size_t const first = isHex ? 3 : 2;
    int const base = isHex ? 16 : 10;
    unsigned int code = 0;
    for (size_t i = first; i < length; ++i)
    {
        if (text[i] == L';')
            return i > first && IsCharacter(code) ? i + 1 : 0;
        if (DigitOf(text[i]) >= base || code >= 0x110000)
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

size_t ReferenceLength(wchar_t const * text, size_t length) noexcept
{
    if (BeginsWith(text, length, L"&#"))
        return NumberLength(text, length);
    for (wchar_t const * known : NAMED)
    {
        size_t const knownLength = wcslen(known);
        if (length >= knownLength && wmemcmp(text, known, knownLength) == 0)
            return knownLength;
    }
    return 0;
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
