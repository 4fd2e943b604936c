#include "Harness.h"

#include <algorithm>
#include <cstdio>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace bench
{

namespace
{

std::int64_t Now()
{
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

} // namespace

Stopwatch::Stopwatch() : m_begin(Now()) {}

double Stopwatch::Lap()
{
    static double const frequency = []
    {
        LARGE_INTEGER value;
        QueryPerformanceFrequency(&value);
        return static_cast<double>(value.QuadPart);
    }();
    std::int64_t const now = Now();
    double const seconds = static_cast<double>(now - m_begin) / frequency;
    m_begin = now;
    return seconds;
}

std::size_t CommittedBytes()
{
    std::size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region;
    std::uintptr_t address = 0; // a pointer must not be counted up from null
    while (VirtualQuery(reinterpret_cast<void *>(address), &region, sizeof region) == sizeof region &&
           region.RegionSize > 0)
    {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            bytes += region.RegionSize;
        address = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
        if (address == 0)
            break;
    }
    return bytes;
}

Table::Table(std::vector<std::string> columns)
{
    Add(std::move(columns));
}

void Table::Add(std::vector<std::string> cells)
{
    m_rows.push_back(std::move(cells));
}

void Table::Print() const
{
    std::vector<std::size_t> widths;
    for (auto const & row : m_rows)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    for (auto const & row : m_rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i)
            std::printf(i == 0 ? "%-*s" : "  %*s", static_cast<int>(widths[i]), row[i].c_str());
        std::printf("\n");
    }
    std::fflush(stdout);
}

std::string Number(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Aims::Check(bool met)
{
    ++m_checked;
    m_missed += met ? 0 : 1;
    return met ? "met" : "MISSED";
}

void Aims::PrintSummary() const
{
    std::printf("\n%d of %d aims met\n", m_checked - m_missed, m_checked);
}

} // namespace bench
