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
        {"malformed", "<a>\n <b></c></a>", "Error code 7 mismatched tag\n      at line 2, col 6\n"},
        {"truncated between tags", "<a><b/>", "ends before its outermost element is closed"},
        {"truncated in a tag", "<a><b c=\"", "ends before its outermost element is closed"},
        {"truncated UTF-8", "<a><b c=\"\xE2\x82", "ends before its outermost element is closed"},
        {"truncated in the outermost tag", "<a b=\"c", "contains no element"},
        {"zero bytes", std::string(64, '\0'), "Error code 4 not well-formed (invalid token)\n      at line 1, col 0"},
        {"lone surrogate in UTF-16", std::string("\xFE\xFF\0<\xDC\0\0/\0>", 10), "Error code 4 not well-formed"},
        {"unknown encoding", "<?xml version=\"1.0\" encoding=\"x-none\"?><a/>", "Error code 18 unknown encoding"},
        {"external entity in an attribute", "<!DOCTYPE a [<!ENTITY e SYSTEM \"secret.xml\">]><a b=\"&e;\"/>",
         "Error code 16 reference to external entity in attribute"},
        {"entity bomb", EntityBomb(), "Error code 43 limit on input amplification factor"},
        {"no XML at all", "MZ\x90 This program cannot be run", "Error code 4 not well-formed (invalid token)"},
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
        for (char const * with : {"CVekXMLParser::Parse --> Parse error occured\n", "can't be read as XML"})
            EXPECT_EQ(outcome.err.find("Error code") == std::string::npos, outcome.err.find(with) == std::string::npos);
        EXPECT_EQ(Vek({L"xml", L"format", file, file, L"--drop-text"}).code, 1);
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
    std::pair<wchar_t const *, char const *> const rows[] = {
        {L"info|missing.xml", "CVekXMLParser::Parse --> Failed to open file missing.xml\n"
                              "CVekXMLParser::ParseXMLFile --> Failed on parsing\nvek: missing.xml: can't be read: "},
        {L"info|.", "CVekXMLParser::Parse --> Failed to open file .\n"
                    "CVekXMLParser::ParseXMLFile --> Failed on parsing\nvek: .: is a directory\n"},
        {L"info|", "CVekFileIOStream::Open --> Filename has no character"},
        {L"get|scene.xml|camera/lens|name", "no element \"camera/lens\""},
        {L"get|scene.xml|/|nothing", "the root element has no attribute \"nothing\""},
        {L"set|locked.xml|/|b|1", "vek: locked.xml: is read-only\n"},
        {L"format|scene.xml|locked.xml", "vek: locked.xml: is read-only\n"},
        {L"format|scene.xml|no\\folder\\a.xml",
         "CVekXMLWriter::WriteXMLFile --> Failed to write XML\nvek: no\\folder\\a.xml: can't be written: "},
        {L"set|scene.xml|/|b|1|-o|.", "vek: .: is a directory\n"},
        {L"set|scene.xml|/|b|a\x01|-o|x.xml", "XML has no place for"},
        {L"set|scene.xml|/|b|a\xD800|-o|x.xml", "XML has no place for"},
        {L"set|scene.xml|/|b c|a|-o|x.xml", "x.xml: not written: "},
        {L"set|scene.xml|a b|c|d|--create|-o|x.xml", "x.xml: not written: "},
    };
    for (auto const & [line, message] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(line)));
        Outcome const outcome = Vek(Parts(std::wstring(L"xml|") + line));
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_THAT(outcome.err, Not(HasSubstr("note: "))) << "a note on something that wasn't done";
    }
    EXPECT_EQ(FileBytes(folder + L"locked.xml"), "<a/>");
    EXPECT_EQ(CountFiles(folder), 2) << "something was left";
}

TEST(VekXmlBadInput, WrongUsage)
{
    EXPECT_EQ(Vek({}).code, 2);
    for (wchar_t const * const line :
         {L"nonsense", L"xml", L"xml|nonsense", L"xml|info", L"xml|get|a.xml|b", L"xml|set|a.xml|b|c",
          L"xml|format|a.xml", L"xml|format|a.xml|b.xml|c.xml", L"xml|format|a.xml|b.xml|--indent|-1",
          L"xml|tree|a.xml|--depth|0", L"xml|tree|a.xml|--depth|x", L"xml|info|a.xml|--nonsense"})
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(line)));
        Outcome const outcome = Vek(Parts(line));
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr("Run \"vek --help\" for more."));
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
