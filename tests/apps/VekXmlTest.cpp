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

TEST(VekXml, LineBreaksStayForEveryReader)
{
    std::tuple<char const *, std::string, char const *> const rows[] = {
        // the file, its attributes as written, then as read
        {"<a d=\"M0 0&#10;L9&#x0009;9&#xA;\"/>", "d=\"M0 0&#10;L9&#9;9&#10;\"", "M0 0\nL9\t9\n\n"},
        {"<a d='&lt;EOL>&#60;EOL&gt;'/>", "d=\"&lt;EOL&gt;&lt;EOL&gt;\"", "\n\n\n"},
        {"<a d='&#13;&lt;EOL&#62;&#10;&amp;#10;'/>", "d=\"&#13;&lt;EOL&gt;&#10;&amp;#10;\"", "\r\n\n&#10;\n"},
        {"<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a d CDATA '&#10;'>]><a/>", "d=\"&#10;\"", "\n\n"},
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"a.svg";
    for (auto const & [text, written, value] : rows)
    {
        SCOPED_TRACE(text);
        StoreBytes(file, text);
        EXPECT_EQ(Vek({L"xml", L"set", file, L"/", L"e", L"'1'\n<2>\n&#10;"}).code, 0);
        EXPECT_EQ(Vek({L"xml", L"format", file, file}).err, "");
        EXPECT_THAT(FileBytes(file), HasSubstr("<a " + written + " e=\"&apos;1&apos;&#10;&lt;2&gt;&#10;&amp;#10;\""));
        EXPECT_EQ(Get(file, L"/", L"d"), value);
    }
}

TEST(VekXml, SetAddsElementsOnlyWhenAsked)
{
    std::wstring const folder = MakeFolder();
    std::wstring const target = folder + L"new.xml";
    std::vector<std::wstring> arguments = {L"xml", L"set",  SceneFile(), L"group/buoy/lamp",
                                           L"on",  L"TRUE", L"-o",       target};
    Outcome const refused = Vek(arguments);
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("no element \"group/buoy/lamp\""));
    arguments.push_back(L"--create");
    EXPECT_EQ(Vek(arguments).code, 0);
    EXPECT_EQ(Get(target, L"group/buoy/lamp", L"on"), "TRUE\n");
}

TEST(VekXml, FormatKeepsTheDocument)
{
    std::wstring const folder = MakeFolder();
    std::wstring const target = folder + L"new.xml";
    Outcome const outcome = Vek({L"xml", L"format", SceneFile(), target, L"--indent", L"2"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(Facts(target), Facts(SceneFile()));
    EXPECT_THAT(FileBytes(target), HasSubstr("\n    <group name=\"boats\" visible=\"TRUE\">"));
    EXPECT_EQ(Vek({L"xml", L"format", target, target, L"--no-dtd"}).code, 0);
    EXPECT_THAT(FileBytes(target), Not(HasSubstr("<!DOCTYPE")));
    EXPECT_THAT(FileBytes(target), HasSubstr("<![CDATA[void main()\r\n{"));
}

TEST(VekXml, FormatReadsWhatTheMimeDatabaseDeclares)
{
    std::wstring const folder = MakeFolder();
    std::string const path = VEK_MIME_XML;
    std::wstring const source(path.begin(), path.end());
    Outcome const outcome = Vek({L"xml", L"format", source, folder + L"mime.xml"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("note: written without "));
    EXPECT_EQ(Facts(folder + L"mime.xml"), Facts(source));
}

TEST(VekXml, NotesTellWhatWasLost)
{
    std::tuple<char const *, std::string, char const *, bool> const rows[] = {
        {"nothing", "<?xml version=\"1.0\"?>\n<a> <b c='>'/>\n</a>", "", true},
        {"text", "<a>tw\xC3\xB6<b/> x</a>", "without 4 characters of text outside CDATA sections\n", false},
        {"text in UTF-16", std::string("\xFF\xFE<\0a\0>\0x\0<\0/\0a\0>\0", 18), "without 1 character of text", false},
        {"comments", "<!-- <a>'1 --><a><!----></a>", "without 2 comments\n", true},
        {"instructions", "<?xml-style x?><a><?b > ?></a>", "without 2 processing instructions\n", true},
        {"second CDATA section", "<a><![CDATA[<x>]]><![CDATA[]]></a>",
         "without 1 CDATA section (an element keeps one)\n", false},
        {"attributes of one name", "<a b=\"1=2\" B='3'/>", "without 1 attribute (an element keeps one of a name",
         false},
        {"document type without elements", "<!DOCTYPE a [<!ENTITY e '>'><!-- ' -->]><a/>",
         "without its document type \"a\"", true},
        {"document type that can't be read", "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>", "left out", true},
        {"default values",
         "<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a b CDATA '1' c (x|y) #IMPLIED d NOTATION (n) #IMPLIED>]><a/>", "",
         true},
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"a.xml";
    for (auto const & [name, text, note, inPlace] : rows)
    {
        SCOPED_TRACE(name);
        StoreBytes(file, text);
        Outcome const elsewhere = Vek({L"xml", L"format", file, folder + L"b.xml"});
        EXPECT_EQ(elsewhere.code, 0);
        EXPECT_THAT(elsewhere.err, HasSubstr(note));
        EXPECT_EQ(elsewhere.err.find("note: ") == std::string::npos, *note == 0) << elsewhere.err;
        EXPECT_EQ(Vek({L"xml", L"set", file, L"/", L"z", L"1"}).code, inPlace ? 0 : 1);
        EXPECT_EQ(FileBytes(file) == text, !inPlace);
        EXPECT_EQ(Vek({L"xml", L"format", file, file, L"--drop-text"}).code, 0);
    }
    EXPECT_EQ(CountFiles(folder), 2) << "something was left beside the files";
}

TEST(VekXml, DashStandsForStandardInputAndOutput)
{
    std::string const text = "<a b='1&#10;'><c/>";
    std::tuple<std::vector<std::wstring>, std::string, int, char const *> const rows[] = {
        {{L"xml", L"get", L"-", L"/", L"b"}, text + "</a>", 0, "1\n\n"},
        {{L"xml", L"tree", L"-"}, text + "</a>", 0, "a b=\"1&lt;EOL&gt;\"\n  c\n"},
        {{L"xml", L"info", L"-"}, text + "</a>", 0, "<standard input>\n  root element      a\n"},
        {{L"xml", L"set", L"-", L"c", L"d", L"2"}, text + "</a>", 0, "\r\n   <c d=\"2\"/>\r\n</a>\r\n"},
        {{L"xml", L"format", L"-", L"-"}, text + "</a>", 0, "<a b=\"1&#10;\">\r\n   <c/>"},
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
        {{L"xml", L"set", L"--help"}, "--drop-text"},
        {{L"xml", L"format", L"--help"}, "NOT kept"},
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
