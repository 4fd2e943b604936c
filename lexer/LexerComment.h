#pragma once

#include "VekLexer.h"
#include "VekText.h"

/// A registered pair of comment delimiters.
class CVekLexer::Comment
{
public:
    // Longer delimiters are refused.
    static constexpr size_t LONGEST_DELIMITER = 16;

    Comment(wchar_t const * start, wchar_t const * end)
        : m_start(start), m_end(end), m_isLine(m_end.Compare(L"\n", false) == 0)
    {
    }

    /// Whether the start delimiter stands at the place.
    bool StartsAt(wchar_t const * at, wchar_t const * end) const
    {
        // Kept: the first character counts with its case. An empty start is found at a zero in the text.
        return *at == m_start[0] && Matches(m_start, 0, at, end);
    }
    /// Whether the end delimiter's first character is followed by its others at the place.
    bool EndsAt(wchar_t const * rest, wchar_t const * end) const { return Matches(m_end, 1, rest, end); }

    CVekString<wchar_t> m_start;
    CVekString<wchar_t> m_end;
    bool m_isLine;
    Comment * m_next = nullptr; // of the same chain in the tables

private:
    static bool Matches(CVekString<wchar_t> const & delimiter, int from, wchar_t const * at, wchar_t const * end);
};
