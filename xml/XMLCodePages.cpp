#include "xml/XMLCodePages.h"

#include "VekText.h"

#include <stdint.h>
#include <windows.h>

namespace vek
{
namespace
{

struct NamedCodePage
{
    wchar_t const * name;
    unsigned int codePage;
};

constexpr unsigned int EUC_JP = 20932;
constexpr int EUC_KANA = 0x8E;
constexpr int EUC_THREE_BYTES = 0x8F;

// Encodings in which ASCII is ASCII, and a first byte tells a character's length. Names in any case.
constexpr NamedCodePage CODE_PAGES[] = {
    {L"windows-1250", 1250},  {L"windows-1251", 1251}, {L"windows-1252", 1252},
    {L"windows-1253", 1253},  {L"windows-1254", 1254}, {L"windows-1255", 1255},
    {L"windows-1256", 1256},  {L"windows-1257", 1257}, {L"windows-1258", 1258},
    {L"windows-874", 874},    {L"TIS-620", 874},       {L"cp1250", 1250},
    {L"cp1251", 1251},        {L"cp1252", 1252},       {L"latin1", 28591},
    {L"ISO8859-1", 28591},    {L"ISO-8859-2", 28592},  {L"ISO-8859-3", 28593},
    {L"ISO-8859-4", 28594},   {L"ISO-8859-5", 28595},  {L"ISO-8859-6", 28596},
    {L"ISO-8859-7", 28597},   {L"ISO-8859-8", 28598},  {L"ISO-8859-9", 28599},
    {L"ISO-8859-13", 28603},  {L"ISO-8859-15", 28605}, {L"KOI8-R", 20866},
    {L"KOI8-U", 21866},       {L"IBM437", 437},        {L"IBM850", 850},
    {L"IBM852", 852},         {L"IBM855", 855},        {L"IBM866", 866},
    {L"macintosh", 10000},    {L"ascii", 20127},       {L"Shift_JIS", 932},
    {L"Windows-31J", 932},    {L"EUC-JP", EUC_JP},     {L"GBK", 936},
    {L"GB2312", 936},         {L"Big5", 950},          {L"EUC-KR", 949},
    {L"KS_C_5601-1987", 949}, {L"ISO-8859-1", 28591},  {L"US-ASCII", 20127},
};

// The length of the character that a byte begins.
int LengthFrom(unsigned int codePage, int lead) noexcept
{
    if (codePage == EUC_JP)
        return lead == EUC_THREE_BYTES ? 3 : lead == EUC_KANA || (lead >= 0xA1 && lead <= 0xFE) ? 2 : 1;
    return IsDBCSLeadByteEx(codePage, static_cast<BYTE>(lead)) ? 2 : 1;
}

int XMLCALL Convert(void * codePage, char const * bytes) noexcept
{
    auto const page = static_cast<unsigned int>(reinterpret_cast<uintptr_t>(codePage));
    auto const * const first = reinterpret_cast<unsigned char const *>(bytes);
    return DecodeCharacter(page, first, LengthFrom(page, *first));
}

} // namespace

unsigned int CodePageOf(wchar_t const * name) noexcept
{
    for (NamedCodePage const & known : CODE_PAGES)
    {
        if (VekStrCompareW(name, known.name, false) == 0)
            return known.codePage;
    }
    return 0;
}

int DecodeCharacter(unsigned int codePage, unsigned char const * bytes, int length) noexcept
{
    char narrow[2] = {static_cast<char>(bytes[0]), static_cast<char>(length > 1 ? bytes[1] : 0)};
    if (length == 3) // the system's code page has these characters with two bytes
    {
        narrow[0] = static_cast<char>(bytes[1]);
        narrow[1] = static_cast<char>(bytes[2] & 0x7F);
    }
    if (codePage == EUC_JP && *bytes == EUC_KANA)
        return bytes[1] >= 0xA1 && bytes[1] <= 0xDF ? 0xFF61 + bytes[1] - 0xA1 : -1;
    wchar_t wide[2];
    int const count = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, narrow, length > 1 ? 2 : 1, wide, 2);
    return count == 1 && (wide[0] & 0xF800) != 0xD800 ? wide[0] : -1;
}

int EncodeCharacter(unsigned int codePage, wchar_t unit, unsigned char (&bytes)[3]) noexcept
{
    char narrow[3] = {};
    int length = WideCharToMultiByte(codePage, 0, &unit, 1, narrow, 2, nullptr, nullptr);
    if (codePage == EUC_JP && unit >= 0xFF61 && unit <= 0xFF9F)
    {
        narrow[0] = static_cast<char>(EUC_KANA);
        narrow[1] = static_cast<char>(unit - 0xFF61 + 0xA1);
        length = 2;
    }
    else if (codePage == EUC_JP && length == 2 && (narrow[1] & 0x80) == 0)
    {
        narrow[2] = static_cast<char>(narrow[1] | 0x80);
        narrow[1] = narrow[0];
        narrow[0] = static_cast<char>(EUC_THREE_BYTES);
        length = 3;
    }
    for (int i = 0; i < length; ++i)
        bytes[i] = static_cast<unsigned char>(narrow[i]);
    // What the system gives for a character that it lacks is another one.
    bool const isSame = length > 0 && bytes[0] >= 0x80 && LengthFrom(codePage, bytes[0]) == length &&
                        DecodeCharacter(codePage, bytes, length) == unit;
    return isSame ? length : 0;
}

bool FillEncoding(unsigned int codePage, XML_Encoding & encoding) noexcept
{
    if (!IsValidCodePage(codePage))
        return false;
    for (int i = 0; i < 256; ++i)
    {
        auto const byte = static_cast<unsigned char>(i);
        int const length = i < 0x80 ? 1 : LengthFrom(codePage, i);
        encoding.map[i] = i < 0x80 ? i : length > 1 ? -length : DecodeCharacter(codePage, &byte, 1);
    }
    encoding.data = reinterpret_cast<void *>(uintptr_t{codePage});
    encoding.convert = Convert;
    encoding.release = nullptr;
    return true;
}

} // namespace vek
