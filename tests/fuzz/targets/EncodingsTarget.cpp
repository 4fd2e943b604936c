// XML in each of the encodings: what is read is what the same text says in UTF-16, and it can be written again.

#include "VekLib.h"

#include "fuzz/WriteWhole.h"
#include "support/XMLKit.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace fuzz
{

namespace
{

constexpr unsigned UTF16 = 1200, UTF16_BIG = 1201, UTF8 = 65001, EUC_JP = 20932;
constexpr char const * NAMES[] = {
    "UTF-16",       "UTF-16",       "UTF-8",        "Shift_JIS",    "EUC-JP",       "GBK",         "Big5",
    "EUC-KR",       "windows-1250", "windows-1251", "windows-1252", "windows-1253", "windows-874", "windows-1255",
    "ISO-8859-1",   "ISO-8859-2",   "ISO-8859-3",   "ISO-8859-6",   "ISO-8859-8",   "ISO-8859-15", "KOI8-R",
    "windows-1258", "IBM437",       "IBM866",       "macintosh",    "us-ascii"};

// Of two bytes each.
std::string Wide(std::wstring const & text, bool isBig)
{
    std::string bytes;
    for (wchar_t const unit : text)
        bytes.append({static_cast<char>(isBig ? unit >> 8 : unit), static_cast<char>(isBig ? unit : unit >> 8)});
    return bytes;
}

std::wstring Decoded(unsigned codePage, std::string const & bytes)
{
    std::wstring text(bytes.size(), L'\0');
    int const size = static_cast<int>(bytes.size());
    int const length = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), size);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::wstring AllOf(CVekRef<IVekXMLDocument> const & document)
{
    return TreeText(*document) + DTDText(*document);
}

} // namespace

void RunEncodings(Bytes input)
{
    Reader reader(input);
    unsigned const encoding = reader.Below(std::size(NAMES));
    Bytes const rest = reader.Rest();
    std::string text(rest.begin(), rest.end());
    std::string const declaration = std::string("<?xml version='1.0' encoding='") + NAMES[encoding] + "'?>";
    std::wstring units(declaration.begin(), declaration.end());
    for (std::uint8_t const byte : rest)
        units += static_cast<wchar_t>(byte < 0x80 ? byte : byte < 0xF0 ? byte * 0x101 : 0xD800 + (byte & 15) * 0x55);
    bool const isWide = encoding < 2;
    std::string const bytes = isWide ? Wide(L"\xFEFF" + units, encoding == 1) : declaration + text;
    CVekXMLParser parser;
    parser.SetKeepAll(VEK_XML_KEEP_ALL);
    auto const document = NewDocument();
    if (!parser.ParseXMLMemory(bytes.data(), static_cast<unsigned>(bytes.size()), document.Get()) ||
        !parser.IsComplete())
        return;
    unsigned const codePage = parser.GetSourceCodePage();
    Check(!isWide || codePage == (encoding ? UTF16_BIG : UTF16), "a mark tells the encoding");
    std::wstring const all = AllOf(document);
    TestStream stream;
    if (!WriteWhole(stream, document.Get(), parser,
                    {reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size()}))
        return;
    auto const again = NewDocument();
    Check(parser.ParseXMLMemory(stream.bytes.data(), static_cast<unsigned>(stream.bytes.size()), again.Get()) &&
              parser.IsComplete() && AllOf(again) == all,
          "what is written in an encoding reads as the same");
    // The system has no EUC-JP of three bytes.
    if (isWide || (codePage == EUC_JP && text.find_first_of("\x8E\x8F") != text.npos))
        return;
    std::string const other = Wide(L"\xFEFF" + Decoded(codePage, text), false);
    auto const same = NewDocument();
    Check(parser.ParseXMLMemory(other.data(), static_cast<unsigned>(other.size()), same.Get()) && parser.IsComplete() &&
              AllOf(same) == all,
          "an encoding says what UTF-16 says");
}

} // namespace fuzz
