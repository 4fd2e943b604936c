#include "VekCamera.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace
{

using Planes = std::vector<float>;

Planes All(CVekFrustum const & f)
{
    return {f.GetLeft(), f.GetRight(), f.GetTop(), f.GetBottom(), f.GetNear(), f.GetFar()};
}

TEST(Frustum, MembersAndTheirSums)
{
    CVekFrustum frustum;
    EXPECT_EQ(All(frustum), (Planes{-0.5f, 0.5f, 0.5f, -0.5f, 1, 100}));
    EXPECT_TRUE(frustum.GetWidth() == 1 && frustum.GetHeight() == 1 && frustum.GetDepth() == 99);
    EXPECT_TRUE(frustum.SetFrustum(static_cast<VEK_PROJECTIONMODE>(7), 1, 2, 3, 4, 5, 6)); // anything goes
    EXPECT_EQ(frustum.GetProjectionMode(), 7);
    EXPECT_EQ(All(frustum), (Planes{1, 2, 3, 4, 5, 6}));
    frustum.SetLeft(10);
    frustum.SetRight(20);
    frustum.SetTop(30);
    frustum.SetBottom(40);
    frustum.SetNear(50);
    frustum.SetFar(60);
    frustum.SetProjectionMode(VEK_PROJECTIONMODE_ORTHOGRAPHIC);
    frustum.Scale(2, 3);
    CVekFrustum const copy = frustum;
    EXPECT_EQ(All(copy), (Planes{20, 40, 90, 120, 50, 60}));
    EXPECT_EQ(copy.GetProjectionMode(), VEK_PROJECTIONMODE_ORTHOGRAPHIC);
}

TEST(Frustum, FieldOfViewAndAspectRatio)
{
    CVekFrustum frustum;
    EXPECT_EQ(frustum.GetFOV(VEK_ANGLE_RADIANS), 0.7853982f);
    for (int unit : {0, 1, 3, -2})
        EXPECT_EQ(frustum.GetFOV(static_cast<VEK_ANGLE>(unit)), 45.0f) << unit;
    frustum.SetTop(1.5f); // kept: of the full height, here 2 over 1
    EXPECT_FLOAT_EQ(frustum.GetFOV(VEK_ANGLE_RADIANS), 1.1071488f);
    frustum.SetNear(-0.0f);
    EXPECT_EQ(frustum.GetFOV(VEK_ANGLE_DEGREES), 0.0f);

    frustum = CVekFrustum();
    EXPECT_TRUE(!frustum.FixAspectRatio(0, 9) && !frustum.FixAspectRatio(16, 0));
    EXPECT_EQ(All(frustum), All(CVekFrustum()));
    EXPECT_TRUE(frustum.FixAspectRatio(16, 9));
    EXPECT_EQ(All(frustum), (Planes{-0.8888889f, 0.8888889f, 0.5f, -0.5f, 1, 100}));
}

TEST(Frustum, ProjectionMatrix)
{
    // l = -1, r = 3, t = 2, b = -6, n = 2, f = 10: r - l = 4, r + l = 2, t - b = 8, t + b = -4, f - n = 8.
    struct
    {
        char const * name;
        int mode, coordSystem;
        float elements[16];
    } const rows[] = {
        {"perspective left", 0, 0, {1, 0, 0, 0, 0, .5f, 0, 0, -.5f, .5f, 1.25f, 1, 0, 0, -2.5f, 0}},
        {"perspective right", 0, 1, {1, 0, 0, 0, 0, .5f, 0, 0, .5f, -.5f, -1.25f, -1, 0, 0, -2.5f, 0}},
        {"orthographic left", 1, 0, {.5f, 0, 0, 0, 0, .25f, 0, 0, 0, 0, .125f, 0, -.5f, .5f, -.25f, 1}},
        {"orthographic right", 1, 1, {.5f, 0, 0, 0, 0, .25f, 0, 0, 0, 0, -.125f, 0, -.5f, .5f, -.25f, 1}},
        {"no coordinate system", 0, 2, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
        {"no mode", 2, 1, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
    };
    for (auto const & row : rows)
    {
        CVekFrustum const frustum(static_cast<VEK_PROJECTIONMODE>(row.mode), -1, 3, 2, -6, 2, 10);
        auto const matrix = frustum.CreateProjectionMatrix(static_cast<VEK_COORDSYSTEM>(row.coordSystem));
        for (unsigned int i = 0; i < 16; ++i)
            EXPECT_EQ(matrix.GetElements()[i], row.elements[i]) << row.name << ", element " << i;
    }
    CVekFrustum flat;
    flat.SetRight(flat.GetLeft());
    EXPECT_EQ(flat.CreateProjectionMatrix(VEK_COORDSYSTEM_LEFTHANDED)(0, 0), std::numeric_limits<float>::infinity());
}

} // namespace
