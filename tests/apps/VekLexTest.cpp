// vek lex: the tokens of text files.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

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

TEST(VekLex, TakesWhatTheLexerDoesNotKnow)
{
    std::tuple<wchar_t const *, char const *, char const *> const rows[] = {
        // the kind's first letter and the text of each token, and the value of a whole number
        {L"c", "a-b - -1", "ia o- ib o- o- n1"},
        {L"c", "p->q-- -=x", "ip o-> iq o-- o-= ix"},
        {L"c", "3.0f 1e-5 .5E+3 2.L 0x1.8p3", "f3.0f f1e-5 f.5E+3 f2.L f0x1.8p3"},
        {L"c", "0xFFul 0b101 1'000 010 18446744073709551615u",
         "n0xFFul=255 n0b101=5 n1'000=1000 n010=8 "
         "n18446744073709551615u=18446744073709551615"},
        {L"c", "x2e5 3.0q 0x", "ix2e5 e3.0q f3.0 e0x n0"},
        {L"c", "\"a\\\"b-1\" '\"' '\\'' '-'", "s\"a\\\"b-1\" s'\"' s'\\'' s'-'"},
        {L"c", "// don't - 0x\n/*\" 1e*/ -7", "o- n7"},
        {L"c", "\xEE\x80\x80", "-\xEE\x80\x80"},
        {L"obj", "v -1.9e-05 1 -.5\nf -1//-2 3/-4", "gv f-1.9e-05 n1 f-.5 gf n-1 o// n-2 n3 o/ n-4"},
        {L"obj", "g a-1 wheel-left # 1e", "gg ia o- n1 iwheel o- ileft"},
    };
    for (auto const & [language, text, tokens] : rows)
    {
        Outcome const outcome = Vek({L"lex", L"-", L"--lang", language}, text);
        std::string found;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);)
        {
            std::string const kind = line.substr(10, 3), rest = line.substr(22);
            std::size_t const value = rest.find(" = "), message = rest.find(" (");
            found += (found.empty() ? "" : " ") +
                     std::string(1, kind == "int"   ? 'n'
                                    : kind == "inv" ? '-'
                                                    : kind[0]) +
                     rest.substr(0, std::min(value, message)) +
                     (value == std::string::npos ? "" : "=" + rest.substr(value + 3));
        }
        EXPECT_EQ(found, tokens) << text;
    }
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
