// vek xml as its users meet it: good files.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::Not;

namespace
{

/// The lines of an info, without the file's name and the time.
std::string Facts(std::wstring const & path)
{
    Outcome const outcome = Vek({L"xml", L"info", path});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    std::size_t const begin = outcome.out.find('\n') + 1;
    return outcome.out.substr(begin, outcome.out.find("  read ") - begin);
}

std::string Get(std::wstring const & path, std::wstring const & element, std::wstring const & attribute)
{
    Outcome const outcome = Vek({L"xml", L"get", path, element, attribute});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

TEST(VekXml, InfoCountsTheScene)
{
    EXPECT_EQ(Facts(SceneFile()), "  root element      scene\n"
                                  "  document type     scene\n"
                                  "  elements          13\n"
                                  "  attributes        34\n"
                                  "  CDATA sections    1\n"
                                  "  DTD rules         8\n"
                                  "  attribute lists   8\n"
                                  "  depth             5\n");
}

TEST(VekXml, InfoOfSeveralFilesGoesOnAfterABadOne)
{
    Outcome const outcome = Vek({L"xml", L"info", L"missing.xml", SceneFile()});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("missing.xml"));
    EXPECT_THAT(outcome.out, HasSubstr("elements          13"));
}

TEST(VekXml, TreeShowsLevelsAndEscapesWhatHarmsATerminal)
{
    EXPECT_EQ(Vek({L"xml", L"tree", SceneFile(), L"--depth", L"2"}).out,
              "scene name=\"Harbour\" unit=\"m\"\n"
              "  camera position=\"12.5, -40, 6, 1\" target=\"0, 0, 2, 1\" angle=\"50\"\n"
              "  light color=\"255, 244, 229, 255\" position=\"-100, -100, 200, 0\" on=\"TRUE\"\n"
              "  material name=\"water\" color=\"24, 82, 120, 200\" (1 child)\n"
              "  group name=\"pier\" visible=\"TRUE\" (3 children)\n");
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"hostile.xml", "<a b=\"&#x9B;2J&#x202E;&#9;\xF0\x9F\x98\x80\"><b/></a>");
    EXPECT_EQ(Vek({L"xml", L"tree", folder + L"hostile.xml"}).out, "a b=\"\\x9B2J\\u202E\\t\xF0\x9F\x98\x80\"\n  b\n");
    EXPECT_THAT(Vek({L"xml", L"info", L"no\x1B[2J\x202E.xml"}).err, HasSubstr("vek: no\\x1B[2J\\u202E.xml: "));
}

TEST(VekXml, GetFindsElementsByPath)
{
    std::tuple<wchar_t const *, wchar_t const *, char const *> const rows[] = {
        {L"*/group[@name='boats'][1]/mesh[2]", L"name", "\"\xD0\x9B\xD0\xBE\xD0\xB4\xD0\xBA\xD0\xB0\"\n"},
        {L"*/*/group/mesh[@FILE=\"meshes\\crate.mesh\"]", L"name", "crates <small>\n"},
        {L"", L"name", "Harbour\n"},
        {L"/", L"unit", "m\n"},
        {L"camera", L"angle", "50\n"},
        {L"GROUP\\Group//mesh", L"NAME", "\xC3\x89mile & S\xC3\xB8n\n"},
        {L"group/label", L"text", "Pier's end \xE2\x80\x94 3 < 4 m deep\n"},
    };
    for (auto const & [path, attribute, value] : rows)
    {
        SCOPED_TRACE(testing::Message() << "path " << value);
        EXPECT_EQ(Get(SceneFile(), path, attribute), value);
    }
}

TEST(VekXml, SetStoresValuesThatComeBack)
{
    std::tuple<char const *, std::wstring, std::string> const rows[] = {
        {"markup", L"<a> & 'b' \"c\"", "<a> & 'b' \"c\"\n"},
        {"beyond the first plane", L"\xD83D\xDE00 \x00E9 \x20AC", "\xF0\x9F\x98\x80 \xC3\xA9 \xE2\x82\xAC\n"},
        {"white space", L" \ta\r\nb ", " \ta\r\nb \n"},
        {"empty", L"", "\n"},
        {"negative number", L"-12.5", "-12.5\n"},
        {"brackets", L"[a, b]", "[a, b]\n"},
        {"quotes and backslashes", L"C:\\dir\\\"x\"\\", "C:\\dir\\\"x\"\\\n"},
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"scene \x20AC.xml";
    StoreBytes(file, FileBytes(SceneFile()));
    for (auto const & [name, value, printed] : rows)
    {
        SCOPED_TRACE(name);
        Outcome const outcome = Vek({L"xml", L"set", file, L"camera", L"note", value});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.out + outcome.err, "");
        EXPECT_EQ(Get(file, L"camera", L"note"), printed);
    }
    EXPECT_EQ(CountFiles(folder), 1) << "something was left beside the file";
    EXPECT_THAT(Facts(file), HasSubstr("attributes        35\n"));
}

TEST(VekXml, FormatKeepsAllButLayout)
{
    std::tuple<char const *, std::wstring, std::string, std::string> const rows[] = {
        {"nothing but elements", L"", "<a><b  c='&#10;&lt;EOL>'></b><c/></a>",
         "<a>\n  <b c=\"&#10;&lt;EOL&#62;\"/>\n  <c/>\n</a>"},
        {"comments move along", L"", "<!--0--><a>  <!--1-->\r\n\r\n<?i j?><b/></a>\r\n<!--2-->",
         "<!--0--><a>\r\n  <!--1-->\r\n  <?i j?>\r\n  <b/>\r\n</a>\r\n<!--2-->"},
        {"comments alone", L"", "<a><!--1--></a>", "<a>\n  <!--1-->\n</a>"},
        {"text", L"", "<a> <t>x <b> <i/> </b> </t><s> </s></a>", "<a>\n  <t>x <b> <i/> </b> </t>\n  <s> </s>\n</a>"},
        {"preserved", L"", "<a><b xml:space='preserve'> <c/><d> <e/></d></b></a>",
         "<a>\n  <b xml:space=\"preserve\"> <c/><d> <e/></d></b>\n</a>"},
        {"CDATA sections", L"", "<a><b>1<![CDATA[<]]></b><![CDATA[2]]></a>",
         "<a><b>1<![CDATA[<]]></b><![CDATA[2]]></a>"},
        {"document type", L"", "<!DOCTYPE a [<!ENTITY e '>'><!-- ' -->]><a>&e;</a>",
         "<!DOCTYPE a [<!ENTITY e '>'><!-- ' -->]><a>&gt;</a>"},
        {"without it", L"--no-dtd", "<!--1--><!DOCTYPE a [<!ENTITY e '>'><!-- ]>' -->]>\n<a/>", "<!--1--><a/>"},
        {"without text", L"--strip-text", "<a>x<b>y</b><![CDATA[z]]><!--1--></a>", "<a><b/><![CDATA[z]]><!--1--></a>"},
        {"without comments", L"--strip-comments", "<!--1-->\n<a>x<b><!--2--></b></a>\n<!--3-->", "<a>x<b/></a>\n"},
    };
    std::wstring const file = MakeFolder() + L"a.xml";
    for (auto const & [name, option, source, formatted] : rows)
    {
        SCOPED_TRACE(name);
        StoreBytes(file, source);
        std::vector<std::wstring> arguments = {L"xml", L"format", file, file, L"--indent", L"2"};
        if (!option.empty())
            arguments.push_back(option);
        Outcome const outcome = Vek(arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out + outcome.err, "");
        EXPECT_EQ(FileBytes(file), formatted);
    }
    StoreBytes(file, "<!DOCTYPE a SYSTEM 'd'><a>&u;</a>");
    EXPECT_THAT(Vek({L"xml", L"format", file, file, L"--no-dtd"}).err,
                HasSubstr("a.xml: not written: prolog, epilog or a reference to an entity can not be written\n"));
    StoreBytes(file, "<?xml version='1.0' encoding='windows-1252'?>\n<a>\x80</a>");
    EXPECT_EQ(Vek({L"xml", L"format", file, file}).err, "");
    EXPECT_THAT(FileBytes(file), HasSubstr("'windows-1252'?>\n<a>\x80</a>"));
    StoreBytes(file, "<?xml version='1.0' encoding='US-ASCII'?><!DOCTYPE a [<!ENTITY e '<!--&#233;-->'>]><a>&e;</a>");
    EXPECT_THAT(Vek({L"xml", L"format", file, file}).err, HasSubstr("a.xml: note: written as UTF-8\n"));
}

TEST(VekXml, CanonIsWhatCanonicalXmlSays)
{
    std::tuple<std::string, char const *> const rows[] = {
        {"<?xml version='1.0'?><!--1--><!DOCTYPE a [<!ENTITY e '<b/>'><?no?>]><?p  q ?>\r\n<a>&e;</a><!--2-->\n",
         "<!--1-->\n<?p q ?>\n<a><b></b></a>\n<!--2-->"},
        {"<a b='&#9;\"&#10;&#13;>' a=\"'&amp;lt;\">&#13;\r\n\t&gt;<![CDATA[<\"]]></a>",
         "<a a=\"'&amp;lt;\" b=\"&#x9;&quot;&#xA;&#xD;>\">&#xD;\n\t&gt;&lt;\"</a>"},
        {"<n:a y:b='1' x:c='2' b='3' xmlns='' xmlns:y='u:a' xmlns:x='u:b' xmlns:n='u:n'><b xmlns='u:d' xmlns:n='u:n'>"
         "<c xmlns='u:d'/><d xmlns=''/></b></n:a>",
         "<n:a xmlns:n=\"u:n\" xmlns:x=\"u:b\" xmlns:y=\"u:a\" b=\"3\" y:b=\"1\" x:c=\"2\"><b xmlns=\"u:d\">"
         "<c></c><d xmlns=\"\"></d></b></n:a>"},
        {"<a><b xmlns='u:d'/><c xmlns='u:d'/></a>", "<a><b xmlns=\"u:d\"></b><c xmlns=\"u:d\"></c></a>"},
    };
    MakeFolder();
    for (auto const & [source, canonical] : rows)
    {
        Outcome const outcome = Vek({L"xml", L"canon", L"-"}, source);
        EXPECT_EQ(outcome.out, canonical);
        EXPECT_EQ(outcome.err, "");
    }
    EXPECT_THAT(Vek({L"xml", L"canon", L"-"}, "<!DOCTYPE a SYSTEM 'x' [<!ENTITY e SYSTEM 'y'>]><a>&e;</a>").err,
                HasSubstr("<standard input>: has no canonical form"));
}

TEST(VekXml, DiffTellsWhatDiffersByPath)
{
    std::string const first = "<a x='1' y='2'>\n <b id='1'/>\n <b id='2'>t1</b>\n <c/><!--k-->\n</a>";
    std::tuple<std::string, std::wstring, std::string> const rows[] = {
        {"<a y='2' x=\"&#49;\">\n <b id='1'></b>\n <b id='2'><![CDATA[t1]]></b>\n <c/><!--k-->\n</a>", L"", ""},
        {"<a x='1' z='2'>\n <b id='1'/>\n <b id='2'>u</b>\n <c/><!--l-->\n</a>", L"",
         "- / @y: \"2\"\n+ / @z: \"2\"\nb[2] text: \"t1\" -> \"u\"\n/ comment: \"k\" -> \"l\"\n"},
        {"<a x='1' y='2'><d/><b id='2'>t<![CDATA[1]]></b><c/>\n<!--k--></a>", L"--ignore-layout", "- b[1]\n+ d\n"},
        {"<a x='1' y='2'>\n <b id='1'/>\n <b id='3'>t1</b>\n <c/><!--k--></a>", L"",
         "b[2] @id: \"2\" -> \"3\"\n- / text: \"\\n\"\n"},
        {first + "<!--end-->", L"--ignore-layout",
         "/ comments or instructions in front of the root element, or behind it\n"},
    };
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"a.xml", first);
    for (auto const & [second, option, lines] : rows)
    {
        StoreBytes(folder + L"b.xml", second);
        std::vector<std::wstring> arguments = {L"xml", L"diff", folder + L"a.xml", folder + L"b.xml"};
        if (!option.empty())
            arguments.push_back(option);
        Outcome const outcome = Vek(arguments);
        EXPECT_EQ(outcome.out, lines);
        EXPECT_EQ(outcome.code, lines.empty() ? 0 : 1) << outcome.err;
    }
}

TEST(VekXml, DashStandsForStandardInputAndOutput)
{
    std::string const text = "<a b='1&#10;'><c/>";
    std::tuple<std::vector<std::wstring>, std::string, int, char const *> const rows[] = {
        {{L"xml", L"get", L"-", L"/", L"b"}, text + "</a>", 0, "1\n\n"},
        {{L"xml", L"get", L"-", L"c"}, "<a><c>&#x31;<!--2--><d><![CDATA[<]]></d> <?p 4?></c></a>", 0, "1< \n"},
        {{L"xml", L"tree", L"-"}, text + "</a>", 0, "a b=\"1&lt;EOL&gt;\"\n  c\n"},
        {{L"xml", L"info", L"-"}, text + "</a>", 0, "<standard input>\n  root element      a\n"},
        {{L"xml", L"set", L"-", L"c", L"d", L"2"}, text + "</a>", 0, "<a b='1&#10;'><c d=\"2\"/></a>"},
        {{L"xml", L"format", L"-", L"-"}, text + "</a>", 0, "<a b=\"1&#10;\">\n   <c/>"},
        {{L"xml", L"format", L"-", L"-"}, text + "</b>", 1, "<standard input>:1:21: mismatched tag\n"},
        {{L"xml", L"get", L"-", L"x", L"b"}, text + "</a>", 1, "vek: <standard input>: no element \"x\"\n"},
        {{L"data", L"dump", L"-"}, std::string("\1\0\0\0\0\0\0\0\1\0\0\0\1", 13), 0, "bool      = true\n"},
        {{L"data", L"dump", L"-"}, std::string("\1\0\0\0\0\0\0\0\1\0\0\0", 12), 1, "entry 1, at byte 12, ends early\n"},
        {{L"data", L"unpack", L"-", L"-"}, std::string(4, '\0'), 0, "<TypedData"},
    };
    MakeFolder();
    for (auto const & [arguments, input, code, said] : rows)
    {
        Outcome const outcome = Vek(arguments, input);
        EXPECT_EQ(outcome.code, code) << outcome.err;
        EXPECT_THAT(code ? outcome.err : outcome.out, HasSubstr(said));
        EXPECT_EQ(code ? outcome.out : outcome.err, "");
    }
}

TEST(VekXml, HelpAndVersion)
{
    std::tuple<std::vector<std::wstring>, char const *> const rows[] = {
        {{L"--help"}, "vek xml set FILE PATH ATTRIBUTE VALUE"},
        {{L"xml", L"--help"}, "format"},
        {{L"xml", L"set", L"--help"}, "byte for byte"},
        {{L"xml", L"format", L"--help"}, "Nothing is lost"},
        {{L"--version"}, "vek 0."},
    };
    for (auto const & [arguments, text] : rows)
    {
        SCOPED_TRACE(text);
        Outcome const outcome = Vek(arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_THAT(outcome.out, HasSubstr(text));
    }
}

} // namespace
