// vek xml check: many files, worker threads, one report.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    std::string const path(folder.begin(), folder.end() - 1);
    for (wchar_t const * const jobs : {L"1", L"3", L"64"})
    {
        SCOPED_TRACE(testing::Message() << jobs);
        Outcome const outcome = Vek({L"xml", L"check", folder.substr(0, folder.size() - 1), L"--jobs", jobs});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(outcome.out, StartsWith("good  " + path + "\\a.xml\nbad   " + path +
                                            "\\b.svg: line 2, col 6: mismatched tag\nbad   " + path +
                                            "\\c.XML: contains no element\nbad   " + path +
                                            "\\d.xsd: ends before its outermost element is closed\n"
                                            "files     1 good, 3 bad\n"));
    }
}

TEST(VekXmlCheck, ReadsManyFilesAndFolders)
{
    std::wstring const folder = MakeFolder();
    for (int i = 0; i < 300; ++i)
        StoreBytes(folder + L"f" + std::to_wstring(i) + L".xml", i % 100 == 7 ? "<a><b></a>" : "<a b='1'/>");
    Outcome const outcome = Vek({L"xml", L"check", folder, L"--jobs", L"4", L"--bad"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.out, HasSubstr("f107.xml: line 1, col 8: mismatched tag\n"));
    EXPECT_THAT(outcome.out, HasSubstr("files     297 good, 3 bad\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("good  ")));
    EXPECT_EQ(Vek({L"xml", L"check", folder + L"f1.xml", folder + L"f2.xml"}).code, 0);
    Outcome const missing = Vek({L"xml", L"check", folder + L"no such folder"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_THAT(missing.err, HasSubstr("can't be read: "));
}

} // namespace
