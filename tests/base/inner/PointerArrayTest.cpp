#include "VekCore.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

TEST(PointerArrayTest, BehavesAsAVector)
{
    for (int const step : {1, 4, CVekPointerArrayBase::GROW_DOUBLING})
    {
        SCOPED_TRACE(step);
        std::mt19937 random(3);
        std::vector<int> values(1000);
        CVekPointerArray<int> array;
        array.SetGrowthStep(step);
        std::vector<int *> model;
        for (int round = 0; round < 5000; ++round)
        {
            int * const value = &values[random() % values.size()];
            int const index = static_cast<int>(random() % (model.size() + 3)) - 1;
            bool const inside = index >= 0 && index < static_cast<int>(model.size());
            switch (random() % 3)
            {
            case 0:
                ASSERT_TRUE(array.Append(value));
                model.push_back(value);
                break;
            case 1:
                ASSERT_EQ(array.Insert(index, value), inside || index == static_cast<int>(model.size()));
                if (index >= 0 && index <= static_cast<int>(model.size()))
                    model.insert(model.begin() + index, value);
                break;
            default:
                array.RemoveAt(index);
                if (inside)
                    model.erase(model.begin() + index);
            }
            ASSERT_EQ(array.GetCount(), static_cast<int>(model.size()));
            for (int i = 0; i < array.GetCount(); ++i)
                ASSERT_EQ(array[i], model[static_cast<std::size_t>(i)]);
            ASSERT_EQ(array.At(-1), nullptr);
            ASSERT_EQ(array.At(array.GetCount()), nullptr);
        }
        array.Free();
        EXPECT_EQ(array.GetCount() + array.GetCapacity(), 0);
    }
}

TEST(PointerArrayTest, GrowsByItsStep)
{
    std::pair<int, std::vector<int>> const rows[] = {{1, {1, 2, 3, 4, 5, 6}},
                                                     {3, {3, 3, 3, 6, 6, 6}},
                                                     {0, {1, 2, 3, 4, 5, 6}},
                                                     {CVekPointerArrayBase::GROW_DOUBLING, {1, 2, 4, 4, 8, 8}}};
    for (auto const & [step, capacities] : rows)
    {
        SCOPED_TRACE(step);
        CVekPointerArray<int> array;
        array.SetGrowthStep(step);
        for (int const capacity : capacities)
        {
            array.Append(nullptr);
            EXPECT_EQ(array.GetCapacity(), capacity);
        }
        array.Free();
    }
    CVekPointerArray<int> array;
    EXPECT_FALSE(array.Reserve(0x7FFFFFFF) || array.Reserve(0x40000000)) << "beyond memory";
    EXPECT_EQ(array.GetCapacity(), 0);
}

} // namespace
