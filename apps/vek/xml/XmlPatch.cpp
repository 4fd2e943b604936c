#include "xml/XmlPatch.h"

#include "Console.h"

#include <algorithm>

namespace tool
{

namespace
{

/// The lines that a range touches, whole.
XmlRange LinesOf(std::string_view bytes, XmlRange range, XmlEncoding const & encoding)
{
    std::size_t const width = encoding.Width();
    while (range.begin >= width && encoding.UnitAt(bytes, range.begin - width) != '\n')
        range.begin -= width;
    while (range.end < bytes.size() && encoding.UnitAt(bytes, range.end) != '\n')
        range.end += width;
    range.end = std::min(range.end, bytes.size());
    return range;
}

std::size_t CountLines(std::string_view bytes, XmlEncoding const & encoding)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < bytes.size(); i += encoding.Width())
        count += encoding.UnitAt(bytes, i) == '\n' ? 1 : 0;
    return count;
}

std::vector<std::string_view> SplitLines(std::string_view bytes, XmlEncoding const & encoding)
{
    std::vector<std::string_view> lines;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < bytes.size(); i += encoding.Width())
    {
        if (encoding.UnitAt(bytes, i) != '\n')
            continue;
        lines.push_back(bytes.substr(begin, i - begin));
        begin = i + encoding.Width();
    }
    lines.push_back(bytes.substr(begin));
    return lines;
}

/// The lines, each behind a sign.
std::wstring Signed(std::vector<std::string_view> const & lines, wchar_t sign, XmlEncoding const & encoding)
{
    std::wstring text;
    for (std::string_view const bytes : lines)
    {
        std::wstring line = encoding.Decode(bytes);
        if (line.ends_with(L'\r'))
            line.pop_back();
        text += sign + Printable(line) + L"\n";
    }
    return text;
}

/// Leaves out what both begin or end with. Returns how many lines that was at the beginning.
std::size_t RemoveEqual(std::vector<std::string_view> & before, std::vector<std::string_view> & after)
{
    std::size_t count = 0;
    while (count < before.size() && count < after.size() && before[count] == after[count])
        ++count;
    before.erase(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(count));
    after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(count));
    while (!before.empty() && !after.empty() && before.back() == after.back())
    {
        before.pop_back();
        after.pop_back();
    }
    return count;
}

/// A place without lines is behind the line of its number.
std::wstring Hunk(std::size_t line, std::size_t count)
{
    return std::to_wstring(count ? line : line - 1) + (count == 1 ? L"" : L"," + std::to_wstring(count));
}

} // namespace

bool XmlPatch::Sort()
{
    std::stable_sort(m_changes.begin(), m_changes.end(),
                     [](Change const & a, Change const & b)
                     {
                         // What is put in at a place comes before what is replaced from there on.
                         bool const isFirst = a.range.begin == a.range.end && b.range.begin != b.range.end;
                         return a.range.begin != b.range.begin ? a.range.begin < b.range.begin : isFirst;
                     });
    for (std::size_t i = 1; i < m_changes.size(); ++i)
    {
        if (m_changes[i].range.begin < m_changes[i - 1].range.end)
            return false;
    }
    return true;
}

std::string XmlPatch::Apply(std::string const & bytes) const
{
    return Apply(bytes, {0, bytes.size()}, 0, m_changes.size());
}

std::string XmlPatch::Apply(std::string_view bytes, XmlRange range, std::size_t first, std::size_t last) const
{
    std::string changed;
    std::size_t at = range.begin;
    for (; first < last; ++first)
    {
        Change const & change = m_changes[first];
        changed.append(bytes, at, change.range.begin - at).append(change.bytes);
        at = change.range.end;
    }
    return changed.append(bytes, at, range.end - at);
}

std::wstring XmlPatch::Describe(std::wstring const & name, std::string const & bytes,
                                XmlEncoding const & encoding) const
{
    std::wstring text = m_changes.empty() ? L"" : L"--- " + ShownName(name) + L"\n+++ " + ShownName(name) + L"\n";
    std::string_view const all = bytes;
    std::size_t line = 1, counted = 0, added = 0, removed = 0;
    for (std::size_t first = 0, last = 0; first < m_changes.size(); first = last)
    {
        XmlRange lines = LinesOf(all, m_changes[first].range, encoding);
        for (last = first + 1; last < m_changes.size() && m_changes[last].range.begin <= lines.end; ++last)
            lines.end = std::max(lines.end, LinesOf(all, m_changes[last].range, encoding).end);
        std::string const changed = Apply(all, lines, first, last);
        std::vector<std::string_view> before = SplitLines(all.substr(lines.begin, lines.end - lines.begin), encoding);
        std::vector<std::string_view> after = SplitLines(changed, encoding);
        line += CountLines(all.substr(counted, lines.begin - counted), encoding);
        counted = lines.begin;
        std::size_t const equal = RemoveEqual(before, after);
        text += L"@@ -" + Hunk(line + equal, before.size()) + L" +" +
                Hunk(line + equal + added - removed, after.size()) + L" @@\n" + Signed(before, L'-', encoding) +
                Signed(after, L'+', encoding);
        added += after.size();
        removed += before.size();
    }
    return text;
}

} // namespace tool
