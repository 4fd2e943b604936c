// The searches and scans that read 16 bytes at a time, on memory that ends at a page that can't be read.

#include "text/Scan.h"
#include "text/Fold.h"
#include "text/StringAccess.h"

#include "support/FencedPage.h"
#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

template <class T>
class Scan : public testing::Test
{
};
using Widths = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Scan, Widths);

TYPED_TEST(Scan, LengthsEndAtTheTerminatorOrTheBound)
{
    FencedPage const page;
    for (size_t length = 0; length < 80; ++length)
    {
        TypeParam * const text = page.Last<TypeParam>(length + 1);
        std::fill(text, text + length, TypeParam('x'));
        text[length] = 0;
        ASSERT_EQ(vek::TextLength(text), length);
        for (size_t max = 0; max < length + 20; ++max)
            ASSERT_EQ(vek::BoundedLength(text, max), max < length ? max : length) << length << " bound " << max;
        text[length] = 'x'; // no terminator at all: the bound is the block's end
        ASSERT_EQ(vek::BoundedLength(text, length + 1), length + 1);
    }
    // A text at an odd address, as a careless host may pass; the guarded build traps any access to such.
    if (VekGuard::Active)
        return;
    auto * const odd = reinterpret_cast<TypeParam *>(page.Last<char>(40 * sizeof(TypeParam) + 1));
    memset(odd, 'x', 40 * sizeof(TypeParam));
    TypeParam const zero = 0;
    memcpy(reinterpret_cast<char *>(odd) + 30 * sizeof(TypeParam), &zero, sizeof zero);
    EXPECT_EQ(vek::TextLength(odd), 30u);
}

TEST(Fold, OnlyTheLettersAToZ)
{
    for (int unit = 0; unit < 0x10000; ++unit)
    {
        auto const expected = static_cast<wchar_t>(unit >= 'a' && unit <= 'z' ? unit - 32 : unit);
        wchar_t results[8];
        __m128i const folded = vek::FoldAscii(_mm_set1_epi16(static_cast<short>(unit)));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(results), folded);
        ASSERT_TRUE(results[0] == expected && results[7] == expected) << unit;
        ASSERT_EQ(vek::FoldAscii(static_cast<wchar_t>(unit)), expected);
    }
}

TYPED_TEST(Scan, BlocksHoldTheirCapacityAndGrowInPlaceWithinIt)
{
    using Access = vek::StringAccess<TypeParam>;
    size_t previous = 0;
    for (int capacity = 0; capacity < 100000; capacity += 1 + capacity / 7)
    {
        size_t const needed = 12 + (static_cast<size_t>(capacity) + 1) * sizeof(TypeParam);
        size_t const bytes = Access::BlockBytes(capacity);
        ASSERT_TRUE(bytes >= needed && bytes >= previous && bytes <= 2 * needed + 16) << capacity;
        previous = bytes;
    }
    EXPECT_GT(Access::BlockBytes(Access::MAX_CAPACITY), size_t{0x6FFFFFFF});
    EXPECT_EQ(Access::Allocate(static_cast<size_t>(Access::MAX_CAPACITY) + 1, 0), nullptr);

    // Text that grows by one character at a time moves a few times only, though its capacity grows by one. What the
    // header appends in place must stay within the block.
    CVekString<TypeParam> string;
    TypeParam const unit[] = {'x', 0};
    CVekString<TypeParam> const one(unit);
    int moves = 0;
    for (int i = 0; i < 20000; ++i)
    {
        TypeParam const * const before = string;
        i % 3 == 0 ? string.Append(unit) : i % 3 == 1 ? string.Append(one) : void(string += unit[0]);
        moves += static_cast<TypeParam const *>(string) != before;
        ASSERT_EQ(string.GetCapacity(), i + 2);
    }
    EXPECT_LT(moves, 80);
}

} // namespace
