// vekview without a window: what its pictures show, and what it says of bad scenes.

#include "PngPicture.h"
#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

using testing::HasSubstr;

namespace
{

constexpr char const * CAMERA = R"(<camera eye="0, 0, 10" target="0, 0, 0" angle="90")";

std::string Scene(std::string const & inside)
{
    return "<scene>" + inside + "</scene>";
}

class VekView : public testing::Test
{
protected:
    Outcome Snapshot(std::string const & scene, wchar_t const * size = L"200x100")
    {
        StoreBytes(m_folder + L"scene.xml", scene);
        return RunBeside(L"vekview.exe",
                         {m_folder + L"scene.xml", L"--snapshot", m_folder + L"out.png", L"--size", size});
    }
    Picture Draw(std::string const & scene, wchar_t const * size = L"200x100")
    {
        Outcome const outcome = Snapshot(scene, size);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, "");
        return ReadPng(m_folder + L"out.png");
    }

    std::wstring const m_folder = MakeFolder();
};

TEST_F(VekView, DrawsEachElementWhereItIs)
{
    // At the target's depth the picture is 20 units high and 40 wide: 5 pixels a unit.
    Picture const p = Draw(Scene(std::string(CAMERA) + R"(/>
        <triangle a="8, 0, 0" b="12, 0, 0" c="10, 4, 0" color="255, 0, 0"/>
        <curve degree="2" knots="0 0 0 1 1 2 2 3 3 4 4 4" color="0, 255, 0, 255">
          <point at="4, 0, 0"/><point at="4, 4, 0" weight="0.70710678"/><point at="0, 4, 0"/>
          <point at="-4, 4, 0" weight="0.70710678"/><point at="-4, 0, 0"/>
          <point at="-4, -4, 0" weight="0.70710678"/><point at="0, -4, 0"/>
          <point at="4, -4, 0" weight="0.70710678"/><point at="4, 0, 0"/></curve>
        <box min="-16, -4, 0" max="-8, 4, 0" color="0 0 255"/>
        <grid plane="xy" size="4" step="2" center="10, -6, 0" color="255, 255, 0"/>)"));
    ASSERT_TRUE(p.width == 200 && p.height == 100);
    Spot const red = FindColor(p, "+--"), green = FindColor(p, "-+-"), blue = FindColor(p, "--+");
    EXPECT_NEAR(red.count, 200, 25); // 20 x 20 pixels, half of them
    EXPECT_NEAR(red.x, 150, 1);
    EXPECT_TRUE(std::fabs(green.x - 100) < 1 && std::fabs(green.y - 50) < 1);
    for (int angle = 0; angle < 360; angle += 15) // a circle of 20 pixels
    {
        double const x = 100 + 20 * std::cos(angle * 0.0174533), y = 50 + 20 * std::sin(angle * 0.0174533);
        bool found = false;
        for (int i = 0; i < 9; ++i)
            found = found || p.At(static_cast<int>(x) - 1 + i % 3, static_cast<int>(y) - 1 + i / 3) == 0x0000FF00;
        EXPECT_TRUE(found) << angle;
    }
    EXPECT_TRUE(std::fabs(blue.x - 40) < 1 && std::fabs(blue.y - 50) < 1 && std::abs(blue.count - 160) < 10);
    Spot const yellow = FindColor(p, "++-"); // three lines of 20 pixels each way
    EXPECT_TRUE(std::fabs(yellow.x - 150) < 1 && std::fabs(yellow.y - 80) < 1 && std::abs(yellow.count - 117) < 10);
}

TEST_F(VekView, NearHidesFarAndNothingBehindTheEyeIsSeen)
{
    char const * const triangles =
        R"(<triangle a="-5, -5, 0" b="5, -5, 0" c="0, 5, 0" color="0, 0, 255"/>
           <triangle a="-3, -3, 2" b="3, -3, 2" c="0, 3, 2" color="255, 0, 0"/>
           <triangle a="-3, -3, 40" b="3, -3, 40" c="0, 3, 40" color="0, 255, 0"/>
           <curve degree="1" color="255, 0, 255"><point at="-8, -8, 100"/><point at="-8, -8, -50"/></curve>)";
    std::pair<std::string, std::uint32_t> const rows[] = {
        {R"(<camera eye="0, 0, 10" target="0, 0, 0"/>)", 0x00FF0000},
        {R"(<camera eye="0, 0, 10" target="0, 0, 0" projection="orthographic"/>)", 0x0000FF00},
        {R"(<camera eye="0, 0, 10" target="0, 0, 0" system="left-handed"/>)", 0x00FF0000},
        {R"(<camera eye="0, 0, -10" target="0, 0, 0"/>)", 0x000000FF},
    };
    for (auto const & [camera, middle] : rows)
    {
        Picture const p = Draw(Scene(camera + triangles));
        ASSERT_EQ(p.width, 200) << camera;
        EXPECT_EQ(p.At(100, 50), middle) << camera;
    }
}

TEST_F(VekView, LinesOnAWallAreSeenAndLinesBehindItAreNot)
{
    for (std::string const projection : {"perspective", "orthographic"})
        for (std::string const z : {"0", "-1", "-3", "-5"})
        {
            Picture const p = Draw(Scene(R"(<camera eye="0, 0, 50" target="0, 0, 0" projection=")" + projection + R"("/>
                <triangle a="-15, -15, 10" b="15, -15, 10" c="0, 15, -10" color="90, 90, 255"/>
                <grid size="120" step="60" center="0, 30, 0"/>
                <curve degree="1" color="255, 0, 0"><point at="-5, 0, )" +
                                         z + R"("/><point at="5, 0, )" + z + R"("/></curve>)"));
            EXPECT_EQ(FindColor(p, "+--").count > 20, z == "0") << projection << z;
        }
}

TEST_F(VekView, LooksTheSameFarFromTheOrigin)
{
    auto const draw = [this](char const * digits)
    {
        std::string scene = Scene(R"(<camera target="#5, #5, #5" eye="#6, #7, #9"/><grid size="4" center="#5, #4, #5"/>
            <triangle a="#4, #4, #6" b="#6, #4, #4" c="#5, #6, #5"/><box min="#4, #4, #4" max="#6, #6, #6"/>
            <curve degree="2"><point at="#7, #5, #5"/><point at="#5, #7, #5"/><point at="#3, #5, #5"/></curve>)");
        for (std::size_t place = 0; (place = scene.find('#')) != std::string::npos;)
            scene.replace(place, 1, digits);
        return Draw(scene);
    };
    EXPECT_GT(FindColor(draw(""), "---").count, 100);
    for (char const * const digits : {"100000", "99999999"})
        EXPECT_TRUE(draw(digits) == draw("")) << digits;
}

TEST_F(VekView, FitsSceneWithoutCamera)
{
    for (char const * const inside : {R"(<box min="1000, 2000, 3000" max="1001, 2002, 3001" color="255 0 0"/>)",
                                      R"(<box min="-1e9, -1e9, -1e9" max="1e9, 1e9, 1e9" color="255 0 0"/>)",
                                      R"(<box min="-1e-12, 0, 0" max="1e-12, 1e-12, 1e-12" color="255 0 0"/>)"})
        for (wchar_t const * const size : {L"300x100", L"100x300"})
        {
            Picture const p = Draw(Scene(inside), size);
            std::array<int, 4> free{p.width, p.width, p.height, p.height}; // on the four sides
            for (int i = 0; i < p.width * p.height; ++i)
                if (int const x = i % p.width, y = i / p.width; p.At(x, y) == 0x00FF0000)
                    free = {std::min(free[0], x), std::min(free[1], p.width - 1 - x), std::min(free[2], y),
                            std::min(free[3], p.height - 1 - y)};
            std::sort(free.begin(), free.end());
            EXPECT_TRUE(free[0] >= 1 && free[1] <= 4) << inside << free[0] << ", " << free[1];
        }
    EXPECT_EQ(FindColor(Draw(Scene("")), "---").count, 200 * 100);
    EXPECT_GT(
        FindColor(Draw(FileBytes(SceneFile().replace(SceneFile().rfind(L"scene"), 5, L"viewscene"))), "+--").count,
        300);
}

TEST_F(VekView, TellsWhatIsWrongWithAScene)
{
    std::pair<std::string, char const *> const rows[] = {
        {"<sphere/>", "unknown element <sphere>"},
        {R"(<box max="1, 1, 1"/>)", "box 1: attribute \"min\" is missing"},
        {R"(<box min="0 0 0" max="1 1 1"/><box min="0, 0" max="1, 1, 1"/>)",
         "box 2: attribute \"min\" is not 3 numbers"},
        {R"(<box min="0, 0, x" max="1, 1, 1"/>)", "up to 1e9: \"0, 0, x\""},
        {R"(<box min="nan, 0, 0" max="1, 1, 1"/>)", "box 1: attribute \"min\" is not"},
        {R"(<box min="0, 0, 0" max="1e30, 1, 1"/>)", "box 1: attribute \"max\" is not"},
        {R"(<box min="0, 2, 0" max="1, 1, 1"/>)", "larger than that of \"max\""},
        {R"(<box min="0, 0, 0" max="1, 1, 1" colour="red"/>)", "unknown attribute \"colour\""},
        {R"(<box min="0, 0, 0" max="1, 1, 1" color="256, 0, 0"/>)", "not 3 or 4 whole numbers from 0 to 255"},
        {R"(<box min="0, 0, 0" max="1, 1, 1"><box/></box>)", "box 1: has an element <box> inside"},
        {R"(<triangle a="0, 0, 0" b="1, 0, 0"/>)", "triangle 1: attribute \"c\" is missing"},
        {R"(<grid size="1e9" step="1e-3"/>)", "size / step is not between 1 and 1000"},
        {R"(<grid plane="zx"/>)", "is not \"xz\" or \"xy\" or \"yz\": \"zx\""},
        {R"(<curve degree="2.5"/>)", "attribute \"degree\" is not a whole number"},
        {R"(<curve degree="40"/>)", "attribute \"degree\" is not between 1 and 32"},
        {R"(<curve/>)", "curve 1: has no <point> inside"},
        {R"(<curve><point at="0 0 0"/><point at="1 0 0"/></curve>)", "curve 1: degree 3 needs at least 4 points"},
        {R"(<curve><line/></curve>)", "curve 1: has an element <line> inside"},
        {R"(<curve><point at="0, 0, 0" weight="0"/></curve>)", "curve 1, point 1: attribute \"weight\" is not between"},
        {R"(<curve degree="1" knots="0 0 1"><point at="0 0 0"/><point at="1 0 0"/></curve>)", "has 3 numbers, not 4"},
        {R"(<curve degree="1" knots="1 1 0 0"><point at="0 0 0"/><point at="1 0 0"/></curve>)",
         "less than the one before: number 3"},
        {R"(<curve degree="1" knots="0 0 0 1"><point at="0 0 0"/><point at="1 0 0"/></curve>)", "a number too often"},
        {R"(<curve degree="1" knots="0 1 1 2"><point at="0 0 0"/><point at="1 0 0"/></curve>)", "a number too often"},
        {R"(<curve degree="2" knots="0 1 2 2 3 4"><point at="0 0 0"/><point at="0 0 0"/><point at="1 0 0"/></curve>)",
         "no room"},
        {R"(<curve degree="1"><point at="1 0 0"/><point at="1 0 0"/></curve>)", "curve 1: all its points are one"},
        {R"(<camera eye="1, 1, 1" target="1, 1, 1"/>)", "camera 1: eye and target are the same point"},
        {std::string(CAMERA) + "/>" + CAMERA + "/>", "camera 2: there is one already"},
    };
    for (auto const & [inside, message] : rows)
    {
        Outcome const outcome = Snapshot(Scene(inside));
        EXPECT_EQ(outcome.code, 1) << inside;
        EXPECT_THAT(outcome.err, HasSubstr(message)) << inside;
        EXPECT_THAT(outcome.err, HasSubstr("vekview: ")) << inside;
        EXPECT_EQ(CountFiles(m_folder), 1) << inside; // no picture
    }
    EXPECT_THAT(Snapshot("<drawing/>").err, HasSubstr("the outermost element is <drawing>, not <scene>"));
    std::string many;
    for (int i = 0; i < 50; ++i)
        many += "<box/>";
    EXPECT_THAT(Snapshot(Scene(many)).err, HasSubstr("and 80 more"));
}

TEST_F(VekView, RefusesWrongUsage)
{
    for (wchar_t const * const size : {L"0x5", L"10", L"9000x10", L"10x10x10", L"-5x5", L"x"})
        EXPECT_EQ(Snapshot("<scene/>", size).code, 2) << size;
    EXPECT_EQ(RunBeside(L"vekview.exe", {}).code, 2);
    EXPECT_EQ(RunBeside(L"vekview.exe", {m_folder + L"missing.xml"}).code, 1);
    StoreBytes(m_folder + L"scene.xml", "<scene/>");
    Outcome const outcome =
        RunBeside(L"vekview.exe", {m_folder + L"scene.xml", L"--snapshot", m_folder + L"no\\such\\folder.png"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("folder.png: can't be written"));
}

} // namespace
