#include "VekLib.h"

#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>

namespace
{

using Point = CVekVector3D<float>;
using Pixel = CVekVector2D<float>;
using Transform = CVekMatrix4x4<float>;

constexpr float HALF_PIXEL = 0.5f;

// An off-centre view of a pivot from a slant, in a window that does not begin at 0. The four kinds of cameras are
// perspective and orthographic, each left-handed and right-handed.
constexpr int KINDS = 4;

VEK_CAMERASTATE Camera(int kind)
{
    VEK_CAMERASTATE state;
    auto const mode = static_cast<VEK_PROJECTIONMODE>(kind / 2);
    state.coordSystem = static_cast<VEK_COORDSYSTEM>(kind % 2);
    float const size = mode == VEK_PROJECTIONMODE_PERSPECTIVE ? 1.0f : 12.0f;
    state.frustum.SetFrustum(mode, -0.4f * size, 0.6f * size, 0.55f * size, -0.45f * size, 1, 100);
    Point const eye(7, 5, -9);
    state.pivot = Point(1, 2, 3);
    Point const target(0.5f, 2.5f, 2);
    state.matrix = kind % 2 == 0 ? Transform::LookAtLeftHanded(eye, target, state.up)
                                 : Transform::LookAtRightHanded(eye, target, state.up);
    state.screenLeft = 40;
    state.screenTop = 30;
    state.screenRight = 840;
    state.screenBottom = 630;
    state.pointerStart = Pixel(300, 200);
    state.pointerCurrent = Pixel(420, 130);
    return state;
}

Transform Projection(VEK_CAMERASTATE const & state)
{
    CVekFrustum volume = state.frustum;
    volume.FixAspectRatio(state.screenRight - state.screenLeft, state.screenBottom - state.screenTop);
    return state.matrix * volume.CreateProjectionMatrix(state.coordSystem);
}

Pixel OnScreen(VEK_CAMERASTATE const & state, Point const & point)
{
    Point p;
    EXPECT_TRUE(Projection(state).ProjectPoint(point, p));
    return Pixel(state.screenLeft + (p.x + 1) / 2 * (state.screenRight - state.screenLeft),
                 state.screenTop + (1 - p.y) / 2 * (state.screenBottom - state.screenTop));
}

// The point in the world under a pixel at the pivot's depth.
Point Under(VEK_CAMERASTATE const & state, Pixel const & pixel)
{
    Transform back;
    EXPECT_TRUE(Projection(state).Inverse(back));
    Point p, result;
    EXPECT_TRUE(Projection(state).ProjectPoint(state.pivot, p));
    p.x = (pixel.x - state.screenLeft) / (state.screenRight - state.screenLeft) * 2 - 1;
    p.y = 1 - (pixel.y - state.screenTop) / (state.screenBottom - state.screenTop) * 2;
    EXPECT_TRUE(back.ProjectPoint(p, result));
    return result;
}

Point Eye(VEK_CAMERASTATE const & state)
{
    Transform back;
    EXPECT_TRUE(state.matrix.Inverse(back));
    return back.GetTranslation();
}

bool SameOrientation(VEK_CAMERASTATE const & a, VEK_CAMERASTATE const & b)
{
    return a.matrix.Row(0) == b.matrix.Row(0) && a.matrix.Row(1) == b.matrix.Row(1) &&
           a.matrix.Row(2) == b.matrix.Row(2);
}

// Where the view axis meets the screen.
Pixel AxisOnScreen(VEK_CAMERASTATE const & state)
{
    Transform back;
    EXPECT_TRUE(state.matrix.Inverse(back));
    float const forward = state.coordSystem == VEK_COORDSYSTEM_LEFTHANDED ? 5.0f : -5.0f;
    return OnScreen(state, back.TransformPoint(Point(0, 0, forward)));
}

class CameraController : public testing::Test
{
protected:
    bool Move(int mode, VEK_CAMERASTATE & state) { return m_controller.Manipulate(mode, &state); }

    CVekCameraUIController m_controller;
};

TEST_F(CameraController, IsMadeByTheKernelAndCalledByItsSlots)
{
    CVekRef<IVekCameraUIController> const controller(getVekLibKernel()->CreateCameraUIController());
    ExpectRefCountContract("camera controller", getVekLibKernel()->CreateCameraUIController());
    VEK_CAMERASTATE state = Camera(0), other = state;
    EXPECT_TRUE(CallSlot<bool>(controller.Get(), 3, 3, &state) && Move(VEK_CAMERAMODE_PAN, other));
    EXPECT_EQ(state.matrix, other.matrix);
}

// What is in the picture where the pointer is, and what stays as it was.
TEST_F(CameraController, MovesWhatIsUnderThePointer)
{
    for (int kind = 0; kind < KINDS; ++kind)
    {
        SCOPED_TRACE(testing::Message() << "camera " << kind);
        VEK_CAMERASTATE const before = Camera(kind);
        bool const perspective = kind < 2;
        Point const grip = Under(before, before.pointerStart);

        VEK_CAMERASTATE pan = before;
        ASSERT_TRUE(Move(VEK_CAMERAMODE_PAN, pan));
        EXPECT_LT((OnScreen(pan, grip) - before.pointerCurrent).Length(), HALF_PIXEL);
        EXPECT_TRUE(SameOrientation(pan, before));

        VEK_CAMERASTATE dolly = before; // 70 of 600 pixels up
        ASSERT_TRUE(Move(VEK_CAMERAMODE_DOLLY, dolly));
        EXPECT_LT((OnScreen(dolly, grip) - before.pointerStart).Length(), HALF_PIXEL);
        EXPECT_TRUE(SameOrientation(dolly, before));
        float const depths = (Eye(dolly) - grip).Length() / (Eye(before) - grip).Length();
        float const sizes = dolly.frustum.GetHeight() / before.frustum.GetHeight();
        EXPECT_NEAR(perspective ? depths : sizes, std::exp2(-4.0f * 70 / 600), 1e-5f);
        EXPECT_NEAR(perspective ? sizes : 1, 1, 1e-6f);

        VEK_CAMERASTATE roll = before;
        ASSERT_TRUE(Move(VEK_CAMERAMODE_ROLL, roll));
        Pixel const axis = AxisOnScreen(before);
        EXPECT_LT((AxisOnScreen(roll) - axis).Length(), HALF_PIXEL);
        Pixel const from = before.pointerStart - axis, to = before.pointerCurrent - axis;
        EXPECT_LT((OnScreen(roll, grip) - axis - to * (from.Length() / to.Length())).Length(), HALF_PIXEL);
        EXPECT_LT((Eye(roll) - Eye(before)).Length(), 1e-5f);

        VEK_CAMERASTATE orbit = before;
        ASSERT_TRUE(Move(VEK_CAMERAMODE_ORBIT, orbit));
        EXPECT_NEAR((Eye(orbit) - before.pivot).Length(), (Eye(before) - before.pivot).Length(), 1e-5f);
        EXPECT_LT((OnScreen(orbit, before.pivot) - OnScreen(before, before.pivot)).Length(), HALF_PIXEL);
        Point const inFront = before.pivot + (Eye(before) - before.pivot) * 0.1f;
        Pixel const followed = OnScreen(orbit, inFront) - OnScreen(before, inFront);
        EXPECT_TRUE(followed.x > 10 && followed.y < -10) << followed.x << ", " << followed.y;
        // The horizon stays level: the camera's x axis is still at a right angle to up.
        EXPECT_NEAR(orbit.matrix.TransformDirection(before.up).x, 0, 1e-6f);

        for (VEK_CAMERASTATE const * moved : {&pan, &dolly, &roll, &orbit})
        {
            EXPECT_EQ(moved->previousMatrix, before.matrix);
            EXPECT_EQ(moved->previousFrustum.GetTop(), before.frustum.GetTop());
            EXPECT_EQ(moved->pointerStart, before.pointerStart);
        }
    }
}

TEST_F(CameraController, ADragThereAndBackRestoresTheCamera)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> across(50, 830), down(40, 620);
    for (int kind = 0; kind < KINDS; ++kind)
        for (int mode = 0; mode < 4; ++mode)
        {
            SCOPED_TRACE(testing::Message() << "camera " << kind << ", mode " << mode);
            VEK_CAMERASTATE const before = Camera(kind);
            VEK_CAMERASTATE steps = before;
            for (int i = 20; i >= 0; --i)
            {
                Pixel const pointer = i ? Pixel(across(random), down(random)) : before.pointerStart;
                // A dolly takes the point under each start: here all steps begin on one vertical line.
                steps.pointerCurrent = mode == VEK_CAMERAMODE_DOLLY ? Pixel(before.pointerStart.x, pointer.y) : pointer;
                ASSERT_TRUE(Move(mode, steps));
                steps.pointerStart = steps.pointerCurrent;
            }
            // Steps over a pole turn the sense of sideways orbits.
            EXPECT_TRUE(mode < VEK_CAMERAMODE_ROLL || steps.matrix.IsNear(before.matrix, 1e-4f));
            EXPECT_NEAR(steps.frustum.GetRight(), before.frustum.GetRight(), 1e-4f);
        }
}

// Upside down the scene follows the pointer too, and seen from straight above nothing flips.
TEST_F(CameraController, OrbitsUpsideDown)
{
    VEK_CAMERASTATE state = Camera(1);
    state.matrix = Transform::LookAtRightHanded(Point(1, 2, 9), state.pivot, Point(0, -1, 0));
    state.pointerCurrent = state.pointerStart + Pixel(30, 0);
    Pixel const place = OnScreen(state, Point(1, 2, 4));
    ASSERT_TRUE(Move(VEK_CAMERAMODE_ORBIT, state));
    EXPECT_GT(OnScreen(state, Point(1, 2, 4)).x, place.x);
}

TEST_F(CameraController, RefusesWhatMakesNoCamera)
{
    float const nan = std::numeric_limits<float>::quiet_NaN(), infinite = std::numeric_limits<float>::infinity();
    constexpr unsigned int ALL = 15, PAN_ONLY = 8, ROLL_ONLY = 4;
    constexpr int PERSPECTIVE = 1, ORTHOGRAPHIC = 3;
    struct
    {
        char const * name;
        unsigned int refusedModes; // a bit for each
        int kind;
        std::function<void(VEK_CAMERASTATE &)> spoil;
    } const rows[] = {
        {"nothing wrong", 0, PERSPECTIVE, [](auto &) {}},
        {"no width", ALL, PERSPECTIVE, [](auto & s) { s.screenRight = s.screenLeft; }},
        {"no height", ALL, ORTHOGRAPHIC, [](auto & s) { s.screenTop = s.screenBottom; }},
        {"mirrored", ALL, PERSPECTIVE, [](auto & s) { std::swap(s.screenLeft, s.screenRight); }},
        {"endless screen", ALL, PERSPECTIVE, [=](auto & s) { s.screenRight = infinite; }},
        {"pointer NaN", ALL, PERSPECTIVE, [=](auto & s) { s.pointerCurrent.x = nan; }},
        {"pointer far out", 0, ORTHOGRAPHIC, [](auto & s) { s.pointerCurrent.x = 1e9f; }},
        {"pivot NaN", ALL, PERSPECTIVE, [=](auto & s) { s.pivot.z = nan; }},
        {"pivot at the eye", 0, PERSPECTIVE, [](auto & s) { s.pivot = Eye(s); }},
        {"pivot behind the eye", 0, PERSPECTIVE, [](auto & s) { s.pivot = Point(14, 8, -20); }},
        {"up NaN: the camera's own", 0, PERSPECTIVE, [=](auto & s) { s.up.x = nan; }},
        {"up zero: the camera's own", 0, PERSPECTIVE, [](auto & s) { s.up = Point(); }},
        {"zero matrix", ALL, PERSPECTIVE, [](auto & s) { s.matrix = Transform(); }},
        {"flat matrix", ALL, ORTHOGRAPHIC, [](auto & s) { s.matrix.Scale(1, 0, 1); }},
        {"matrix NaN", ALL, PERSPECTIVE, [=](auto & s) { s.matrix(2, 1) = nan; }},
        {"flat volume", ALL, PERSPECTIVE, [](auto & s) { s.frustum.SetLeft(0.6f); }},
        {"near 0", ALL, PERSPECTIVE, [](auto & s) { s.frustum.SetNear(0); }},
        {"kept: near 0 bars only the pan", PAN_ONLY, ORTHOGRAPHIC, [](auto & s) { s.frustum.SetNear(0); }},
        {"near negative", 0, ORTHOGRAPHIC, [](auto & s) { s.frustum.SetNear(-5); }},
        {"near NaN", ALL, ORTHOGRAPHIC, [=](auto & s) { s.frustum.SetNear(nan); }},
        {"no projection", ALL, 4, [](auto &) {}},
        {"no system", ALL, PERSPECTIVE, [](auto & s) { s.coordSystem = static_cast<VEK_COORDSYSTEM>(-1); }},
        {"pointer on the view axis", ROLL_ONLY, PERSPECTIVE, [](auto & s) { s.pointerCurrent = AxisOnScreen(s); }},
    };
    for (auto const & row : rows)
        for (int mode = -1; mode < 5; ++mode)
        {
            SCOPED_TRACE(testing::Message() << row.name << ", mode " << mode);
            VEK_CAMERASTATE state = Camera(row.kind);
            row.spoil(state);
            state.previousMatrix = Transform();
            VEK_CAMERASTATE const before = state;
            bool const refused = mode < 0 || mode > 3 || (row.refusedModes >> mode & 1u);
            EXPECT_EQ(Move(mode, state), !refused);
            for (unsigned int i = 0; i < 16; ++i)
            {
                float const old = before.matrix.GetElements()[i], now = state.matrix.GetElements()[i];
                EXPECT_TRUE(refused ? now == old || std::isnan(old) : std::isfinite(now)) << i;
                // Kept: the copy is made for refused modes and records too.
                EXPECT_TRUE(state.previousMatrix.GetElements()[i] == old || std::isnan(old)) << i;
            }
            EXPECT_EQ(state.previousFrustum.GetRight(), before.frustum.GetRight());
        }
    EXPECT_FALSE(m_controller.Manipulate(0, nullptr));
}

// Going on and on ends before the volume has no size left, and passing the pivot stays sound.
TEST_F(CameraController, EndlessDollies)
{
    for (int kind = 0; kind < 2 * KINDS; ++kind)
    {
        VEK_CAMERASTATE state = Camera(kind % KINDS);
        state.pointerCurrent = state.pointerStart + Pixel(0, kind < KINDS ? -3000.0f : 3000.0f);
        for (int i = 0; i < 1000; ++i)
            Move(VEK_CAMERAMODE_DOLLY, state);
        EXPECT_TRUE(std::isnormal(state.frustum.GetWidth()) && std::isfinite(state.matrix.GetTranslation().x)) << kind;
    }
}

} // namespace
