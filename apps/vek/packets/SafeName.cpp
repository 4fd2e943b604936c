#include "packets/SafeName.h"

#include <algorithm>
#include <cwctype>

namespace tool
{

namespace
{

constexpr std::size_t LONGEST_NAME = 255;

bool EqualsNoCase(std::wstring_view text, std::wstring_view upper)
{
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(),
                      [](wchar_t a, wchar_t b)
                      { return (a >= L'a' && a <= L'z' ? static_cast<wchar_t>(a - 32) : a) == b; });
}

/// Devices are there in every folder, under any ending: "con", "Nul.txt", "LPT1 .old".
bool IsDevice(std::wstring_view name)
{
    std::wstring_view stem = name.substr(0, name.find(L'.'));
    while (!stem.empty() && stem.back() == L' ')
        stem.remove_suffix(1);
    for (std::wstring_view const device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"})
    {
        if (EqualsNoCase(stem, device))
            return true;
    }
    bool const isNumbered =
        stem.size() == 4 && (EqualsNoCase(stem.substr(0, 3), L"COM") || EqualsNoCase(stem.substr(0, 3), L"LPT"));
    // The raised digits count too.
    return isNumbered && std::wstring_view(L"0123456789\x00B9\x00B2\x00B3").find(stem[3]) != std::wstring_view::npos;
}

} // namespace

wchar_t const * WhyUnsafe(std::wstring_view name)
{
    if (name.empty())
        return L"it has no name";
    if (name.size() > LONGEST_NAME)
        return L"its name is too long";
    if (std::any_of(name.begin(), name.end(),
                    [](wchar_t unit) { return unit < 0x20 || std::wcschr(L"<>:\"/\\|?*", unit); }))
        return L"its name has characters that no file's name may have";
    if (name.back() == L'.' || name.back() == L' ') // "." and ".." with them
        return L"its name ends in a dot or blank";
    return IsDevice(name) ? L"its name is a device's" : nullptr;
}

} // namespace tool
