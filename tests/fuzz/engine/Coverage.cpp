#include "fuzz/engine/Coverage.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::size_t EDGES = 1 << 16;
std::uint8_t g_taken[EDGES];
std::uint8_t g_known[EDGES];  // a bit for each step of the count
std::uint16_t g_order[EDGES]; // those that are taken, so that no one has to look through all of them
std::size_t g_count;
std::uintptr_t g_last;

} // namespace

namespace
{

[[gnu::noinline, gnu::cold]] void AddEdge(std::size_t edge)
{
    g_order[g_count++] = static_cast<std::uint16_t>(edge);
    g_taken[edge] = 1;
}

} // namespace

// Runs in each of the library's branches.
extern "C" __attribute__((optimize("omit-frame-pointer"), no_sanitize("undefined"))) void __sanitizer_cov_trace_pc()
{
    // The program is linked to a fixed address. An edge is where one comes from and where one goes.
    auto const place = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0)) * 0x9E3779B1u >> 8;
    std::size_t const edge = (place ^ g_last) % EDGES;
    g_last = place >> 1;
    unsigned const count = g_taken[edge];
    if (count - 1 < 254)
        g_taken[edge] = static_cast<std::uint8_t>(count + 1);
    else if (count == 0)
        AddEdge(edge);
}

namespace fuzz
{

void ResetCoverage()
{
    for (std::size_t i = 0; i < g_count; ++i)
        g_taken[g_order[i]] = 0;
    g_count = 0;
    g_last = 0;
}

std::size_t NewCoverage(bool keep)
{
    std::size_t found = 0;
    for (std::size_t i = 0; i < g_count; ++i)
    {
        std::size_t const edge = g_order[i];
        auto const step = static_cast<std::uint8_t>(1u << (std::bit_width(g_taken[edge]) - 1));
        if (!(step & ~g_known[edge]))
            continue;
        ++found;
        if (keep)
            g_known[edge] |= step;
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
