#pragma once

#include "../Harness.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench
{

/// Does something and returns the seconds that count, for one operation.
using Work = std::function<double()>;

/// The body so often at a stretch.
template <class Body>
Work Repeat(int count, Body body)
{
    return [count, body = std::move(body)]() mutable
    {
        Stopwatch watch;
        for (int i = 0; i < count; ++i)
            body();
        return watch.Lap() / count;
    };
}

/// Rows of work that the library and a peer do alike, and of bytes that both take for it.
class Duels
{
public:
    explicit Duels(std::string filter) : m_filter(std::move(filter)) {}

    /// Whether rows of that subject were asked for.
    bool Wants(std::string const & subject) const { return m_filter.empty() || m_filter == subject; }
    /// The aim is for the peer's time divided by the library's; 0 for none.
    void Add(std::string what, std::string peer, double aim, Work library, Work other);
    void AddBytes(std::string what, std::string peer, std::size_t library, std::size_t other);
    /// Tells of work whose results differ: the figures of such a run say nothing.
    void Expect(bool same, std::string const & what);

    /// Goes through all rows so often; in each the library and the peer take turns.
    void Run(int repetitions);
    void Print(Aims & aims) const;
    bool AllSame() const { return m_same; }

private:
    struct Row
    {
        std::string what, peer;
        double aim = 0;
        Work library, other;
        Best libraryTime, otherTime;
        std::size_t libraryBytes = 0, otherBytes = 0;
    };

    static void TakeTurns(Row & row);

    std::string m_filter;
    std::vector<Row> m_rows;
    bool m_same = true;
};

} // namespace bench
