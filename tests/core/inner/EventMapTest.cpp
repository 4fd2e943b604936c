#include "core/EventMap.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <guiddef.h>

#include <cstring>
#include <random>
#include <set>
#include <string>

// Many registrations and removals, checked against a set.
TEST(EventMap, AgreesWithASet)
{
    vek::EventMap map;
    std::set<std::string> model;
    std::mt19937 random(20);
    for (int turn = 0; turn < 20000; ++turn)
    {
        // Identifiers that differ in one byte of two, at either end and in the middle, with bytes above 127 among them.
        GUID id{};
        unsigned char bytes[16] = {};
        bytes[random() % 3 * 7] = static_cast<unsigned char>(random() % 5 * 60);
        bytes[15] = static_cast<unsigned char>(random() % 4 * 80);
        std::memcpy(&id, bytes, sizeof id);
        std::string const key(reinterpret_cast<char const *>(bytes), sizeof bytes);
        ASSERT_EQ(map.IsRegistered(id), model.count(key) == 1) << turn;
        ASSERT_EQ(map.Register(id), model.insert(key).second) << turn;
        if (random() % 2)
        {
            map.Unregister(id);
            model.erase(key);
        }
    }
}

TEST(EventMap, StaysAsItIsWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    vek::EventMap map;
    for (unsigned long i = 0; i < 40; ++i)
    {
        GUID const id = {i, 0, 0, {}};
        VekGuard::FailAllocation(1 + i % 2);
        bool const registered = map.Register(id);
        bool const failed = VekGuard::FailReset();
        ASSERT_EQ(registered, !failed) << i;
        ASSERT_EQ(map.IsRegistered(id), registered) << i;
    }
}
