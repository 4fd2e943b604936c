// vek lex: the tokens of text files.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::Not;

namespace
{

TEST(VekLex, ListsCountsAndColoursTokens)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"a.c", "int f;\r\n\"a\\\"<\"; // <c>\r\n\t017 0x \xC3\xA9\n");
    Outcome const list = Vek({L"lex", folder + L"a.c"});
    EXPECT_EQ(list.code, 0);
    EXPECT_EQ(list.err, "");
    EXPECT_EQ(list.out, "1:1       type        int\n1:5       identifier  f\n1:6       operator    ;\n"
                        "2:1       string      \"a\\\"<\"\n2:7       operator    ;\n3:2       integer     017 = 15\n"
                        "3:6       error       0x (Invalid number)\n3:6       integer     0\n"
                        "3:9       invalid     \xC3\xA9\n");
    Outcome const count = Vek({L"lex", folder + L"a.c", L"--count", L"--html", folder + L"a.html"});
    EXPECT_EQ(count.out,
              "error                1\nidentifier           1\ninteger              2\ninvalid              1\n"
              "operator             2\nstring               1\ntype                 1\nall                  9\n");
    EXPECT_THAT(
        FileBytes(folder + L"a.html"),
        HasSubstr("<span class=\"k1\">int</span> f<span class=\"o\">;</span>\n"
                  "<span class=\"s\">&quot;a\\&quot;&lt;&quot;</span><span class=\"o\">;</span> "
                  "<span class=\"c\">// &lt;c&gt;</span>\n\t<span class=\"n\">017</span> <span class=\"x\">0x</span>"));
    Outcome const shader = Vek({L"lex", ExampleFile("glow.frag")});
    EXPECT_THAT(shader.out, HasSubstr("type        sampler2D\n"));
    EXPECT_THAT(shader.out, HasSubstr("builtin     smoothstep\n"));
    EXPECT_THAT(shader.out, Not(HasSubstr("invalid")));
}

TEST(VekLex, ReadsLanguages)
{
    std::wstring const folder = MakeFolder();
    std::string const utf16("\xFF\xFE"
                            "I\0f\0+\0=\0r\0e\0m\0x\0",
                            18);
    StoreBytes(folder + L"a.bas", utf16);
    struct Row
    {
        char const * language;
        int code;
        char const * said;
    };
    Row const rows[] = {
        {"<language><keywords kind='word' case='FALSE' text='if'/><operators text='+= +'/><comment "
         "start='rem'/></language>",
         0, "1:1       word        If\n1:3       operator    +=\n"},
        {"<other/>", 1, "outermost element is not \"language\""},
        {"<language><word/></language>", 1, "has an unknown element: word"},
        {"<language><operators/></language>", 1, "operators without \"text\""},
        {"<language><comment end='x'/></language>", 1, "a comment has no \"start\""},
        {"<language><comment start='12345678901234567'/></language>", 1, "longer than 16 characters"},
        {"<language>", 1, "ends before its outermost element is closed"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.language);
        StoreBytes(folder + L"basic.xml", row.language);
        Outcome const outcome = Vek({L"lex", folder + L"a.bas", L"--lang", folder + L"basic.xml"});
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(row.code ? outcome.err : outcome.out, HasSubstr(row.said));
    }
    EXPECT_THAT(Vek({L"lex", folder + L"a.bas", L"--lang", L"cobol"}).err, HasSubstr("neither a language"));
    EXPECT_THAT(Vek({L"lex", folder + L"none.c"}).err, HasSubstr("can't be read: "));
    EXPECT_THAT(Vek({L"lex", folder.substr(0, folder.size() - 1)}).err, HasSubstr("is a directory"));
    EXPECT_EQ(Vek({L"lex", folder + L"a.bas", L"--html", folder + L"no/such/folder"}).code, 1);
    EXPECT_EQ(Vek({L"lex", folder + L"a.bas", L"--html", folder + L"A.bas"}).code, 1);
    EXPECT_EQ(FileBytes(folder + L"a.bas"), utf16);
    EXPECT_EQ(Vek({L"lex"}).code, 2);
}

} // namespace
