#include "VekLib.h"

#include <gtest/gtest.h>

#include <bit>
#include <type_traits>

namespace
{

template <class T>
using Routines = std::conditional_t<std::is_same_v<T, float>, CVekMath32, CVekMath64>;

template <class T>
class Geometry : public testing::Test
{
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Geometry, Precisions);

TYPED_TEST(Geometry, BoxToBoxTransform)
{
    using T = TypeParam;
    using V = CVekVector3D<T>;
    CVekBoundBox<T> const to(V(10, 20, 30), V(12, 28, 46)), from(V(0, -1, 2), V(1, 1, 4)), empty;
    CVekMatrix4x4<T> m;
    ASSERT_TRUE(Routines<T>::BoxToBoxTransform(m, to, from, false));
    EXPECT_EQ(from.Transformed(m), to);
    ASSERT_TRUE(Routines<T>::BoxToBoxTransform(m, to, from, true));
    EXPECT_EQ(from.Transformed(m), CVekBoundBox<T>(V(10, 22, 36), V(12, 26, 40))) << "the smallest factor, centred";
    ASSERT_TRUE(Routines<T>::BoxToBoxTransform(m, empty, from, false));
    EXPECT_EQ(m.TransformPoint(V(5, 6, 7)), V()) << "onto an empty box";
    CVekBoundBox<T> const flat(V(0, 0, 0), V(1, 0, 1));
    for (CVekBoundBox<T> const * const box : {&flat, &empty})
    {
        EXPECT_FALSE(Routines<T>::BoxToBoxTransform(m, to, *box, false));
        EXPECT_EQ(m, CVekMatrix4x4<T>::Identity());
    }
}

TYPED_TEST(Geometry, FindBaryCentric)
{
    using T = TypeParam;
    using P = CVekVector2D<T>;
    P const a(1, 1), b(5, 1), c(1, 9);
    std::pair<P, CVekVector3D<T>> const rows[] = {
        {a, {1, 0, 0}}, {b, {0, 1, 0}}, {c, {0, 0, 1}}, {{2, 3}, {0.5, 0.25, 0.25}}, {{-3, 1}, {2, -1, 0}}};
    for (auto const & [point, expected] : rows)
    {
        CVekVector3D<T> weights;
        EXPECT_TRUE(Routines<T>::FindBaryCentric(point, a, b, c, weights) && weights == expected)
            << point.x << ", " << point.y;
    }
    CVekVector3D<T> untouched(7, 7, 7);
    EXPECT_FALSE(Routines<T>::FindBaryCentric(a, P(0, 0), P(1, 2), P(2, 4), untouched));
    EXPECT_EQ(untouched, (CVekVector3D<T>(7, 7, 7)));
}

TYPED_TEST(Geometry, RayPlaneIntersection)
{
    using T = TypeParam;
    using V = CVekVector3D<T>;
    CVekPlane<T> const plane(0, 0, 2, -8); // z = 4
    T t = 0;
    V hit;
    T const rows[][3] = {{0, 8, 0.5}, {0, 1, 4}, {5, 6, -1}}; // it meets the plane between, beyond and behind them
    for (auto const & [from, to, expected] : rows)
    {
        hit = V(1, 1, from); // into its own start
        EXPECT_TRUE(Routines<T>::RayPlaneIntersection(hit, V(1, 1, to), plane, t, hit)) << from;
        EXPECT_TRUE(t == expected && hit == V(1, 1, 4)) << from;
    }
    t = 77;
    EXPECT_FALSE(Routines<T>::RayPlaneIntersection(V(0, 0, 4), V(1, 0, 4), plane, t, hit)) << "parallel, within";
    EXPECT_EQ(t, 77);
}

TYPED_TEST(Geometry, RayTriangleIntersection)
{
    using T = TypeParam;
    using V = CVekVector3D<T>;
    constexpr unsigned int BOTH = 0, NO_BACKS = VEK_RT_SKIP_BACK_FACES, NO_FRONTS = VEK_RT_SKIP_FRONT_FACES;
    struct Row
    {
        char const * name;
        V from, weights;
        unsigned int flags;
        T threshold;
        bool hit, written;
    };
    // The triangle (0,0,0), (4,0,0), (0,4,0), seen along z.
    Row const rows[] = {
        {"the middle", {1, 1, 2}, {0.5, 0.25, 0.25}, BOTH, 0, true, true},
        {"a corner", {4, 0, 2}, {0, 1, 0}, BOTH, 0, true, true},
        {"outside, its weights told", {-2, 1, 2}, {1.25, -0.5, 0.25}, BOTH, 0, false, true},
        {"outside, but within the threshold", {-2, 1, 2}, {1.25, -0.5, 0.25}, BOTH, 0.5, true, true},
        {"outside by a little more", {-2, 1, 2}, {1.25, -0.5, 0.25}, BOTH, T(0.4375), false, true},
        {"the front", {1, 1, 2}, {0.5, 0.25, 0.25}, NO_BACKS, 0, true, true},
        {"the front, unwanted", {1, 1, 2}, {}, NO_FRONTS, 0, false, false},
        {"the back", {1, 1, -2}, {0.5, 0.25, 0.25}, NO_FRONTS, 0, true, true},
        {"the back, unwanted", {1, 1, -2}, {}, NO_BACKS, 0, false, false},
    };
    for (Row const & row : rows)
        for (unsigned int turn = 0; turn < 3; ++turn) // the same with its axes exchanged in turn
        {
            SCOPED_TRACE(std::string(row.name) + ", turn " + std::to_string(turn));
            auto const turned = [turn](V const & v) { return V(v[turn % 3], v[(turn + 1) % 3], v[(turn + 2) % 3]); };
            CVekSetMath32ErrorThreshHold const single(static_cast<float>(row.threshold));
            CVekSetMath64ErrorThreshHold const twice(row.threshold);
            T t = 77;
            V hit, weights;
            bool const result = Routines<T>::RayTriangleIntersection(
                turned(row.from), turned({row.from.x, row.from.y, 0}), V(), turned({4, 0, 0}), turned({0, 4, 0}),
                turned({0, 0, 3}), row.flags, t, hit, &weights);
            // Kept: in single precision no result is true.
            EXPECT_EQ(result, row.hit && sizeof(T) == sizeof(double));
            EXPECT_TRUE(weights == row.weights && t == (row.written ? 1 : 77));
            EXPECT_EQ(hit, row.written ? turned({row.from.x, row.from.y, 0}) : V());
        }
    T t = 77;
    V hit;
    auto const ray = [&](V const & to, V const & c, V const & normal) {
        return Routines<T>::RayTriangleIntersection({1, 1, 2}, to, V(), {4, 0, 0}, c, normal, BOTH, t, hit, nullptr);
    };
    EXPECT_FALSE(ray(V(2, 1, 2), V(0, 4, 0), V(0, 0, 1))) << "parallel";
    EXPECT_FALSE(ray(V(1, 1, 0), V(0, 4, 0), V())) << "no normal";
    EXPECT_EQ(t, 77);
    EXPECT_FALSE(ray(V(1, 1, 0), V(8, 0, 0), V(0, 0, 1))) << "a triangle that is a line";
    EXPECT_EQ(ray(V(1, 1, 0), V(0, 4, 0), V(0, 0, 1)), sizeof(T) == sizeof(double)) << "no weights wanted";
}

TEST(ErrorThreshold, IsSetForAScope)
{
    float const first = CVekMath32::GetErrorThreshold();
    EXPECT_TRUE(std::bit_cast<uint32_t>(first) == 0x38D1B717u && CVekMath64::GetErrorThreshold() == 0.0001);
    {
        CVekSetMath32ErrorThreshHold const outer(0.5f);
        {
            CVekSetMath32ErrorThreshHold inner(0.25f);
            CVekSetMath64ErrorThreshHold const other(0.125);
            EXPECT_TRUE(CVekMath32::GetErrorThreshold() == 0.25f && CVekMath64::GetErrorThreshold() == 0.125);
            inner = outer; // takes over what the outer one puts back
        }
        EXPECT_TRUE(CVekMath32::GetErrorThreshold() == first && CVekMath64::GetErrorThreshold() == 0.0001);
        CVekMath32::SetErrorThreshold(2);
    }
    EXPECT_EQ(CVekMath32::GetErrorThreshold(), first);
}

} // namespace
