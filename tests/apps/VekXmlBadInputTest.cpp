// vek xml on bad input: each ends with a message and the exit code 1 or 2, and leaves every file as it was. And very
// large or deep input simply works.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

using testing::HasSubstr;
using testing::Not;

namespace
{

std::string Repeat(std::string const & text, int count)
{
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

std::vector<std::wstring> Parts(std::wstring const & line)
{
    std::vector<std::wstring> parts(1);
    for (wchar_t const unit : line)
        unit == L'|' ? parts.emplace_back() : parts.back() += unit;
    return parts;
}

std::string EntityBomb()
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i < 9; ++i)
        text += "<!ENTITY e" + std::to_string(i) + " \"" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "\">";
    return text + "]><a>&e8;</a>";
}

// What else the parser refuses: ParserTest.
TEST(VekXmlBadInput, FilesThatCantBeRead)
{
    std::tuple<char const *, std::string, char const *> const rows[] = {
        // clang-format off
        {"empty", "", "contains no element"}, {"declaration only", "<?xml version=\"1.0\"?>\n", "contains no element"},
        {"malformed", "<a>\n <b></c></a>", "bad.xml:2:7: mismatched tag\n"},
        {"truncated between tags", "<a><b/>", "ends before its outermost element is closed"},
        {"truncated in a tag", "<a><b c=\"", "ends before its outermost element is closed"},
        {"truncated UTF-8", "<a><b c=\"\xE2\x82", "ends before its outermost element is closed"},
        {"truncated in the outermost tag", "<a b=\"c", "contains no element"},
        {"zero bytes", std::string(64, '\0'), ":1:1: not well-formed (invalid token)\n"},
        {"lone surrogate in UTF-16", std::string("\xFE\xFF\0<\xDC\0\0/\0>", 10), ":1:2: not well-formed"},
        {"unknown encoding", "<?xml version=\"1.0\" encoding=\"x-none\"?><a/>", ":1:31: unknown encoding"},
        {"external entity in an attribute", "<!DOCTYPE a [<!ENTITY e SYSTEM \"secret.xml\">]><a b=\"&e;\"/>",
         ":1:53: reference to external entity in attribute"},
        {"entity bomb", EntityBomb(), ": limit on input amplification factor"},
        {"no XML at all", "MZ\x90 This program cannot be run", ":1:3: not well-formed (invalid token)"},
        // clang-format on
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"bad.xml";
    StoreBytes(folder + L"secret.xml", "<secret/>");
    for (auto const & [name, bytes, message] : rows)
    {
        SCOPED_TRACE(name);
        StoreBytes(file, bytes);
        Outcome const outcome = Vek({L"xml", L"info", file});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << "one line for a fault";
        EXPECT_EQ(Vek({L"xml", L"format", file, file, L"--strip-text"}).code, 1);
        EXPECT_EQ(FileBytes(file), bytes) << "a failure has changed the file";
    }
    EXPECT_EQ(CountFiles(folder), 2);
}

TEST(VekXmlBadInput, ExternalEntitiesAreNeverOpened)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"secret.xml", "<secret word=\"open\"/>");
    StoreBytes(folder + L"a.xml", "<!DOCTYPE a SYSTEM \"secret.xml\" [<!ENTITY % p SYSTEM \"secret.xml\"> %p;"
                                  "<!ENTITY e SYSTEM \"secret.xml\">]><a>&e;</a>");
    // Nobody could open it without sharing.
    HANDLE const lock =
        CreateFileW((folder + L"secret.xml").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    Outcome const outcome = Vek({L"xml", L"tree", folder + L"a.xml"});
    CloseHandle(lock);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "a\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(VekXmlBadInput, PathsThatLeadNowhere)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"locked.xml", "<a/>");
    SetFileAttributesW((folder + L"locked.xml").c_str(), FILE_ATTRIBUTE_READONLY);
    StoreBytes(folder + L"scene.xml", FileBytes(SceneFile()));
    std::string const entity = "<!DOCTYPE a [<!ENTITY b '<b><c/></b>'><!ATTLIST a e CDATA '1'>]>\n   <a f=''>&b;</a>";
    StoreBytes(folder + L"entity.xml", entity);
    std::pair<std::wstring, char const *> const rows[] = {
        {L"info|missing.xml", "vek: missing.xml: can't be read: "},
        {L"info|missing.xml|--verbose",
         "CVekXMLParser::ParseXMLFile --> Failed on parsing\nvek: missing.xml: can't be "},
        {L"info|.", "vek: .: is a directory\n"},
        {L"info|", "vek: : can't be read"},
        {L"format|scene.xml|NUL", "vek: NUL: is a device"},
        {L"get|scene.xml|camera/lens|name", "no element \"camera/lens\""},
        {L"get|scene.xml|/|nothing", "the root element has no attribute \"nothing\""},
        {L"set|locked.xml|/|b|1", "vek: locked.xml: is read-only\n"},
        {L"format|scene.xml|locked.xml", "vek: locked.xml: is read-only\n"},
        {L"format|scene.xml|no\\folder\\a.xml", "vek: no\\folder\\a.xml: can't be written: "},
        {L"set|scene.xml|/|b|1|-o|.", "vek: .: is a directory\n"},
        {L"set|scene.xml|/|b|a\x01|-o|x.xml", "XML has no place for"},
        {L"set|scene.xml|/|b|a\xD800|-o|x.xml", "XML has no place for"},
        {L"set|scene.xml|/|b c|a|-o|x.xml", "vek: scene.xml: not changed: \"b c\" is no name\n"},
        {L"set|scene.xml|/|b\x00D7|a|-o|x.xml", "would not be read as what was asked for\n"},
        {L"set|scene.xml|a b|c|d|--create|-o|x.xml", "nor can one of that name be added\n"},
        {L"set|scene.xml|camera[0]|c|d", "\"camera[0]\" is no path\n"},
        {L"set|scene.xml|group/mesh[@name='x|c|d", "is no path\n"},
        {L"set|scene.xml|mesh|c|d|--at|/|b|1", "no element \"mesh\"\n"},
        {L"set|scene.xml|a/b|c|d|--create|--at|a|b|1", "leads through an element that another edit adds"},
        {L"set|scene.xml|/|c|d|--at|/|c|e", "\"/\" c is changed twice\n"},
        {L"set|scene.xml|--list|missing.txt", "vek: missing.txt: can't be read"},
        {L"set|scene.xml|--list|locked.xml", "locked.xml:1:1: no PATH, ATTRIBUTE and VALUE"},
        {L"set|entity.xml|b/c|d|1", "entity.xml:2:4: not changed: what is to change stands in the text of an entity"},
        {L"remove|entity.xml|/|e", "\"e\" is not written there"},
        {L"remove|entity.xml|/", "can't be without its root"},
        {L"rename|entity.xml|/|x|X", "has no attribute \"x\"\n"},
        {L"rename|entity.xml|/|f|e", "has an attribute \"e\" already\n"},
    };
    for (auto const & [line, message] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(line)));
        Outcome const outcome = Vek(Parts(std::wstring(L"xml|") + line));
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_EQ(outcome.err.find(" --> ") == std::string::npos, line.find(L"--verbose") == line.npos);
        EXPECT_THAT(outcome.err, Not(HasSubstr("note: "))) << "a note on something that wasn't done";
    }
    EXPECT_EQ(FileBytes(folder + L"locked.xml"), "<a/>");
    EXPECT_EQ(FileBytes(folder + L"entity.xml"), entity);
    EXPECT_EQ(FileBytes(folder + L"scene.xml"), FileBytes(SceneFile()));
    EXPECT_EQ(CountFiles(folder), 3) << "something was left";
}

TEST(VekXmlBadInput, WrongUsage)
{
    std::tuple<wchar_t const *, char const *, char const *> const rows[] = {
        // what is said of it, and whose help tells more
        {L"", "", "vek"},
        {L"xlm|info", "unknown command \"xlm\"; did you mean \"xml\"?", "vek"},
        {L"--verbose|xml|foramt|a.xml", "unknown command \"foramt\"; did you mean \"format\"?", "vek xml"},
        {L"nonsense", "unknown command \"nonsense\"\n", "vek"},
        {L"xml", "\"vek xml\" wants a command: info, tree, get, set, remove, rename, format, canon, diff, check\n",
         "vek xml"},
        {L"xml|info", "FILE is required", "vek xml info"},
        {L"xml|get|a.xml", "PATH is required", "vek xml get"},
        {L"xml|set|a.xml", "PATH is required, or --at, or --list", "vek xml set"},
        {L"xml|set|a.xml|b|c", "VALUE is required", "vek xml set"},
        {L"xml|set|a.xml|--at|b|c", "--at", "vek xml set"},
        {L"xml|set|a.xml|b|c|d|--indent|2", "use \"vek xml format\"", "vek xml set"},
        {L"xml|rename|a.xml|b", "NAME is required", "vek xml rename"},
        {L"xml|format|a.xml|b.xml|--drop-text", "--drop-text is gone", "vek xml format"},
        {L"xml|format|a.xml|b.xml|c.xml", "c.xml", "vek xml format"},
        {L"xml|format|a.xml|b.xml|--indent|-1", "--indent", "vek xml format"},
        {L"xml|tree|a.xml|--depth|x", "--depth", "vek xml tree"},
        {L"xml|check|a|--stat=1", "unknown option \"--stat\"; did you mean \"--stats\"?", "vek xml check"},
    };
    for (auto const & [line, message, command] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(line)));
        Outcome const outcome = Vek(*line ? Parts(line) : std::vector<std::wstring>());
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_THAT(outcome.err, HasSubstr(std::string("\nRun \"") + command + " --help\" for more.\n"));
    }
}

TEST(VekXmlBadInput, LargeAndDeepFilesWork)
{
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"large.xml", target = folder + L"new.xml";
    constexpr int MILLION = 1000000;
    StoreBytes(file, Repeat("<a>", MILLION) + Repeat("</a>", MILLION));
    EXPECT_THAT(Vek({L"xml", L"info", file}).out, HasSubstr("depth             1000000\n"));
    EXPECT_EQ(Vek({L"xml", L"tree", file, L"--depth", L"2"}).out, "a\n  a (1 child)\n");
    Outcome const indented = Vek({L"xml", L"format", file, target});
    EXPECT_EQ(indented.code, 1);
    EXPECT_THAT(indented.err, HasSubstr("use --indent 0"));
    EXPECT_EQ(Vek({L"xml", L"format", file, target, L"--indent", L"0"}).code, 0);
    EXPECT_THAT(Vek({L"xml", L"info", target}).out, HasSubstr("depth             1000000\n"));

    std::string attributes = "<a";
    for (int i = 0; i < 100000; ++i)
        attributes += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
    StoreBytes(file, attributes + "/>");
    EXPECT_EQ(Vek({L"xml", L"set", file, L"/", L"N99999", L"last"}).code, 0);
    EXPECT_EQ(Vek({L"xml", L"get", file, L"/", L"n99999"}).out, "last\n");
    EXPECT_THAT(Vek({L"xml", L"tree", file}).out, HasSubstr(" n15=\"15\" (99984 more attributes)\n"));
}

} // namespace
