#include "Duels.h"

#include <algorithm>
#include <cstdio>

namespace bench
{

namespace
{

// A row's turns: for as long as they bring better times, within these bounds of seconds.
constexpr double SECONDS = 0.5, MOST_SECONDS = 3;
constexpr double BETTER = 0.99;
constexpr int IDLE_TURNS = 4;

std::string Time(double seconds)
{
    static constexpr struct
    {
        double least, factor;
        char const * unit;
    } UNITS[] = {{1, 1, "s"}, {1e-3, 1e3, "ms"}, {1e-6, 1e6, "us"}, {0, 1e9, "ns"}};
    auto const & unit = *std::find_if(std::begin(UNITS), std::end(UNITS),
                                      [seconds](auto const & candidate) { return seconds >= candidate.least; });
    double const value = seconds * unit.factor;
    return Number(value, value < 10 ? 2 : value < 100 ? 1 : 0) + ' ' + unit.unit;
}

std::string Megabytes(std::size_t bytes)
{
    return Number(static_cast<double>(bytes) / 1e6, 2) + " MB";
}

} // namespace

void Duels::Add(std::string what, std::string peer, double aim, Work library, Work other)
{
    Row row;
    row.what = std::move(what);
    row.peer = std::move(peer);
    row.aim = aim;
    row.library = std::move(library);
    row.other = std::move(other);
    m_rows.push_back(std::move(row));
}

void Duels::AddBytes(std::string what, std::string peer, std::size_t library, std::size_t other)
{
    Add(std::move(what), std::move(peer), 0, nullptr, nullptr);
    m_rows.back().libraryBytes = library;
    m_rows.back().otherBytes = other;
}

void Duels::Expect(bool same, std::string const & what)
{
    if (!same)
        std::printf("The results are not the same: %s\n", what.c_str());
    m_same = m_same && same;
}

void Duels::Run(int repetitions)
{
    for (int repetition = 0; repetition < repetitions; ++repetition)
        for (Row & row : m_rows)
            if (row.library)
                TakeTurns(row);
}

void Duels::TakeTurns(Row & row)
{
    Stopwatch watch;
    double passed = 0, best = 0;
    for (int idle = 0; passed < SECONDS || (idle < IDLE_TURNS && passed < MOST_SECONDS); ++idle)
    {
        row.libraryTime.Add(row.library());
        row.otherTime.Add(row.other());
        double const sum = row.libraryTime.Seconds() + row.otherTime.Seconds();
        if (best == 0 || sum < best * BETTER)
        {
            best = sum;
            idle = 0;
        }
        passed += watch.Lap();
    }
}

void Duels::Print(Aims & aims) const
{
    Table table({"work", "peer", "VekLib", "the peer", "ratio", "aim"});
    for (Row const & row : m_rows)
    {
        bool const isTime = row.library != nullptr;
        double const ratio = isTime ? row.otherTime.Seconds() / row.libraryTime.Seconds()
                                    : static_cast<double>(row.otherBytes) / static_cast<double>(row.libraryBytes);
        table.Add({row.what, row.peer, isTime ? Time(row.libraryTime.Seconds()) : Megabytes(row.libraryBytes),
                   isTime ? Time(row.otherTime.Seconds()) : Megabytes(row.otherBytes), Number(ratio, 2),
                   row.aim > 0 ? Number(row.aim, 2) + ' ' + aims.Check(ratio >= row.aim) : std::string()});
    }
    table.Print();
}

} // namespace bench
