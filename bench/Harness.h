#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench
{

/// Seconds since its construction or the last Lap.
class Stopwatch
{
public:
    Stopwatch();
    double Lap();

private:
    std::int64_t m_begin;
};

/// The shortest of several times. Machines are slowed down by others, never sped up.
class Best
{
public:
    void Add(double seconds)
    {
        if (m_seconds == 0 || seconds < m_seconds)
            m_seconds = seconds;
    }
    double Seconds() const { return m_seconds; }
    double MegabytesPerSecond(std::size_t bytes) const
    {
        return m_seconds > 0 ? static_cast<double>(bytes) / 1e6 / m_seconds : 0;
    }

private:
    double m_seconds = 0;
};

/// Bytes of private memory that the process has committed, counted region by region.
std::size_t CommittedBytes();

/// A plain table on standard output, its columns as wide as their longest cell.
class Table
{
public:
    explicit Table(std::vector<std::string> columns);
    void Add(std::vector<std::string> cells);
    void Print() const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

std::string Number(double value, int decimals);

/// Records whether an aim was met, and gives the word for the table.
class Aims
{
public:
    std::string Check(bool met);
    /// One line: how many were met.
    void PrintSummary() const;

private:
    int m_checked = 0;
    int m_missed = 0;
};

} // namespace bench
