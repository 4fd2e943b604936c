#pragma once

#include <stddef.h>

namespace vek
{

/// A plain decimal number, such as "-12.50", as the quotient of a whole number and a power of ten. Of few digits both
/// are exact as a double, so that the quotient is the nearest one, as the runtime finds it.
class PlainNumber
{
public:
    /// Reads a minus sign, digits and at most one point; returns where it ended. It doesn't read much more digits than
    /// can be exact.
    wchar_t const * Scan(wchar_t const * text, wchar_t const * end) noexcept
    {
        if (end - text > MOST_DIGITS + 2)
            end = text + MOST_DIGITS + 2;
        m_isNegative = text != end && *text == L'-';
        wchar_t const * const begin = text + m_isNegative;
        wchar_t const * point = nullptr;
        wchar_t const * at = begin;
        for (; at != end && ((*at >= L'0' && *at <= L'9') || (*at == L'.' && !point)); ++at)
        {
            if (*at == L'.')
                point = at;
            else
                m_whole = m_whole * 10 + (*at - L'0');
        }
        m_decimals = point ? static_cast<int>(at - point) - 1 : 0;
        m_digits = static_cast<int>(at - begin) - (point != nullptr);
        return at;
    }

    /// Whether there were digits, and no more than are exact; otherwise there is no value.
    bool IsExact() const noexcept { return m_digits > 0 && m_digits <= MOST_DIGITS; }
    /// The number without its sign and point.
    long long Whole() const noexcept { return m_whole; }
    int Decimals() const noexcept { return m_decimals; }
    double Value() const noexcept
    {
        double const value = static_cast<double>(m_whole) / POWERS_OF_TEN[m_decimals];
        return m_isNegative ? -value : value;
    }

private:
    static constexpr int MOST_DIGITS = 15;
    static constexpr double POWERS_OF_TEN[MOST_DIGITS + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

    bool m_isNegative = false;
    int m_digits = 0;
    int m_decimals = 0;
    long long m_whole = 0;
};

} // namespace vek
