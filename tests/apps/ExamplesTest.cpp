// The example hosts do what their comments say.

#include "Process.h"

#include "support/GuardHeap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::Not;

TEST(Examples, MinimalChangesAScene)
{
    std::wstring const target = MakeFolder() + L"changed.xml";
    Outcome const outcome = RunBeside(L"example_minimal.exe", {SceneFile(), target});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "the camera stood at 12.5, -40, 6\r\ndone\r\n");
    EXPECT_EQ(Vek({L"xml", L"get", target, L"camera", L"position"}).out, "12.500000, -40.000000, 8.500000, 1.000000\n");
    EXPECT_EQ(Vek({L"xml", L"get", target, L"light", L"color"}).out, "255, 200, 160, 255\n");
    EXPECT_EQ(RunBeside(L"example_minimal.exe", {L"missing.xml", target}).code, 1);
}

TEST(Examples, LogCatcherShowsLevels)
{
    Outcome const outcome = RunBeside(L"example_logcatcher.exe", {});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("VekLib Initialized"));
    EXPECT_THAT(outcome.out, HasSubstr("[0] at first: level 0"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("at first: level 5")));
    EXPECT_THAT(outcome.out, HasSubstr("[5] with level 5: level 5"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("with level -1")));
    EXPECT_THAT(outcome.out, HasSubstr("[0] CVekXMLParser::Parse --> Failed to open file no such file.xml"));
}

TEST(Examples, DynamicNeedsNoImportLibrary)
{
    if (VekGuard::Active)
        GTEST_SKIP() << "the guarded build has no DLL";
    Outcome const outcome = RunBeside(L"example_dynamic.exe", {SceneFile()});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "4 things in the scene, seen at an angle of 50 degrees\r\n");
    EXPECT_EQ(RunBeside(L"example_dynamic.exe", {L"missing.xml"}).code, 1);
}

TEST(Examples, ColladaMeasuresMeshes)
{
    std::wstring const ship = SceneFile().replace(SceneFile().rfind(L"scene.xml"), 9, L"ship.dae");
    EXPECT_EQ(RunBeside(L"example_collada.exe", {ship}).out, "hull: from -2.5, -6, 0 to 2.5, 6.5, 1.25\r\n");
    EXPECT_EQ(RunBeside(L"example_collada.exe", {SceneFile()}).code, 1);
}
