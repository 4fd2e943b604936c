#include "VekText.h"

#include "text/BigNumber.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace
{

template <class T>
bool IsDigit(T unit)
{
    return unit >= '0' && unit <= '9';
}

template <class T>
T const * SkipSpace(T const * at)
{
    while (*at == ' ' || (*at >= '\t' && *at <= '\r'))
        ++at;
    return at;
}

// The powers of ten that are exact.
template <class Real>
constexpr int MOST_POWER = sizeof(Real) == sizeof(double) ? 22 : 10;
constexpr double POWERS_OF_TEN[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// The parts of a decimal number, and its value where one rounding gives the nearest.
template <class T, class Real>
class Decimal
{
public:
    /// Null when no number begins there, otherwise where it ends.
    T const * Scan(T const * at)
    {
        m_isNegative = *at == '-';
        if (*at == '-' || *at == '+')
            ++at;
        m_begin = at;
        at = ScanDigits(at, 0);
        if (*at == '.')
            at = ScanDigits(at + 1, 1);
        if (m_digits == 0)
            return ScanWord(at);
        m_digitsEnd = at;
        return *at == 'e' || *at == 'E' ? ScanExponent(at) : at;
    }

    /// False when the number is too large.
    bool GetValue(Real & value) const
    {
        Real amount = m_word;
        if (m_digits > 0 && !GetExact(amount) && !GetNearest(amount))
            return false;
        value = m_isNegative ? -amount : amount;
        return true;
    }

private:
    using Limits = std::numeric_limits<Real>;

    // What a number has exactly: whole numbers up to that power of two, and powers of ten up to MOST_POWER.
    static constexpr uint64_t MOST_WHOLE = uint64_t{1} << std::numeric_limits<Real>::digits;
    static constexpr uint64_t KEPT = 1000000000000000000;
    // No number that lies between two doubles has more.
    static constexpr int MOST_DIGITS = 800;

    T const * ScanDigits(T const * at, int isFraction)
    {
        for (; IsDigit(*at); ++at, ++m_digits)
        {
            m_isLong = m_isLong || m_whole >= KEPT;
            if (m_isLong)
                continue;
            m_whole = m_whole * 10 + static_cast<uint64_t>(*at - '0');
            m_power -= isFraction;
        }
        return at;
    }
    // An "e" that no digits follow is no part of the number.
    T const * ScanExponent(T const * mark)
    {
        T const * at = mark + 1;
        bool const isNegative = *at == '-';
        if (*at == '-' || *at == '+')
            ++at;
        if (!IsDigit(*at))
            return mark;
        int exponent = 0;
        for (; IsDigit(*at); ++at)
        {
            if (exponent < 100000000)
                exponent = exponent * 10 + static_cast<int>(*at - '0');
        }
        m_exponent = isNegative ? -exponent : exponent;
        m_power += m_exponent;
        return at;
    }
    T const * ScanWord(T const * at)
    {
        if (at != m_begin)
            return nullptr;
        bool const isInfinite = at[0] == 'i' && at[1] == 'n' && at[2] == 'f';
        if (!isInfinite && !(at[0] == 'n' && at[1] == 'a' && at[2] == 'n'))
            return nullptr;
        m_word = isInfinite ? std::numeric_limits<Real>::infinity() : std::numeric_limits<Real>::quiet_NaN();
        return at + 3;
    }

    bool GetExact(Real & value) const
    {
        if (m_isLong || m_whole > MOST_WHOLE || m_power < -MOST_POWER<Real> || m_power > MOST_POWER<Real>)
            return false;
        auto const whole = static_cast<Real>(static_cast<int64_t>(m_whole));
        value = m_power < 0 ? whole / static_cast<Real>(POWERS_OF_TEN[-m_power])
                            : whole * static_cast<Real>(POWERS_OF_TEN[m_power]);
        return true;
    }
    // The digits as a whole number, with a 1 behind them for all that can't matter, times a power of ten. The runtime's
    // own scan would want memory for that, and its locale's point.
    bool GetNearest(Real & value) const
    {
        vek::BigNumber digits;
        int count = 0;
        int64_t power = m_exponent;
        bool isFraction = false, isCut = false;
        for (T const * at = m_begin; at != m_digitsEnd; ++at)
        {
            if (*at == '.')
            {
                isFraction = true;
                continue;
            }
            bool const isKept = count < MOST_DIGITS && (count > 0 || *at != '0');
            power += (count == MOST_DIGITS) - isFraction;
            isCut = isCut || (!isKept && *at != '0');
            count += isKept;
            if (isKept)
                digits.MultiplyAndAdd(10, static_cast<uint32_t>(*at - '0'));
        }
        if (isCut)
            digits.MultiplyAndAdd(10, 1);
        power -= isCut;
        count += isCut;
        value = 0;
        if (count == 0 || count + power < Limits::min_exponent10 - Limits::max_digits10)
            return true;
        if (count + power > Limits::max_exponent10 + 1)
            return false;
        value = Nearest(digits, static_cast<int>(power));
        return value <= Limits::max();
    }
    static Real Nearest(vek::BigNumber digits, int power)
    {
        vek::BigNumber divisor(1);
        (power < 0 ? divisor : digits).MultiplyByPowerOfTen(power < 0 ? -power : power);
        // So that the quotient has one bit more than a number has, or two, or less for the smallest of all.
        int const exponent =
            std::max(digits.Bits() - divisor.Bits() - Limits::digits - 1, Limits::min_exponent - Limits::digits - 1);
        (exponent > 0 ? divisor : digits).ShiftLeft(exponent > 0 ? exponent : -exponent);
        uint64_t quotient = 0;
        divisor.ShiftLeft(Limits::digits + 2);
        for (int i = Limits::digits + 2; i >= 0; --i)
        {
            bool const fits = digits.Compare(divisor) >= 0;
            if (fits)
                digits.Subtract(divisor);
            quotient = quotient << 1 | fits;
            divisor.Halve();
        }
        return std::ldexp(Rounded(quotient, !digits.IsZero(), exponent), exponent);
    }
    // Half to even, to as many bits as a number of that size has.
    static Real Rounded(uint64_t whole, bool hasRest, int exponent)
    {
        int extra = std::max(static_cast<int>(std::bit_width(whole)) - Limits::digits, 0);
        extra = std::max(extra, Limits::min_exponent - Limits::digits - exponent);
        uint64_t const half = (uint64_t{1} << extra) >> 1, part = whole & ((uint64_t{1} << extra) - 1);
        whole >>= extra;
        bool const isUp = part > half || (part == half && extra > 0 && (hasRest || (whole & 1) != 0));
        return std::ldexp(static_cast<Real>(static_cast<int64_t>(whole + isUp)), extra);
    }

    T const * m_begin = nullptr;
    T const * m_digitsEnd = nullptr;
    bool m_isNegative = false;
    bool m_isLong = false;
    int64_t m_digits = 0;
    uint64_t m_whole = 0;
    int m_power = 0;
    int m_exponent = 0;
    Real m_word = 0;
};

template <class T, class Real>
bool Read(T const * text, Real & value, T const ** end)
{
    if (!text)
        return false;
    Decimal<T, Real> decimal;
    T const * const behind = decimal.Scan(SkipSpace(text));
    if (!behind || (!end && *SkipSpace(behind)) || !decimal.GetValue(value))
        return false;
    if (end)
        *end = behind;
    return true;
}

/// The fewest digits that read back as the same number.
template <class Real>
class Digits
{
public:
    explicit Digits(Real value)
    {
        if (std::signbit(value) && value == value)
            Add('-');
        Real const amount = std::fabs(value);
        if (value != value)
            Add("nan");
        else if (amount > std::numeric_limits<Real>::max())
            Add("inf");
        else if (!PrintPlain(amount))
            PrintAny(amount);
    }

    char const * Text() const { return m_text; }
    int Length() const { return m_length; }

private:
    using Limits = std::numeric_limits<Real>;

    void Add(char unit) { m_text[m_length++] = unit; }
    void Add(char const * text)
    {
        for (; *text; ++text)
            Add(*text);
    }

    // Most numbers that people write are whole ones divided by a small power of ten, which is one rounding. Of so few
    // digits no other number reads back as the same.
    bool PrintPlain(Real amount)
    {
        constexpr auto MOST = static_cast<Real>(POWERS_OF_TEN[Limits::digits10]);
        if (amount != 0 && amount < Real(1e-4))
            return false;
        for (int decimals = 0; decimals <= MOST_POWER<Real>; ++decimals)
        {
            auto const scale = static_cast<Real>(POWERS_OF_TEN[decimals]);
            Real const scaled = amount * scale;
            if (!(scaled < MOST))
                return false;
            auto const whole = static_cast<int64_t>(scaled + Real(0.5));
            if (static_cast<Real>(whole) / scale != amount)
                continue;
            PrintWhole(whole, decimals);
            return true;
        }
        return false;
    }
    void PrintWhole(int64_t whole, int decimals)
    {
        char reversed[24];
        int count = 0;
        for (; whole != 0 || count <= decimals; whole /= 10)
            reversed[count++] = static_cast<char>('0' + whole % 10);
        while (count > 0)
        {
            Add(reversed[--count]);
            if (count == decimals && count > 0)
                Add('.');
        }
    }

    void PrintAny(Real amount)
    {
        int precision = amount < Limits::min() ? 1 : Limits::digits10;
        for (; precision <= Limits::max_digits10; ++precision)
        {
            char printed[40];
            _snprintf(printed, sizeof printed, "%.*g", precision, static_cast<double>(amount));
            Tidy(printed);
            Real back = 0;
            if (precision == Limits::max_digits10 || (Read<char, Real>(printed, back, nullptr) && back == amount))
                return Add(printed);
        }
    }
    // A point for the locale's one, and an exponent without the plus and zeros that runtimes differ in.
    static void Tidy(char * text)
    {
        char * to = text;
        bool isExponent = false;
        for (char const * from = text; *from; ++from)
        {
            bool const isLocale = !IsDigit(*from) && !strchr("+-e", *from);
            if (isExponent && (*from == '+' || (*from == '0' && !IsDigit(to[-1]))))
                continue;
            isExponent = isExponent || *from == 'e';
            *to++ = isLocale ? '.' : *from;
        }
        *to = 0;
    }

    char m_text[40];
    int m_length = 0;
};

template <class T, class Real>
int Write(T * buffer, int size, Real value)
{
    Digits<Real> const digits(value);
    int const length = digits.Length();
    if (size > 0)
        buffer[0] = 0;
    if (length >= size)
        return -1;
    for (int i = 0; i < length; ++i)
        buffer[i] = static_cast<T>(digits.Text()[i]);
    buffer[length] = 0;
    return length;
}

} // namespace

int VekStrFromNumberA(char * buffer, int size, double value)
{
    return Write(buffer, size, value);
}

int VekStrFromNumberA(char * buffer, int size, float value)
{
    return Write(buffer, size, value);
}

int VekStrFromNumberW(wchar_t * buffer, int size, double value)
{
    return Write(buffer, size, value);
}

int VekStrFromNumberW(wchar_t * buffer, int size, float value)
{
    return Write(buffer, size, value);
}

bool VekStrToNumberA(char const * text, double & value, char const ** end)
{
    return Read(text, value, end);
}

bool VekStrToNumberA(char const * text, float & value, char const ** end)
{
    return Read(text, value, end);
}

bool VekStrToNumberW(wchar_t const * text, double & value, wchar_t const ** end)
{
    return Read(text, value, end);
}

bool VekStrToNumberW(wchar_t const * text, float & value, wchar_t const ** end)
{
    return Read(text, value, end);
}
