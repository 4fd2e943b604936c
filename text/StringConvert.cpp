#include "VekCore.h"
#include "VekText.h"

#include "text/Scan.h"
#include "text/StringAccess.h"

namespace
{

template <class To, class From>
CVekString<To> Convert(From const * text, wchar_t const * failure)
{
    size_t const length = vek::TextLength(text);
    if (length == 0)
        return CVekString<To>();
    To * place;
    CVekString<To> result = vek::StringAccess<To>::Make(length, place);
    if (!place)
    {
        VekLogOutput(0, failure);
        return result;
    }
    for (size_t i = 0; i < length; ++i)
        place[i] = vek::CharTraits<To>::From(text[i]);
    // A wide character whose low byte is 0 ends the narrow text.
    if (sizeof(To) < sizeof(From))
        vek::StringAccess<To>::SetLength(place, vek::BoundedLength(place, length));
    return result;
}

} // namespace

CVekString<wchar_t> VekCreateStrAtoW(char const * text)
{
    return Convert<wchar_t>(text, L"VekCreateStrAtoW --> Failed to allocate buffre");
}

CVekString<char> VekCreateStrWtoA(wchar_t const * text)
{
    return Convert<char>(text, L"VekCreateStrWtoA --> Failed to allocate buffre");
}

CVekString<wchar_t> VekCreateStrTtoW(wchar_t const * text)
{
    return Convert<wchar_t>(text, L"VekCreateStrTtoW --> Failed to allocate buffre");
}

CVekString<char> VekCreateStrTtoA(wchar_t const * text)
{
    return Convert<char>(text, L"VekCreateStrTtoA --> Failed to allocate buffre");
}

CVekString<wchar_t> VekCreateStrWtoT(wchar_t const * text)
{
    return Convert<wchar_t>(text, L"VekCreateStrWtoT --> Failed to allocate buffre");
}

CVekString<wchar_t> VekCreateStrAtoT(char const * text)
{
    return Convert<wchar_t>(text, L"VekCreateStrAtoT --> Failed to allocate buffre");
}
