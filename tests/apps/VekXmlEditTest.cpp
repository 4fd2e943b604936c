// vek xml set, remove and rename: what is asked for changes, and no other byte.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace
{

std::string AsUtf16(std::string const & text)
{
    std::string bytes = "\xFE\xFF";
    for (char const character : text)
        bytes.append({'\0', character});
    return bytes;
}

Outcome Edit(std::wstring const & file, std::vector<std::wstring> arguments, std::string const & input = {})
{
    arguments.insert(arguments.begin() + 1, file);
    arguments.insert(arguments.begin(), L"xml");
    return Vek(arguments, input);
}

TEST(VekXmlEdit, NothingElseChanges)
{
    using Arguments = std::vector<std::wstring>;
    std::tuple<char const *, std::string, Arguments, std::string> const rows[] = {
        {"its own quote",
         "<a b = 'x' c=\"y\"/>",
         {L"set", L"/", L"b", L"'\"<>&\t"},
         "<a b = '&apos;\"&lt;&gt;&amp;&#9;' c=\"y\"/>"},
        {"the same value",
         "<!-- --><a\r\n b='&#65;'></a >\r\n",
         {L"set", L"/", L"b", L"A"},
         "<!-- --><a\r\n b='&#65;'></a >\r\n"},
        {"a new attribute",
         "<a><b\r\n  c='/'\r\n  /></a>",
         {L"set", L"b", L"d", L"1"},
         "<a><b\r\n  c='/' d='1'\r\n  /></a>"},
        {"an empty value", "<a b=''/>", {L"set", L"/", L"b", L"c"}, "<a b='c'/>"},
        {"a name of another case",
         "<a B='1' b='2' C='3'/>",
         {L"set", L"/", L"b", L"4", L"--at", L"/", L"c", L"5"},
         "<a B='1' b='4' C='5'/>"},
        {"a declared default",
         "<!DOCTYPE a [<!ATTLIST a b CDATA '1'>]><a c=''/>",
         {L"set", L"/", L"b", L"2"},
         "<!DOCTYPE a [<!ATTLIST a b CDATA '1'>]><a c='' b='2'/>"},
        {"an entity in the value",
         "<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'>&e;</a>",
         {L"set", L"/", L"b", L"y"},
         "<!DOCTYPE a [<!ENTITY e 'x'>]><a b='y'>&e;</a>"},
        {"UTF-16",
         AsUtf16("<a>\r\n<b c=\"1\"/></a>"),
         {L"set", L"b", L"c", L"2", L"--at", L"/", L"d", L"3"},
         AsUtf16("<a d=\"3\">\r\n<b c=\"2\"/></a>")},
        {"windows-1252",
         "<?xml version='1.0' encoding='windows-1252'?><a b='\xE9'/>",
         {L"set", L"/", L"c", L"\x20AC\x65E5"},
         "<?xml version='1.0' encoding='windows-1252'?><a b='\xE9' c='\x80&#26085;'/>"},
        {"Shift_JIS",
         "<?xml version='1.0' encoding='Shift_JIS'?><a b='\x83\x5C'>\x95\x5D</a>",
         {L"rename", L"/", L"b", L"\x8868"},
         "<?xml version='1.0' encoding='Shift_JIS'?><a \x95\x5C='\x83\x5C'>\x95\x5D</a>"},
        {"by number and value",
         "<a><b/><c d='1'/><b><c d='2'/><c/><c d='2'/></b></a>",
         {L"set", L"b[2]/c[@d='2'][2]", L"d", L"3"},
         "<a><b/><c d='1'/><b><c d='2'/><c/><c d='3'/></b></a>"},
        {"a missing element",
         "<a>\n\t<b/>\n</a>",
         {L"set", L"c/d", L"e", L"1", L"--create", L"--at", L"c/d", L"f", L"2"},
         "<a>\n\t<b/>\n\t<c><d e=\"1\" f=\"2\"/></c>\n</a>"},
        {"one below an empty one",
         "<a><b /></a>",
         {L"set", L"b/c", L"d", L"1", L"--create"},
         "<a><b ><c d=\"1\"/></b></a>"},
        {"one behind text", "<a>x</a>", {L"set", L"b", L"c", L"1", L"--create"}, "<a>x<b c=\"1\"/></a>"},
        {"an attribute goes",
         "<a>\n<b c='1'\n d='2' e='3'/></a>",
         {L"remove", L"b", L"d"},
         "<a>\n<b c='1' e='3'/></a>"},
        {"an element goes with its line",
         "<a>\r\n <b/>\r\n <c>\r\n </c>\r\n</a>",
         {L"remove", L"c"},
         "<a>\r\n <b/>\r\n</a>"},
        {"an element goes out of text", "<a>x <b>y</b> z</a>", {L"remove", L"b"}, "<a>x  z</a>"},
        {"an element's name", "<a><b  c='1'>x</b ></a>", {L"rename", L"b", L"n:d"}, "<a><n:d  c='1'>x</n:d ></a>"},
        {"an attribute's name", "<a b='b'\tc\n=\n'&lt;'/>", {L"rename", L"/", L"c", L"d"}, "<a b='b'\td\n=\n'&lt;'/>"},
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"a.xml";
    for (auto const & [name, source, arguments, changed] : rows)
    {
        SCOPED_TRACE(name);
        StoreBytes(file, source);
        Outcome const outcome = Edit(file, arguments);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out + outcome.err, "");
        EXPECT_EQ(FileBytes(file), changed);
    }
    EXPECT_EQ(CountFiles(folder), 1) << "something was left beside the file";
}

TEST(VekXmlEdit, AListIsMadeAsAWholeAndADryRunShowsIt)
{
    std::wstring const file = MakeFolder() + L"a.xml";
    std::string const source = "<a>\r\n <b/>\r\n <c d='1' e='2'/>\r\n\r\n <f/>\r\n</a>";
    StoreBytes(file, source);
    std::string const list = "c\te\tx\ty\r\n\n/\tg\t\n";
    EXPECT_EQ(Edit(L"a.xml", {L"set", L"--list", L"-", L"--dry-run", L"c", L"d", L"0"}, list).out,
              "--- a.xml\n+++ a.xml\n@@ -1 +1 @@\n-<a>\n+<a g=\"\">\n@@ -3 +3 @@\n- <c d='1' e='2'/>\n"
              "+ <c d='0' e='x&#9;y'/>\n");
    EXPECT_EQ(Edit(L"a.xml", {L"remove", L"c", L"--dry-run"}).out,
              "--- a.xml\n+++ a.xml\n@@ -3 +2,0 @@\n- <c d='1' e='2'/>\n");
    EXPECT_THAT(Edit(file, {L"set", L"--list", L"-"}, list + "c\td\n").err, HasSubstr("<standard input>:4:1: no PATH"));
    EXPECT_EQ(FileBytes(file), source);
    EXPECT_EQ(Edit(file, {L"set", L"--list", L"-"}, list).code, 0);
    EXPECT_EQ(FileBytes(file), "<a g=\"\">\r\n <b/>\r\n <c d='1' e='x&#9;y'/>\r\n\r\n <f/>\r\n</a>");
}

} // namespace
