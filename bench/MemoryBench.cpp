#include "Benches.h"

#include "VekCore.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace bench
{

namespace
{

constexpr double TRACKED_OF_PLAIN = 1.4;
constexpr unsigned int SIZE = 32;
constexpr std::size_t RECORD = sizeof(void *) == 4 ? 152 : 176; // in front of each tracked block

struct Plain
{
    static void * Allocate() { return std::malloc(SIZE); }
    static void Free(void * block) { std::free(block); }
};
struct PlainOfSameTotal
{
    static void * Allocate() { return std::malloc(RECORD + SIZE); }
    static void Free(void * block) { std::free(block); }
};
struct Tracked
{
    static void * Allocate() { return VekAllocMemory(SIZE, __FILE__, __LINE__); }
    static void Free(void * block) { VekDeallocMemory(block, __FILE__, __LINE__); }
};

/// Seconds for one free and one allocation among so many live blocks, of which any is the next to go.
template <class Allocator>
double Replace(std::size_t live, std::size_t turns)
{
    std::vector<void *> blocks(live);
    for (void *& block : blocks)
        block = Allocator::Allocate();
    std::uint32_t random = 1;
    Stopwatch watch;
    for (std::size_t turn = 0; turn < turns; ++turn)
    {
        random = random * 1664525u + 1013904223u;
        void *& block = blocks[static_cast<std::size_t>((static_cast<std::uint64_t>(random) * live) >> 32)];
        Allocator::Free(block);
        block = Allocator::Allocate();
        *static_cast<char *>(block) = 1;
    }
    double const seconds = watch.Lap() / static_cast<double>(turns);
    for (void * const block : blocks)
        Allocator::Free(block);
    return seconds;
}

} // namespace

void MeasureMemory(bool quick, Aims & aims)
{
    Table table(
        {"live blocks", "malloc ns", "malloc of the total ns", "tracked ns", "of malloc", "aim", "of the total"});
    for (std::size_t const live : {std::size_t(1), std::size_t(1000), std::size_t(1000000)})
    {
        std::size_t const turns = quick ? 100000 : 500000;
        Best plain, total, tracked;
        for (int round = 0; round < (live > 1000 ? 3 : 7); ++round)
        {
            plain.Add(Replace<Plain>(live, turns));
            total.Add(Replace<PlainOfSameTotal>(live, turns));
            tracked.Add(Replace<Tracked>(live, turns));
        }
        double const ratio = tracked.Seconds() / plain.Seconds();
        table.Add({std::to_string(live), Number(plain.Seconds() * 1e9, 0), Number(total.Seconds() * 1e9, 0),
                   Number(tracked.Seconds() * 1e9, 0), Number(ratio, 2), aims.Check(ratio <= TRACKED_OF_PLAIN),
                   Number(tracked.Seconds() / total.Seconds(), 2)});
    }
    std::printf(
        "Tracked memory: one free and one allocation of %u bytes among so many live blocks. The total counts the "
        "record of %u bytes\nwith the block. Aim: tracked <= %.1f of malloc and free.\n\n",
        SIZE, static_cast<unsigned int>(RECORD), TRACKED_OF_PLAIN);
    table.Print();
    std::printf("\n");
}

} // namespace bench
