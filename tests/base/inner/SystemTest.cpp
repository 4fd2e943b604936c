#include "base/RecursiveLock.h"
#include "base/SystemFunction.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <mutex>
#include <thread>
#include <vector>

// Some turns are so long that the others go to sleep, before and after their event is closed.
TEST(RecursiveLock, ExcludesOthersAndCountsItsOwner)
{
    constexpr int THREADS = 4, TURNS = 200;
    vek::RecursiveLock lock;
    for (char const * when : {"new", "closed"})
    {
        int volatile turns = 0;
        auto const work = [&]
        {
            for (int i = 0; i < TURNS; ++i)
            {
                std::lock_guard const outer(lock);
                std::unique_lock(lock).unlock();
                int const before = turns;
                Sleep(i % 25 == 0 ? 8 : 0);
                turns = before + 1;
            }
        };
        std::vector<std::thread> threads(THREADS);
        for (std::thread & thread : threads)
            thread = std::thread(work);
        for (std::thread & thread : threads)
            thread.join();
        EXPECT_EQ(turns, THREADS * TURNS) << when;
        lock.Close();
    }
}

TEST(SystemFunction, IsNullWhereTheSystemLacksIt)
{
    vek::SystemFunction<decltype(GetTickCount)> there(L"kernel32.dll", "GetTickCount"),
        noFunction(L"kernel32.dll", "GetTickCountOfNobody"), noDll(L"nobodys.dll", "GetTickCount");
    ASSERT_NE(there.Get(), nullptr);
    EXPECT_GE(there.Get()(), 1u);
    EXPECT_TRUE(!noFunction.Get() && !noDll.Get());
}
