#include "base/AddressTable.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

// Grows and shrinks over its own slots, checked against a set; on the guard heap some growth fails, too.
TEST(AddressTable, AgreesWithASet)
{
    vek::AddressTable table;
    std::set<std::uintptr_t> model;
    std::mt19937 random(5);
    EXPECT_FALSE(table.Remove(nullptr));
    for (int turn = 0; turn < 40000; ++turn)
    {
        bool const adds = random() % 100 < (turn / 10000 % 2 == 0 ? 70u : 25u);
        // Few different low bits, as the addresses of one stripe have.
        std::uintptr_t const value = (random() % 4000 + 1) * 1024 + 16;
        auto * const address = reinterpret_cast<void *>(value);
        ASSERT_EQ(table.Has(address), model.count(value) == 1) << turn;
        if (!adds)
        {
            ASSERT_EQ(table.Remove(address), model.erase(value) == 1) << turn;
        }
        else if (!model.count(value))
        {
            VekGuard::FailAllocation(random() % 4 == 0 ? 1 : 99);
            bool const added = table.Add(address);
            ASSERT_EQ(added, !VekGuard::FailReset()) << turn;
            if (added)
                model.insert(value);
        }
    }
    for (std::uintptr_t const value : model)
        ASSERT_TRUE(table.Remove(reinterpret_cast<void *>(value)));
    // What it had allocated is given back: the leak check sees it.
}
