#include "xml/XmlValue.h"

#include "Utf8.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tool
{

namespace
{

constexpr std::pair<std::wstring_view, wchar_t> ENTITIES[] = {
    {L"amp", L'&'}, {L"lt", L'<'}, {L"gt", L'>'}, {L"apos", L'\''}, {L"quot", L'"'}};
constexpr std::size_t LONGEST_REFERENCE = 32;
constexpr unsigned int LAST_CHARACTER = 0x10FFFF;

/// The number in a reference such as "#x41"; nothing for what is none.
std::optional<unsigned int> NumberOf(std::wstring_view reference)
{
    bool const isHex = reference.starts_with(L"#x");
    unsigned int number = 0;
    reference.remove_prefix(isHex ? 2 : 1);
    for (wchar_t const unit : reference)
    {
        unsigned int const digit = unit >= L'0' && unit <= L'9'   ? unit - L'0'
                                   : unit >= L'a' && unit <= L'f' ? unit - L'a' + 10U
                                   : unit >= L'A' && unit <= L'F' ? unit - L'A' + 10U
                                                                  : 16U;
        number = number * (isHex ? 16 : 10) + digit;
        if (digit >= (isHex ? 16U : 10U) || number > LAST_CHARACTER)
            return std::nullopt;
    }
    return reference.empty() ? std::nullopt : std::optional(number);
}

/// Appends what a reference stands for; false for one that isn't known.
bool AppendReferred(std::wstring_view reference, std::wstring & text)
{
    if (!reference.starts_with(L'#'))
    {
        auto const * const found = std::find_if(std::begin(ENTITIES), std::end(ENTITIES),
                                                [reference](auto const & entity) { return entity.first == reference; });
        if (found != std::end(ENTITIES))
            text.push_back(found->second);
        return found != std::end(ENTITIES);
    }
    std::optional<unsigned int> const number = NumberOf(reference);
    if (!number)
        return false;
    if (*number < 0x10000)
        text.push_back(static_cast<wchar_t>(*number));
    else
        text.append({static_cast<wchar_t>(0xD7C0 + (*number >> 10)), static_cast<wchar_t>(0xDC00 | (*number & 0x3FF))});
    return true;
}

} // namespace

std::wstring ReadValue(std::wstring_view stored)
{
    std::wstring value;
    for (std::size_t i = 0; i < stored.size(); ++i)
    {
        std::size_t const end = stored[i] == L'&' ? stored.substr(i, LONGEST_REFERENCE).find(L';') : stored.npos;
        if (end != stored.npos && AppendReferred(stored.substr(i + 1, end - 1), value))
            i += end;
        else
            value.push_back(stored[i]);
    }
    return value;
}

std::wstring StoreValue(std::wstring_view value)
{
    return WriteValue(value, L'"');
}

std::wstring WriteValue(std::wstring_view value, wchar_t quote)
{
    std::wstring written;
    for (wchar_t const unit : value)
    {
        if (unit == L'&')
            written += L"&amp;";
        else if (unit == L'<')
            written += L"&lt;";
        else if (unit == L'>')
            written += L"&gt;";
        else if (unit == quote)
            written += quote == L'"' ? L"&quot;" : L"&apos;";
        else if (unit == L'\n' || unit == L'\t' || unit == L'\r')
            written += L"&#" + std::to_wstring(static_cast<unsigned int>(unit)) + L";";
        else
            written.push_back(unit);
    }
    return written;
}

bool IsXmlText(std::wstring_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        wchar_t const unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            ++i;
        else if (IsHighSurrogate(unit) || IsLowSurrogate(unit) || unit >= 0xFFFE ||
                 (unit < 0x20 && unit != L'\t' && unit != L'\n' && unit != L'\r'))
            return false;
    }
    return true;
}

bool IsXmlName(std::wstring_view name)
{
    auto const isLetter = [](wchar_t unit) { return (unit | 0x20) >= L'a' && (unit | 0x20) <= L'z'; };
    auto const begins = [isLetter](wchar_t unit)
    { return isLetter(unit) || unit == L'_' || unit == L':' || unit >= 0x80; };
    auto const continues = [begins](wchar_t unit)
    { return begins(unit) || (unit >= L'0' && unit <= L'9') || unit == L'-' || unit == L'.'; };
    return !name.empty() && begins(name[0]) && std::all_of(name.begin(), name.end(), continues) && IsXmlText(name);
}

} // namespace tool
