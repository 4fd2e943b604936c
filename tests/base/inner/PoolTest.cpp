#include "base/Pool.h"
#include "base/LargeBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace
{

constexpr std::size_t LARGE = 65536;

struct Block
{
    unsigned char * place;
    std::size_t size;
    unsigned char mark;
};

void Check(Block const & block)
{
    for (std::size_t i = 0; i < block.size; ++i)
        ASSERT_EQ(block.place[i], block.mark) << "byte " << i << " of " << block.size;
}

void Free(Block const & block, bool isSizeKnown)
{
    Check(block);
    if (block.size == LARGE)
        vek::LargeFree(block.place, block.size);
    else if (isSizeKnown)
        vek::PoolFree(block.place, block.size);
    else
        vek::PoolFreeAny(block.place);
}

// Allocates and frees at random, every block filled with a mark of its own, and checks that no block ever touches
// another.
void Churn(unsigned seed, int rounds)
{
    std::mt19937 random(seed);
    std::vector<Block> live;
    vek::PoolSpares spares;
    for (int i = 0; i < rounds; ++i)
    {
        if (live.size() < 50 || (random() % 2 && live.size() < 2000))
        {
            std::size_t const size = random() % 10 ? random() % 200 : random() % 100 ? random() % 9000 : LARGE;
            void * const place = size == LARGE  ? vek::LargeAllocate(size)
                                 : random() % 2 ? vek::PoolAllocate(size)
                                                : spares.Allocate(size);
            Block const block = {static_cast<unsigned char *>(place), size, static_cast<unsigned char>(random())};
            ASSERT_NE(block.place, nullptr);
            ASSERT_EQ(vek::PoolHas(place), size - 1 < vek::POOL_LARGEST) << size;
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block.place) % 8, 0U) << size;
            std::memset(block.place, block.mark, size);
            live.push_back(block);
            continue;
        }
        std::swap(live[random() % live.size()], live.back());
        Free(live.back(), random() % 2);
        live.pop_back();
    }
    std::vector<void *> rest;
    for (Block const & block : live)
    {
        if (block.size - 1 >= vek::POOL_LARGEST)
            Free(block, random() % 2);
        else
        {
            Check(block);
            rest.push_back(block.place);
        }
    }
    vek::PoolFreeMany(rest.data(), rest.size());
}

TEST(PoolTest, KeepsBlocksApart)
{
    vek::PoolFree(nullptr, 16);
    Churn(1, 50'000);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i)
        threads.emplace_back(Churn, 10 + i, 20'000);
    for (std::thread & thread : threads)
        thread.join();
}

#ifndef VEKLIB_GUARD
TEST(PoolTest, GivesMemoryBackToTheSystem)
{
    std::vector<void *> blocks;
    std::size_t const before = vek::PoolReservedBytes();
    for (int i = 0; i < 1'000'000; ++i)
        blocks.push_back(vek::PoolAllocate(64));
    EXPECT_GE(vek::PoolReservedBytes(), 64'000'000U);
    for (void * const block : blocks)
        vek::PoolFree(block, 64);
    EXPECT_LE(vek::PoolReservedBytes(), before + (65U << 20));
}
#endif

// Blocks of several rows, freed one by one and in batches while others are made.
TEST(PoolTest, RowsKeepTheirBlocksApart)
{
    std::mt19937 random(3);
    std::vector<Block> live;
    vek::PoolRow rows[3];
    std::size_t const before = vek::PoolReservedBytes();
    for (int i = 0; i < 60'000; ++i)
    {
        vek::PoolRow & row = rows[random() % 3];
        std::size_t const size = 1 + (random() % 10 ? random() % 100 : random() % vek::PoolRow::LARGEST);
        ASSERT_TRUE(row.Fit(size));
        Block const block = {static_cast<unsigned char *>(row.Allocate(size)), size,
                             static_cast<unsigned char>(random())};
        std::memset(block.place, block.mark, size);
        live.push_back(block);
        if (random() % 5000 == 0)
            row.End();
        if (live.size() < 2000)
            continue;
        vek::PoolBatch batch;
        std::shuffle(live.begin(), live.begin() + (random() % 2 ? 1500 : 0), random);
        for (int end = 0; end < 1500; ++end, live.pop_back())
        {
            Check(live.back());
            end % 7 ? batch.Free(live.back().place, live.back().size)
                    : vek::PoolFree(live.back().place, live.back().size);
        }
    }
    for (Block const & block : live)
    {
        Check(block);
        vek::PoolFree(block.place, block.size);
    }
    // What was freed was used again: more than 15 MB went through.
    EXPECT_LE(vek::PoolReservedBytes(), before + (3U << 20));
}

} // namespace

// Each thread has blocks of its own; a program that makes one after the other keeps no more than for a few.
TEST(Pool, KeepsNothingForThreadsThatHaveEnded)
{
    if (vek::POOL_LARGEST == 0)
        GTEST_SKIP() << "the guarded build has no pool";
    auto const useAllSizes = []
    {
        for (std::size_t size = 1; size < vek::POOL_LARGEST; size += 8)
            vek::PoolFree(vek::PoolAllocate(size), size);
        vek::PoolLeaveThread(); // as the DLL does
    };
    std::thread(useAllSizes).join();
    std::size_t const before = vek::PoolReservedBytes();
    for (int i = 0; i < 40; ++i)
        std::thread(useAllSizes).join();
    EXPECT_LE(vek::PoolReservedBytes(), before);
}
