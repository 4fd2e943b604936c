// The example hosts do what their comments say.

#include "Process.h"

#include "support/Files.h"
#include "support/GuardHeap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

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
    std::string const scene = FileBytes(SceneFile());
    for (std::string const & bad : {std::string(), std::string("hello"), scene.substr(0, scene.size() / 2)})
        EXPECT_EQ(RunBeside(L"example_minimal.exe", {WriteFileBytes(L"bad.xml", bad), target}).code, 1) << bad;
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

TEST(Examples, SceneEditorUndoes)
{
    std::wstring const target = MakeFolder() + L"changed.xml";
    auto const edit = [](std::vector<std::wstring> commands)
    {
        commands.insert(commands.begin(), SceneFile());
        return RunBeside(L"example_sceneeditor.exe", commands);
    };
    Outcome const outcome =
        edit({L"move", L"planks", L"0.1, 0, 1e-9", L"copy", L"boats", L"more", L"delete", L"cargo", L"undo", L"rename",
              L"pier", L"quay", L"undo", L"redo", L"unset", L"Harbour", L"x", L"save", target});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "unset: can't be done\r\n") << "the root is no child";
    EXPECT_EQ(edit({L"move", L"planks", L"0.1, 0, 1e-9", L"copy", L"boats", L"more", L"delete", L"cargo", L"undo",
                    L"rename", L"pier", L"quay", L"undo", L"redo", L"unset", L"water", L"color", L"save", target})
                  .code,
              0);
    std::string const saved = FileBytes(target);
    EXPECT_THAT(saved, HasSubstr("origin=\"0.1, 0, 1e-9, 1\""));
    EXPECT_THAT(saved, HasSubstr("<group name=\"quay\""));
    EXPECT_THAT(saved, HasSubstr("<group name=\"more\""));
    EXPECT_THAT(saved, HasSubstr("<material name=\"water\">"));
    EXPECT_NE(saved.find("crates"), saved.rfind("crates")) << "deleted, undone, and in the copy";
    EXPECT_THAT(edit({L"list"}).out, HasSubstr("    mesh name=planks file=meshes\\planks.mesh"));
    EXPECT_EQ(edit({L"undo"}).code, 1);
    EXPECT_EQ(RunBeside(L"example_sceneeditor.exe", {WriteFileBytes(L"bad.xml", "<scene>"), L"list"}).code, 1);
}

TEST(Examples, AssetCacheTellsWhatHasChanged)
{
    std::wstring const folder = TemporaryPath(L"cache"), index = folder + L"/index.xml", assets = folder + L"/assets";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(assets + L"/deep");
    for (int i = 0; i < 200; ++i)
        StoreBytes(assets + (i % 2 ? L"/deep/" : L"/") + std::to_wstring(i), std::string(std::size_t(i), 'x'));
    auto const run = [&] { return RunBeside(L"example_assetcache.exe", {assets, index, L"3"}); };
    EXPECT_EQ(run().out, "200 files, 200 new, 0 changed, 0 unreadable\r\n");
    StoreBytes(assets + L"/deep/7", "another");
    StoreBytes(assets + L"/new", "");
    Outcome const outcome = run();
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "201 files, 1 new, 1 changed, 0 unreadable\r\n");
    EXPECT_THAT(outcome.err, HasSubstr("reading: 100 %"));
    EXPECT_THAT(FileBytes(index), HasSubstr("name=\"deep\\7\" size=\"7\" sum="));
    EXPECT_EQ(RunBeside(L"example_assetcache.exe", {folder + L"/none", index}).code, 2);
}

TEST(Examples, HighlighterShowsCommentsNumbersAndACurve)
{
    std::wstring const target = MakeFolder() + L"page.html";
    Outcome const outcome = RunBeside(L"example_highlighter.exe", {ExampleFile("glow.frag"), target});
    EXPECT_EQ(outcome.code, 0) << outcome.out;
    std::string const page = FileBytes(target);
    EXPECT_THAT(page, HasSubstr("<b class=keyword>uniform</b> <b class=keyword>vec4</b> tint;"));
    EXPECT_THAT(page, HasSubstr("<i> /* red, green, blue\n                      and strength */\n</i>"));
    EXPECT_THAT(page, HasSubstr("<b class=keyword>vec2</b>(-<b class=number>1.0</b>)"));
    EXPECT_THAT(page, HasSubstr("points=\"16, 0 "));
    EXPECT_EQ(RunBeside(L"example_highlighter.exe", {WriteFileBytes(L"bad.frag", "\xC3("), target}).code, 1);
}

TEST(Examples, ColladaMeasuresMeshes)
{
    std::wstring const ship = SceneFile().replace(SceneFile().rfind(L"scene.xml"), 9, L"ship.dae");
    std::wstring const scene = TemporaryPath(L"ship.xml");
    EXPECT_EQ(RunBeside(L"example_collada.exe", {ship, scene}).out, "hull: from -2.5, -6, 0 to 2.5, 6.5, 1.25\r\n");
    EXPECT_NE(FileBytes(scene).find("<triangle a=\"-2, -6, 0\" b=\"2, 6.5, 0\""), std::string::npos)
        << FileBytes(scene);
    EXPECT_EQ(RunBeside(L"vekview.exe", {scene, L"--snapshot", TemporaryPath(L"ship.png")}).code, 0);
    EXPECT_EQ(RunBeside(L"example_collada.exe", {SceneFile()}).code, 1);
}
