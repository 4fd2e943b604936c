// 64-bit division for 32-bit code. The compiler calls these four by name; they take their arguments off the stack.
#include <stdint.h>

namespace
{

struct Division
{
    uint64_t quotient, rest;
};

Division Divide(uint64_t dividend, uint64_t divisor)
{
    uint32_t const high = static_cast<uint32_t>(dividend >> 32);
    if (divisor >> 32 == 0)
    {
        uint32_t const by = static_cast<uint32_t>(divisor);
        uint32_t const first = high / by;
        uint32_t second, rest = high % by;
        __asm__("divl %4" : "=a"(second), "=d"(rest) : "a"(static_cast<uint32_t>(dividend)), "d"(rest), "r"(by) : "cc");
        return {static_cast<uint64_t>(first) << 32 | second, rest};
    }
    // The quotient has 32 bits at most: one after the other.
    uint64_t quotient = 0, rest = high, low = static_cast<uint32_t>(dividend);
    for (int bit = 31; bit >= 0; --bit)
    {
        bool const overflows = rest >> 63;
        rest = rest << 1 | (low >> bit & 1);
        quotient <<= 1;
        if (overflows || rest >= divisor)
        {
            rest -= divisor;
            quotient |= 1;
        }
    }
    return {quotient, rest};
}

uint64_t Magnitude(int64_t value)
{
    return value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
}

} // namespace

extern "C"
{

    uint64_t __stdcall DivideUnsigned(uint64_t dividend, uint64_t divisor) __asm__("__aulldiv");
    uint64_t __stdcall DivideUnsigned(uint64_t dividend, uint64_t divisor)
    {
        return Divide(dividend, divisor).quotient;
    }

    uint64_t __stdcall RestUnsigned(uint64_t dividend, uint64_t divisor) __asm__("__aullrem");
    uint64_t __stdcall RestUnsigned(uint64_t dividend, uint64_t divisor)
    {
        return Divide(dividend, divisor).rest;
    }

    int64_t __stdcall DivideSigned(int64_t dividend, int64_t divisor) __asm__("__alldiv");
    int64_t __stdcall DivideSigned(int64_t dividend, int64_t divisor)
    {
        uint64_t const quotient = Divide(Magnitude(dividend), Magnitude(divisor)).quotient;
        return static_cast<int64_t>((dividend < 0) != (divisor < 0) ? 0 - quotient : quotient);
    }

    int64_t __stdcall RestSigned(int64_t dividend, int64_t divisor) __asm__("__allrem");
    int64_t __stdcall RestSigned(int64_t dividend, int64_t divisor)
    {
        uint64_t const rest = Divide(Magnitude(dividend), Magnitude(divisor)).rest;
        return static_cast<int64_t>(dividend < 0 ? 0 - rest : rest);
    }

} // extern "C"
