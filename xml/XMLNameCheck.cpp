#include "xml/XMLNameCheck.h"

#include "base/Buffer.h"

#include <limits.h>
#include <wchar.h>

namespace vek
{
namespace
{

constexpr wchar_t ENCODING[] = L"UTF-16LE";

// What a unit of ASCII may be in a name.
enum NameUse : unsigned char
{
    NOWHERE = 0,
    INSIDE = 1,
    ANYWHERE = 2
};

struct NameTable
{
    constexpr NameTable() noexcept
    {
        for (unsigned unit = L'a'; unit <= L'z'; ++unit)
            uses[unit] = uses[unit - L'a' + L'A'] = ANYWHERE;
        uses[L'_'] = uses[L':'] = ANYWHERE;
        for (unsigned unit = L'0'; unit <= L'9'; ++unit)
            uses[unit] = INSIDE;
        uses[L'-'] = uses[L'.'] = INSIDE;
    }

    NameUse uses[0x80] = {};
};
constexpr NameTable NAMES;

/// What the outermost element of a text stands on.
struct Outermost
{
    XML_Parser expat;
    XML_Index begin;
};

void XMLCALL OnStart(void * userData, XML_Char const *, XML_Char const **)
{
    auto & outermost = *static_cast<Outermost *>(userData);
    if (outermost.begin == -1)
        outermost.begin = XML_GetCurrentByteIndex(outermost.expat);
}

bool Parse(XML_Parser expat, Buffer<wchar_t> const & text) noexcept
{
    size_t const bytes = text.Size() * sizeof(wchar_t);
    return bytes <= INT_MAX && XML_Parse(expat, reinterpret_cast<char const *>(text.Data()), static_cast<int>(bytes),
                                         XML_TRUE) == XML_STATUS_OK;
}

bool Append(Buffer<wchar_t> & text, wchar_t const * piece) noexcept
{
    return text.Append(piece, wcslen(piece));
}

} // namespace

XMLNameCheck::~XMLNameCheck()
{
    if (m_expat)
        XML_ParserFree(m_expat);
}

bool XMLNameCheck::IsName(wchar_t const * text, size_t length) noexcept
{
    if (length == 0 || length > INT_MAX / sizeof *text || (*text < 0x80 && NAMES.uses[*text] != ANYWHERE))
        return false;
    bool isAscii = true;
    for (size_t i = 0; i < length; ++i)
    {
        if (text[i] >= 0x80)
            isAscii = false;
        else if (NAMES.uses[text[i]] == NOWHERE)
            return false;
    }
    if (isAscii)
        return true;
    CVekString<wchar_t> & known = m_known[m_hash(text, length) % KNOWN];
    if (static_cast<size_t>(known.GetLength()) == length && wmemcmp(known, text, length) == 0)
        return true;
    if (!AskParser(text, length))
        return false;
    known = CVekString<wchar_t>(text, static_cast<int>(length));
    return true;
}

bool XMLNameCheck::AskParser(wchar_t const * text, size_t length) noexcept
{
    if (m_expat ? !XML_ParserReset(m_expat, ENCODING) : !(m_expat = XML_ParserCreate(ENCODING)))
        return false;
    XML_SetReparseDeferralEnabled(m_expat, XML_FALSE);
    Buffer<wchar_t> tag;
    return Append(tag, L"<") && tag.Append(text, length) && Append(tag, L"/>") && Parse(m_expat, tag);
}

bool AreProlog(CVekString<wchar_t> const & prolog, wchar_t const * references, size_t referencesLength,
               CVekString<wchar_t> const & epilog) noexcept
{
    XML_Parser const expat = XML_ParserCreate(ENCODING);
    if (!expat)
        return false;
    Outermost outermost = {expat, -1};
    XML_SetUserData(expat, &outermost);
    XML_SetStartElementHandler(expat, OnStart);
    XML_SetParamEntityParsing(expat, XML_PARAM_ENTITY_PARSING_ALWAYS);
    XML_SetReparseDeferralEnabled(expat, XML_FALSE);
    Buffer<wchar_t> text;
    bool const isWhole = Append(text, prolog) && Append(text, L"<n>") && text.Append(references, referencesLength) &&
                         Append(text, L"</n>") && Append(text, epilog) && Parse(expat, text);
    XML_ParserFree(expat);
    return isWhole && outermost.begin == static_cast<XML_Index>(prolog.GetLength()) * XML_Index{sizeof(wchar_t)};
}

} // namespace vek
