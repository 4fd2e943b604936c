// What every counted object of the library promises.
#pragma once

#include "VekCore.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

// Takes over a new object, from a Create operation or operator new, and gives it up. That the last Release destroys it
// is seen by the leak check of the guarded build.
inline void ExpectRefCountContract(char const * name, IVekObject * object)
{
    SCOPED_TRACE(name);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRefCount(), 1u);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->AddRef(), 3u);
    EXPECT_EQ(object->GetRefCount(), 3u);
    EXPECT_EQ(object->Release(), 2u);
    EXPECT_EQ(object->Release(), 1u);

    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back(
            [object]
            {
                for (int turn = 0; turn < 20000; ++turn)
                {
                    object->AddRef();
                    object->Release();
                }
            });
    for (std::thread & thread : threads)
        thread.join();
    EXPECT_EQ(object->GetRefCount(), 1u) << "counting is not safe from several threads";
    EXPECT_EQ(object->Release(), 0u);
}
