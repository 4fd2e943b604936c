#include "fuzz/engine/Coverage.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::size_t EDGES = 1 << 16;
std::uint8_t g_taken[EDGES];
std::uint8_t g_known[EDGES]; // a bit for each step of the count
std::uintptr_t g_last;

} // namespace

extern "C" __attribute__((no_instrument_function)) void __sanitizer_cov_trace_pc()
{
    // The program is linked to a fixed address. An edge is where one comes from and where one goes.
    auto const place = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0)) * 0x9E3779B1u >> 8;
    std::uint8_t & count = g_taken[(place ^ g_last) % EDGES];
    count = static_cast<std::uint8_t>(count + (count != 255));
    g_last = place >> 1;
}

namespace fuzz
{

void ResetCoverage()
{
    std::memset(g_taken, 0, sizeof g_taken);
    g_last = 0;
}

std::size_t NewCoverage(bool keep)
{
    std::size_t found = 0;
    for (std::size_t block = 0; block < EDGES; block += sizeof(std::uint64_t))
    {
        std::uint64_t any;
        std::memcpy(&any, g_taken + block, sizeof any);
        if (!any)
            continue;
        for (std::size_t i = block; i < block + sizeof any; ++i)
        {
            auto const step = static_cast<std::uint8_t>(g_taken[i] ? 1u << (std::bit_width(g_taken[i]) - 1) : 0);
            if (step & ~g_known[i])
            {
                ++found;
                if (keep)
                    g_known[i] |= step;
            }
        }
    }
    return found;
}

std::size_t KnownEdges()
{
    std::size_t known = 0;
    for (std::uint8_t const steps : g_known)
        known += steps != 0;
    return known;
}

void ForgetCoverage()
{
    std::memset(g_known, 0, sizeof g_known);
}

} // namespace fuzz
