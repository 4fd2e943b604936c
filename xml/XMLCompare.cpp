#include "VekEdit.h"

#include "base/Buffer.h"
#include "xml/XMLMarkup.h"

#include <string.h>

#include <string_view>

namespace
{

using View = std::wstring_view;

constexpr View NEW_LINE = L"<EOL>";
constexpr size_t LONGEST_REFERENCE = 32; // ten digits or so are enough

View ViewOf(CVekString<wchar_t> const & text) noexcept
{
    return {text, static_cast<size_t>(text.GetLength())};
}

bool AppendCharacter(vek::Buffer<wchar_t> & text, unsigned int character) noexcept
{
    if (character > 0xFFFF && !text.Append(static_cast<wchar_t>(0xD7C0 + (character >> 10))))
        return false;
    return text.Append(static_cast<wchar_t>(character > 0xFFFF ? 0xDC00 | (character & 0x3FF) : character));
}

/// What a value means to a reader, with the marker of a newline as one; false when memory is exhausted.
bool Decode(View stored, vek::Buffer<wchar_t> & text) noexcept
{
    for (size_t i = 0; i < stored.size(); ++i)
    {
        unsigned int character = stored[i];
        unsigned int referred = 0;
        size_t const length =
            character == L'&' ? vek::ReadReference(stored.data() + i, stored.size() - i, referred) : 0;
        if (length > 0 && length <= LONGEST_REFERENCE)
        {
            character = referred;
            i += length - 1;
        }
        if (!AppendCharacter(text, character))
            return false;
        if (text.Size() >= NEW_LINE.size() && text.Back() == L'>' &&
            View(text.Data() + text.Size() - NEW_LINE.size(), NEW_LINE.size()) == NEW_LINE)
        {
            for (size_t n = 0; n < NEW_LINE.size(); ++n)
                text.PopBack();
            text.Append(L'\n');
        }
    }
    return true;
}

bool IsSameValue(View first, View second) noexcept
{
    if (first == second)
        return true;
    vek::Buffer<wchar_t> a, b;
    return Decode(first, a) && Decode(second, b) && View(a.Data(), a.Size()) == View(b.Data(), b.Size());
}

/// Apart from what is below them.
bool IsSameAlone(IVekXMLElement const & a, IVekXMLElement const & b) noexcept
{
    int const attributes = a.GetNumAttributes(), size = a.GetCDATASectionSize();
    if (a.GetName() != b.GetName() || attributes != b.GetNumAttributes() ||
        a.HasCDATASection() != b.HasCDATASection() || size != b.GetCDATASectionSize())
        return false;
    for (int i = 0; i < attributes; ++i)
    {
        if (a.GetAttributeName(i) != b.GetAttributeName(i) ||
            !IsSameValue(ViewOf(a.GetAttributeValue(i)), ViewOf(b.GetAttributeValue(i))))
            return false;
    }
    return size == 0 || memcmp(a.GetCDATASection(), b.GetCDATASection(), static_cast<size_t>(size)) == 0;
}

struct Children
{
    IVekXMLElement const * parent;
    int next;

    /// The next that is no null entry; null at the end.
    IVekXMLElement const * Take() noexcept
    {
        IVekXMLElement const * child = nullptr;
        while (!child && next < parent->GetNumChildren())
            child = parent->GetChild(next++);
        return child;
    }
};

struct OpenPair
{
    Children first, second;
};

} // namespace

bool VekIsSameXML(IVekXMLElement const * first, IVekXMLElement const * second)
{
    if (!first || !second)
        return first == second;
    vek::Buffer<OpenPair> open;
    if (!IsSameAlone(*first, *second) || !open.Append({{first, 0}, {second, 0}}))
        return false;
    while (!open.Empty())
    {
        IVekXMLElement const * const a = open.Back().first.Take();
        IVekXMLElement const * const b = open.Back().second.Take();
        if (!a && !b)
            open.PopBack();
        else if (!a || !b || !IsSameAlone(*a, *b) || !open.Append({{a, 0}, {b, 0}}))
            return false;
    }
    return true;
}
