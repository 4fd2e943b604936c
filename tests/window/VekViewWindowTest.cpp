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

// Where the colours are; yellow is what is highlighted.
struct Seen
{
    Picture const & p;
    Spot red = FindColor(p, "+--"), blue = FindColor(p, "--+"), green = FindColor(p, "-+-"),
         yellow = FindColor(p, "++-");
};

std::wstring At(Spot const & spot)
{
    return L"@" + std::to_wstring(std::lround(spot.x)) + L"," + std::to_wstring(std::lround(spot.y));
}

// True when what was at the one place, and as large, is now moved.
bool IsMoved(Spot const & now, Spot const & before, double x, double y)
{
    return std::fabs(now.x - before.x - x) < 1 && std::fabs(now.y - before.y - y) < 1;
}

class VekViewWindow : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_view.IsOpen());
        m_view.Act(L"@240,200"); // the middle, which shows the background
        ASSERT_TRUE(m_view.ShowsSoon(
            [this](Picture const & p)
            {
                Seen const seen{m_first = p};
                m_red = seen.red;
                m_blue = seen.blue;
                return p.width == 480 && p.height == 400 && m_red.count > 500 && seen.green.count > 50 &&
                       std::fabs(m_red.x + m_blue.x - p.width) < 2;
            }));
    }
    void TearDown() override { EXPECT_EQ(m_view.Close(), 0); }

    bool ShowsFirstSoon() const
    {
        return m_view.ShowsSoon([this](Picture const & p) { return p == m_first; });
    }
    bool Soon(std::function<bool(Seen const &)> const & condition) const
    {
        return m_view.ShowsSoon([&](Picture const & p) { return condition(Seen{p}); });
    }

    ViewWindow m_view{WriteFileBytes(L"window.xml", SCENE)};
    Picture m_first;
    Spot m_red, m_blue;
};

TEST_F(VekViewWindow, HighlightsTheTriangleUnderThePointer)
{
    m_view.Act(At(m_red));
    EXPECT_TRUE(m_view.HasTitleSoon(L" - left"));
    EXPECT_TRUE(Soon([&](Seen const & s) { return s.yellow.count == m_red.count && s.red.count == 0; }));
    for (wchar_t const * const place : {L"@240,200", L"@520,200"}) // the background, and outside of the window
    {
        m_view.Act(At(m_blue));
        EXPECT_TRUE(m_view.HasTitleSoon(L" - right")) << place;
        m_view.Act(place);
        EXPECT_TRUE(ShowsFirstSoon()) << place;
    }
}

TEST_F(VekViewWindow, LeftDragOrbitsAndTheProjectionDecidesAboutSizes)
{
    // A quarter of the height is an eighth of a turn: to the right, it brings the left triangle to the front.
    m_view.Act(At(m_red) + L" mousedown 1 @193,200 @243,200 mouseup 1"); // not on it any more
    int reds = 0, yellows = 0;
    Spot behind;
    EXPECT_TRUE(Soon(
        [&](Seen const & s)
        {
            reds = s.red.count;
            behind = s.blue;
            return s.red.x > m_red.x + 15 && s.blue.x < m_blue.x - 35 && reds > s.blue.count * 1.3;
        }));
    m_view.Act(L"@340,200 key o");
    EXPECT_TRUE(m_view.HasTitleSoon(L"orthographic"));
    EXPECT_TRUE(Soon([](Seen const & s)
                     { return s.red.count > 0 && std::abs(s.red.count - s.blue.count) < s.red.count / 20; }));
    m_view.Act(L"@340,200 key p");
    EXPECT_TRUE(m_view.HasTitleSoon(L"perspective"));
    EXPECT_TRUE(Soon([&](Seen const & s) { return std::abs(s.red.count - reds) < reds / 50; }));
    // The same close to the one behind, past the middle about which the camera turned.
    m_view.Act(At(behind) + L" click --repeat 14 --delay 1 4");
    EXPECT_TRUE(Soon([&](Seen const & s) { return (yellows = s.yellow.count) > behind.count * 125; }));
    m_view.Act(At(behind) + L" key o");
    EXPECT_TRUE(m_view.HasTitleSoon(L"orthographic - right"));
    EXPECT_TRUE(Soon([&](Seen const & s) { return std::abs(s.yellow.count - yellows) < yellows / 5; }));
    m_view.Act(At(behind) + L" key p");
    EXPECT_TRUE(Soon([&](Seen const & s) { return std::abs(s.yellow.count - yellows) < yellows / 50; }));
}

TEST_F(VekViewWindow, ADragThereAndBackOrTakenBackLeavesThePicture)
{
    for (wchar_t const * const end : {L"@240,200", L"key Escape @340,90"})
    {
        m_view.Act(L"@240,200 mousedown 1 @300,260 @340,90");
        EXPECT_TRUE(Soon([&](Seen const & s) { return s.red.x > m_red.x + 15; })) << end;
        m_view.Act(end);
        EXPECT_TRUE(ShowsFirstSoon()) << end;
        m_view.Act(L"mouseup 1 @245,200");
    }
}

TEST_F(VekViewWindow, MiddleDragKeepsThePointUnderThePointer)
{
    Spot const target{0, m_red.x + 60, m_red.y - 40};
    m_view.Act(At(m_red) + L" mousedown 2 @100,100 " + At(target) + L" mouseup 2");
    EXPECT_TRUE(
        Soon([&](Seen const & s) { return IsMoved(s.yellow, m_red, 60, -40) && IsMoved(s.blue, m_blue, 60, -40); }));
}

TEST_F(VekViewWindow, WheelGoesNearerAndFFitsTheScene)
{
    m_view.Act(At(m_blue) + L" click --repeat 4 4"); // four steps: twice as near
    EXPECT_TRUE(Soon(
        [&](Seen const & s)
        {
            return std::fabs(s.yellow.count - 4.0 * m_blue.count) < 0.1 * m_blue.count &&
                   std::fabs(s.yellow.x - m_blue.x) < 2 && std::fabs(s.yellow.y - m_blue.y) < 2;
        }));
    m_view.Act(At(m_blue) + L" click --repeat 8 4");
    EXPECT_TRUE(Soon([](Seen const & s) { return s.red.count == 0 && s.yellow.count > 60000; })); // all eight steps
    m_view.Act(At(m_blue) + L" key f"); // which is somewhere else then
    EXPECT_TRUE(Soon(
        [](Seen const & s)
        {
            return s.red.count > 200 && s.blue.count == s.red.count && s.green.count > 50 &&
                   std::fabs(s.red.x + s.blue.x - 480) < 2 && s.red.x > 50 && s.red.y > 200;
        }));
}

TEST_F(VekViewWindow, RightDragRolls)
{
    // From the right of the view axis to above it: a quarter to the left.
    m_view.Act(L"@300,200 mousedown 3 @280,160 @240,140 mouseup 3");
    EXPECT_TRUE(
        Soon([&](Seen const & s) { return s.red.y > 240 && s.blue.y < 160 && std::fabs(s.red.x - s.blue.x) < 2; }));
}

} // namespace
