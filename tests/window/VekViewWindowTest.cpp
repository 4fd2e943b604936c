// The real window, moved by mouse and keyboard. A red triangle is on the left, a blue one on the right, and a green
// line above, seen from the front.

#include "ViewWindow.h"

#include "support/Files.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

constexpr char const * SCENE = R"(<scene>
  <camera eye="0, 0, 10" target="0, 0, 0" angle="45"/>
  <triangle name="left" a="-2.5, -0.5, 0" b="-1.5, -0.5, 0" c="-2, 0.5, 0" color="255, 0, 0"/>
  <triangle name="right" a="1.5, -0.5, 0" b="2.5, -0.5, 0" c="2, 0.5, 0" color="0, 0, 255"/>
  <curve degree="1" color="0, 255, 0"><point at="-1, 2.5, 0"/><point at="1, 2.5, 0"/></curve>
</scene>)";

constexpr POINT MIDDLE{240, 200}; // of the picture: the background
constexpr char const * RED = "+--";
constexpr char const * BLUE = "--+";
constexpr char const * GREEN = "-+-";
constexpr char const * YELLOW = "++-"; // what is highlighted

class VekViewWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_view.IsOpen());
        m_view.MoveTo(MIDDLE.x, MIDDLE.y);
        ASSERT_TRUE(m_view.ShowsSoon([](Picture const & p) { return FindColor(p, RED).count > 500; }));
        m_first = m_view.NewPicture(Picture());
        m_red = FindColor(m_first, RED);
        m_blue = FindColor(m_first, BLUE);
        ASSERT_TRUE(m_first.width == 480 && m_first.height == 400);
        ASSERT_NEAR(m_red.x + m_blue.x, m_first.width, 2);
    }
    void TearDown() override { EXPECT_EQ(m_view.Close(), 0); }

    ViewWindow m_view{WriteFileBytes(L"window.xml", SCENE)};
    Picture m_first;
    Spot m_red, m_blue;
};

TEST_F(VekViewWindow, HighlightsTheTriangleUnderThePointer)
{
    m_view.MoveTo(static_cast<int>(m_red.x), static_cast<int>(m_red.y));
    EXPECT_TRUE(m_view.HasTitleSoon(L" - left"));
    EXPECT_TRUE(m_view.ShowsSoon(
        [&](Picture const & p) { return FindColor(p, YELLOW).count == m_red.count && FindColor(p, RED).count == 0; }));
    m_view.MoveTo(static_cast<int>(m_blue.x), static_cast<int>(m_blue.y));
    EXPECT_TRUE(m_view.HasTitleSoon(L" - right"));
    m_view.MoveTo(MIDDLE.x, MIDDLE.y);
    EXPECT_TRUE(m_view.ShowsSoon([&](Picture const & p) { return p == m_first; }));
}

TEST_F(VekViewWindow, LeftDragOrbitsAndTheProjectionDecidesAboutSizes)
{
    // An eighth of a turn to the right brings the left triangle to the front, the right one to the back.
    POINT const end{MIDDLE.x + 100, MIDDLE.y};
    m_view.Drag(MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP, MIDDLE, end);
    Picture const turned = m_view.NewPicture(m_first);
    Spot const red = FindColor(turned, RED), blue = FindColor(turned, BLUE);
    EXPECT_GT(red.x, m_red.x + 20);
    EXPECT_LT(blue.x, m_blue.x - 20);
    EXPECT_GT(red.count, blue.count * 1.3);
    m_view.PressKey('O');
    EXPECT_TRUE(m_view.HasTitleSoon(L"orthographic"));
    EXPECT_TRUE(m_view.ShowsSoon(
        [](Picture const & p)
        {
            int const reds = FindColor(p, RED).count, blues = FindColor(p, BLUE).count;
            return reds > 0 && std::abs(reds - blues) < reds / 20;
        }));
    m_view.PressKey('P');
    EXPECT_TRUE(m_view.HasTitleSoon(L"perspective"));
    EXPECT_TRUE(m_view.ShowsSoon([&](Picture const & p)
                                 { return std::abs(FindColor(p, RED).count - red.count) < red.count / 50; }));
}

TEST_F(VekViewWindow, ADragThereAndBackOrTakenBackLeavesThePicture)
{
    for (unsigned short const key : {0, VK_ESCAPE})
    {
        SCOPED_TRACE(key);
        m_view.MoveTo(MIDDLE.x, MIDDLE.y);
        m_view.Button(MOUSEEVENTF_LEFTDOWN);
        m_view.MoveTo(300, 260);
        m_view.MoveTo(340, 90);
        EXPECT_TRUE(m_view.ShowsSoon([&](Picture const & p) { return FindColor(p, GREEN).y > 30 && p != m_first; }));
        if (key)
            m_view.PressKey(key);
        m_view.MoveTo(MIDDLE.x, MIDDLE.y);
        m_view.Button(MOUSEEVENTF_LEFTUP);
        EXPECT_TRUE(m_view.ShowsSoon([&](Picture const & p) { return p == m_first; }));
    }
}

TEST_F(VekViewWindow, MiddleDragKeepsThePointUnderThePointer)
{
    POINT const from{static_cast<int>(m_red.x), static_cast<int>(m_red.y)};
    m_view.Drag(MOUSEEVENTF_MIDDLEDOWN, MOUSEEVENTF_MIDDLEUP, from, {from.x + 60, from.y - 40});
    EXPECT_TRUE(m_view.ShowsSoon(
        [&](Picture const & p)
        {
            Spot const moved = FindColor(p, YELLOW), other = FindColor(p, BLUE);
            return std::fabs(moved.x - m_red.x - 60) < 1 && std::fabs(moved.y - m_red.y + 40) < 1 &&
                   std::fabs(other.x - m_blue.x - 60) < 1 && std::fabs(other.y - m_blue.y + 40) < 1;
        }));
}

TEST_F(VekViewWindow, WheelGoesNearerAndFFitsTheScene)
{
    POINT const place{static_cast<int>(m_blue.x), static_cast<int>(m_blue.y)};
    m_view.MoveTo(place.x, place.y);
    EXPECT_TRUE(m_view.HasTitleSoon(L" - right"));
    m_view.TurnWheel(4); // twice as near
    EXPECT_TRUE(m_view.ShowsSoon(
        [&](Picture const & p)
        {
            Spot const nearer = FindColor(p, YELLOW);
            return std::fabs(nearer.count - 4.0 * m_blue.count) < 0.1 * m_blue.count &&
                   std::fabs(nearer.x - m_blue.x) < 2 && std::fabs(nearer.y - m_blue.y) < 2;
        }));
    m_view.TurnWheel(8);
    EXPECT_TRUE(m_view.ShowsSoon([&](Picture const & p) { return FindColor(p, RED).count == 0; }));
    m_view.MoveTo(MIDDLE.x, 390);
    m_view.PressKey('F');
    EXPECT_TRUE(m_view.ShowsSoon(
        [](Picture const & p)
        {
            Spot const red = FindColor(p, RED), blue = FindColor(p, BLUE), green = FindColor(p, GREEN);
            return red.count > 200 && green.count > 50 && std::fabs(red.x + blue.x - p.width) < 2 && red.x > 50 &&
                   red.y > p.height / 2.0;
        }));
}

TEST_F(VekViewWindow, RightDragRolls)
{
    // From the right of the view axis to above it: a quarter to the left.
    m_view.Drag(MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP, {MIDDLE.x + 60, MIDDLE.y}, {MIDDLE.x, MIDDLE.y - 60});
    EXPECT_TRUE(m_view.ShowsSoon(
        [&](Picture const & p)
        {
            Spot const red = FindColor(p, RED), blue = FindColor(p, BLUE);
            return red.y > p.height * 0.6 && blue.y < p.height * 0.4 && std::fabs(red.x - blue.x) < 2;
        }));
}

} // namespace
