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

using apps::MakeFolder;
using apps::Outcome;
using apps::SceneFile;
using apps::Store;
using apps::Vek;
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

std::string EntityBomb(char const * element)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i < 9; ++i)
        text += "<!ENTITY e" + std::to_string(i) + " \"" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "\">";
    return text + "]>" + element;
}

TEST(VekXmlBadInput, FilesThatCantBeRead)
{
    struct
    {
        char const * name;
        std::string bytes;
        std::vector<char const *> messages;
    } const rows[] = {
        {"empty", "", {"contains no element"}},
        {"declaration only", "<?xml version=\"1.0\"?>\n", {"contains no element"}},
        {"malformed", "<a>\n <b></c></a>", {"Error code 7 mismatched tag", "at line 2, col 6", "can't be read as XML"}},
        {"two roots", "<a/><b/>", {"Error code 9 junk after document element"}},
        {"truncated between tags", "<a><b/>", {"ends before its outermost element is closed"}},
        {"truncated in a tag", "<a><b c=\"", {"ends before its outermost element is closed"}},
        {"truncated UTF-8", "<a><b c=\"\xE2\x82", {"ends before its outermost element is closed"}},
        {"truncated in the outermost tag", "<a b=\"c", {"contains no element"}},
        {"zero bytes", std::string(64, '\0'), {"Error code 4 not well-formed (invalid token)", "at line 1, col 0"}},
        {"zero byte inside", std::string("<a>\0</a>", 8), {"Error code 4 not well-formed (invalid token)"}},
        {"lone surrogate in UTF-8", "<a b=\"\xED\xA0\x80\"/>", {"Error code 4 not well-formed (invalid token)"}},
        {"lone surrogate in UTF-16",
         std::string("\xFE\xFF\0<\xDC\0\0/\0>", 10),
         {"Error code 4 not well-formed (invalid token)"}},
        {"lone surrogate by number", "<a b=\"&#xD800;\"/>", {"Error code 14 reference to invalid character number"}},
        {"Latin-1 that claims to be UTF-8", "<a b=\"\xE9t\xE9\"/>", {"Error code 4 not well-formed (invalid token)"}},
        {"UTF-8 that claims to be UTF-16",
         "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>",
         {"Error code 19 encoding specified in XML declaration is incorrect"}},
        {"unknown encoding", "<?xml version=\"1.0\" encoding=\"x-none\"?><a/>", {"Error code 18 unknown encoding"}},
        {"external entity in an attribute",
         "<!DOCTYPE a [<!ENTITY e SYSTEM \"secret.xml\">]><a b=\"&e;\"/>",
         {"Error code 16 reference to external entity in attribute"}},
        {"entity that contains itself",
         "<!DOCTYPE a [<!ENTITY e \"&e;\">]><a b=\"&e;\"/>",
         {"Error code 12 recursive entity reference"}},
        {"entity bomb in text", EntityBomb("<a>&e8;</a>"), {"Error code 43 limit on input amplification factor"}},
        {"entity bomb in an attribute",
         EntityBomb("<a b=\"&e8;\"/>"),
         {"Error code 43 limit on input amplification factor"}},
        {"no XML at all", "MZ\x90 This program cannot be run", {"Error code 4 not well-formed (invalid token)"}},
    };
    std::wstring const folder = MakeFolder();
    std::wstring const file = folder + L"bad.xml";
    Store(folder + L"secret.xml", "<secret/>");
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.name);
        Store(file, row.bytes);
        Outcome const outcome = Vek({L"xml", L"info", file});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        for (char const * const message : row.messages)
            EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_EQ(outcome.err.find("Error code") != std::string::npos,
                  outcome.err.find("CVekXMLParser::Parse --> Parse error occured\n") != std::string::npos);
        EXPECT_EQ(Vek({L"xml", L"format", file, file, L"--drop-text"}).code, 1);
        EXPECT_EQ(apps::Load(file), row.bytes) << "a failure has changed the file";
    }
    EXPECT_EQ(apps::Names(folder).size(), 2U);
}

TEST(VekXmlBadInput, ExternalEntitiesAreNeverOpened)
{
    std::wstring const folder = MakeFolder();
    Store(folder + L"secret.xml", "<secret word=\"open\"/>");
    Store(folder + L"a.xml", "<!DOCTYPE a SYSTEM \"secret.xml\" [<!ENTITY % p SYSTEM \"secret.xml\"> %p;"
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
    Store(folder + L"locked.xml", "<a/>");
    SetFileAttributesW((folder + L"locked.xml").c_str(), FILE_ATTRIBUTE_READONLY);
    struct
    {
        char const * name;
        std::vector<std::wstring> arguments;
        std::vector<char const *> messages;
    } const rows[] = {
        {"missing file",
         {L"info", L"missing.xml"},
         {"CVekXMLParser::Parse --> Failed to open file missing.xml\nCVekXMLParser::ParseXMLFile --> Failed on "
          "parsing\n"
          "vek: missing.xml: can't be read: "}},
        {"directory",
         {L"info", L"."},
         {"CVekXMLParser::Parse --> Failed to open file .\n", "vek: .: is a directory\n"}},
        {"empty name", {L"info", L""}, {"CVekFileIOStream::Open --> Filename has no character"}},
        {"element that isn't there", {L"get", SceneFile(), L"camera/lens", L"name"}, {"no element \"camera/lens\""}},
        {"attribute that isn't there",
         {L"get", SceneFile(), L"/", L"nothing"},
         {"the root element has no attribute \"nothing\""}},
        {"read-only file", {L"set", L"locked.xml", L"/", L"b", L"1"}, {"vek: locked.xml: is read-only\n"}},
        {"read-only target", {L"format", SceneFile(), L"locked.xml"}, {"vek: locked.xml: is read-only\n"}},
        {"target in no folder",
         {L"format", SceneFile(), L"no\\folder\\a.xml"},
         {"CVekXMLWriter::WriteXMLFile --> Failed to write XML\nvek: no\\folder\\a.xml: can't be written: "}},
        {"directory as target", {L"set", SceneFile(), L"/", L"b", L"1", L"-o", L"."}, {"vek: .: is a directory\n"}},
        {"control character", {L"set", SceneFile(), L"/", L"b", L"a\x01", L"-o", L"x.xml"}, {"XML has no place for"}},
        {"lone surrogate", {L"set", SceneFile(), L"/", L"b", L"a\xD800", L"-o", L"x.xml"}, {"XML has no place for"}},
        {"attribute name that is none",
         {L"set", SceneFile(), L"/", L"b c", L"a", L"-o", L"x.xml"},
         {"x.xml: not written: "}},
        {"element name that is none",
         {L"set", SceneFile(), L"a b", L"c", L"d", L"--create", L"-o", L"x.xml"},
         {"x.xml: not written: "}},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.name);
        std::vector<std::wstring> arguments = row.arguments;
        arguments.insert(arguments.begin(), L"xml");
        Outcome const outcome = Vek(arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        for (char const * const message : row.messages)
            EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_THAT(outcome.err, Not(HasSubstr("note: "))) << "a note on something that wasn't done";
    }
    EXPECT_EQ(apps::Load(folder + L"locked.xml"), "<a/>");
    EXPECT_EQ(apps::Names(folder).size(), 1U) << "something was left";
}

TEST(VekXmlBadInput, WrongUsage)
{
    std::vector<std::wstring> const rows[] = {
        {},
        {L"nonsense"},
        {L"xml"},
        {L"xml", L"nonsense"},
        {L"xml", L"info"},
        {L"xml", L"get", L"a.xml", L"b"},
        {L"xml", L"set", L"a.xml", L"b", L"c"},
        {L"xml", L"format", L"a.xml"},
        {L"xml", L"format", L"a.xml", L"b.xml", L"c.xml"},
        {L"xml", L"format", L"a.xml", L"b.xml", L"--indent", L"-1"},
        {L"xml", L"tree", L"a.xml", L"--depth", L"0"},
        {L"xml", L"tree", L"a.xml", L"--depth", L"x"},
        {L"xml", L"info", L"a.xml", L"--nonsense"},
    };
    for (auto const & row : rows)
    {
        std::wstring line;
        for (std::wstring const & argument : row)
            line += L" " + argument;
        SCOPED_TRACE(std::string(line.begin(), line.end()));
        Outcome const outcome = Vek(row);
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
    Store(file, Repeat("<a>", MILLION) + Repeat("</a>", MILLION));
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
    Store(file, attributes + "/>");
    EXPECT_EQ(Vek({L"xml", L"set", file, L"/", L"N99999", L"last"}).code, 0);
    EXPECT_EQ(Vek({L"xml", L"get", file, L"/", L"n99999"}).out, "last\n");
    EXPECT_THAT(Vek({L"xml", L"tree", file}).out, HasSubstr(" n15=\"15\" (99984 more attributes)\n"));
}

} // namespace
