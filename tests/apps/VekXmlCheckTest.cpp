// vek xml check: many files, worker threads, one report.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{

TEST(VekXmlCheck, TellsGoodFilesFromBadOnesInTheirOrder)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"a.xml", "<a/>");
    StoreBytes(folder + L"b.svg", "<a>\n <b></a>");
    StoreBytes(folder + L"c.XML", "");
    StoreBytes(folder + L"d.xsd", "<a><b/>");
    StoreBytes(folder + L"e.txt", "not looked at");
    StoreBytes(folder + L"model.a1.Txt", "<a/>");
    std::string const path(folder.begin(), folder.end() - 1);
    for (wchar_t const * const jobs : {L"1", L"3", L"64"})
    {
        SCOPED_TRACE(testing::Message() << jobs);
        Outcome const outcome = Vek({L"xml", L"check", folder.substr(0, folder.size() - 1), L"--jobs", jobs});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(outcome.out, StartsWith("good  " + path + "\\a.xml\n" + path + "\\b.svg:2:7: mismatched tag\n" +
                                            path + "\\c.XML:1:1: contains no element\n" + path +
                                            "\\d.xsd:1:8: ends before its outermost element is closed\n"
                                            "files     1 good, 3 bad\nskipped   2 files of other names\n"));
        EXPECT_THAT(outcome.out, EndsWith("names\n")) << "no figures that nobody asked for";
    }
}

TEST(VekXmlCheck, ReadsFilesOfTheNamesThatAreGiven)
{
    std::wstring const folder = MakeFolder();
    for (wchar_t const * const name : {L"a.dae", L"model.A1.txt", L"model.a12.txt", L"b.x3d", L"b.vcxproj"})
        StoreBytes(folder + name, "<a/>");
    std::pair<std::vector<std::wstring>, char const *> const rows[] = {
        {{}, "files     3 good, 0 bad\nskipped   2 files of other names\n"},
        {{L"--name", L"*.a?.TXT"}, "files     1 good, 0 bad\nskipped   4 files of other names\n"},
        {{L"--name=model*", L"--name=*"}, "files     5 good, 0 bad\nbytes     0.000 MB\nelapsed "},
        {{L"--name", L"*e", L"--name", L"*12*t"}, "files     2 good, 0 bad\nskipped   3 files"},
    };
    for (auto const & [names, said] : rows)
    {
        std::vector<std::wstring> arguments = {L"xml", L"check", folder, L"--bad"};
        arguments.insert(arguments.end(), names.begin(), names.end());
        if (std::string(said).find("elapsed") != std::string::npos)
            arguments.emplace_back(L"--stats");
        EXPECT_THAT(Vek(arguments).out, StartsWith(said));
    }
}

TEST(VekXmlCheck, ReadsManyFilesAndFolders)
{
    std::wstring const folder = MakeFolder();
    for (int i = 0; i < 300; ++i)
        StoreBytes(folder + L"f" + std::to_wstring(i) + L".xml", i % 100 == 7 ? "<a><b></a>" : "<a b='1'/>");
    Outcome const outcome = Vek({L"xml", L"check", folder, L"--jobs", L"4", L"--bad"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.out, HasSubstr("f107.xml:1:9: mismatched tag\n"));
    EXPECT_THAT(outcome.out, HasSubstr("files     297 good, 3 bad\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("good  ")));
    EXPECT_EQ(Vek({L"xml", L"check", folder + L"f1.xml", folder + L"f2.xml"}).code, 0);
    Outcome const missing = Vek({L"xml", L"check", folder + L"no such folder"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_THAT(missing.err, HasSubstr("can't be read: "));
}

} // namespace
