#pragma once

#include <stddef.h>
#include <stdint.h>

#include <algorithm>
#include <bit>

namespace vek
{

/// A whole number of up to 4,096 bits, in place: enough for decimal numbers of 800 digits and the exponents of a
/// double. What would not fit is the caller's to rule out.
class BigNumber
{
public:
    explicit BigNumber(uint32_t value = 0) noexcept : m_words{value}, m_count(value != 0) {}

    bool IsZero() const noexcept { return m_count == 0; }
    int Bits() const noexcept
    {
        return IsZero() ? 0 : static_cast<int>(m_count) * 32 - std::countl_zero(m_words[m_count - 1]);
    }

    void MultiplyAndAdd(uint32_t factor, uint32_t summand) noexcept
    {
        uint64_t carry = summand;
        for (size_t i = 0; i < m_count; ++i)
        {
            carry += uint64_t{m_words[i]} * factor;
            m_words[i] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0)
            m_words[m_count++] = static_cast<uint32_t>(carry);
    }
    void MultiplyByPowerOfTen(int power) noexcept
    {
        for (; power >= 9; power -= 9)
            MultiplyAndAdd(1000000000, 0);
        for (; power > 0; --power)
            MultiplyAndAdd(10, 0);
    }
    void ShiftLeft(int bits) noexcept
    {
        size_t const words = static_cast<size_t>(bits) / 32;
        if (words > 0 && !IsZero())
        {
            std::copy_backward(m_words, m_words + m_count, m_words + m_count + words);
            std::fill_n(m_words, words, 0U);
            m_count += words;
        }
        if (bits % 32 != 0)
            MultiplyAndAdd(uint32_t{1} << (bits % 32), 0);
    }
    void Halve() noexcept
    {
        for (size_t i = 0; i < m_count; ++i)
            m_words[i] = m_words[i] >> 1 | (i + 1 < m_count ? m_words[i + 1] << 31 : 0);
        Trim();
    }
    /// Below 0, 0 or above it, as the number is less than the other, equal or greater.
    int Compare(BigNumber const & other) const noexcept
    {
        if (m_count != other.m_count)
            return m_count < other.m_count ? -1 : 1;
        for (size_t i = m_count; i-- > 0;)
        {
            if (m_words[i] != other.m_words[i])
                return m_words[i] < other.m_words[i] ? -1 : 1;
        }
        return 0;
    }
    /// The other must not be greater.
    void Subtract(BigNumber const & other) noexcept
    {
        uint64_t borrow = 0;
        for (size_t i = 0; i < m_count; ++i)
        {
            uint64_t const taken = borrow + (i < other.m_count ? other.m_words[i] : 0);
            borrow = m_words[i] < taken;
            m_words[i] = static_cast<uint32_t>(m_words[i] - taken);
        }
        Trim();
    }

private:
    void Trim() noexcept
    {
        while (m_count > 0 && m_words[m_count - 1] == 0)
            --m_count;
    }

    uint32_t m_words[130];
    size_t m_count;
};

} // namespace vek
