// vek data as its users meet it.

#include "Process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace std::string_literals;
using testing::HasSubstr;

namespace
{

struct Row
{
    std::string name;  // as UTF-16 bytes
    std::string value; // its bytes, type included
    char const * type;
    char const * nameText;
    char const * text;
};

std::string Wide(std::string const & text)
{
    std::string bytes;
    for (char const character : text)
        bytes += {character, '\0'};
    return bytes;
}

// The last ones hold what XML has no place for, or what the library's escaping would not bring back.
Row const ROWS[] = {
    {Wide("n"), "\x01\0\0\0\x01"s, "bool", "n", "true"},
    {Wide("n"), "\x02\0\0\0\xC8"s, "byte", "n", "200"},
    {Wide("n"), "\x05\0\0\0\xFE\xFF"s, "int16", "n", "-2"},
    {Wide("n"), "\x06\0\0\0\xFE\xFF"s, "word", "n", "65534"},
    {Wide("n"), "\x07\0\0\0\0\0\0\x80"s, "int32", "n", "-2147483648"},
    {Wide("n"), "\x08\0\0\0\0\0\0\x80"s, "dword", "n", "2147483648"},
    {Wide("n"), "\x09\0\0\0\xCD\xCC\xCC\x3D"s, "float", "n", "0.1"},
    {Wide("n"), "\x09\0\0\0\0\0\xC0\x7F"s, "float", "n", "0x7FC00000"},
    {Wide("n"), "\x0A\0\0\0\0\0\0\0\0\0\xF0\xFF"s, "double", "n", "0xFFF0000000000000"},
    {Wide("n"), "\x0A\0\0\0\x9A\x99\x99\x99\x99\x99\xB9\x3F"s, "double", "n", "0.1"},
    {Wide("n"), "\x0D\0\0\0\x01\x02\x03\xFF"s, "rgba8", "n", "1, 2, 3, 255"},
    {Wide("n"), "\x0E\0\0\0\0\0\0\0\0\0\x80\x3F\0\0\0\x40\0\0\0\x80"s, "rgbaf", "n", "0, 1, 2, -0"},
    {Wide("n"), "\x0F\0\0\0\x01\0\0\0\x02\0\0\0\x03\0\0\0\xFF\xFF\xFF\xFF"s, "vec4i", "n", "1, 2, 3, -1"},
    {Wide("n"), "\x10\0\0\0\0\0\0\0\0\0\x80\x3F\0\0\0\x40\0\0\x80\xBF"s, "vec4f", "n", "0, 1, 2, -1"},
    {Wide("n"), "\x11\0\0\0\0\0\0\0\0\0\xF0\x3F"s + std::string(24, '\0'), "vec4d", "n", "1, 0, 0, 0"},
    {Wide("n"), "\x12\0\0\0\0\0\x80\x3F"s + std::string(60, '\0'), "mat4f", "n",
     "1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0"},
    {Wide("n"), "\x13\0\0\0"s + std::string(126, '\0') + "\xF0\x3F", "mat4d", "n",
     "0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1"},
    {Wide("n"), "\x14\0\0\0"s, "guid", "n", ""},
    {Wide("n"), "\x15\0\0\0\x03\0\0\0\0\x1A\xFF"s, "buffer", "n", "001AFF"},
    {"", "\x0B\0\0\0\0\0\0\0"s, "string", "", ""},
    {Wide("n"), "\x03\0\0\0\0"s, "char", "n", R"(\x00)"},
    {Wide("n"), "\x04\0\0\0\x01\xD8"s, "wchar", "n", R"(\uD801)"},
    {Wide("n"), "\x0B\0\0\0\x06\0\0\0 \\\xE9\n\x01 "s, "string", "n", R"( \\\xE9\x0A\x01 )"},
    {"\x01\0\xFF\xFF\0\xD8\x3D\xD8\0\xDE"s, "\x0C\0\0\0\x02\0\0\0\xAC\x20\xE9\0"s, "wstring",
     "\\u0001\\uFFFF\\uD800\xF0\x9F\x98\x80", "\xE2\x82\xAC\xC3\xA9"},
    {Wide("<EOL>&lt;\"'>"), "\x0C\0\0\0\x05\0\0\0"s + Wide("&amp;"), "wstring", R"(\u003CEOL>\u0026lt;"'>)",
     R"(\u0026amp;)"},
};

std::string Number(std::size_t number)
{
    return {static_cast<char>(number), '\0', '\0', '\0'};
}

std::string AllBytes()
{
    std::string bytes = Number(std::size(ROWS));
    for (Row const & row : ROWS)
        bytes += Number(row.name.size() / 2) + row.name + row.value;
    return bytes;
}

TEST(VekData, DumpUnpackAndPackKeepEveryByte)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"all.dat", AllBytes());
    Outcome const dump = Vek({L"data", L"dump", folder + L"all.dat"});
    EXPECT_EQ(dump.code, 0) << dump.err;
    for (Row const & row : ROWS)
    {
        std::string const text = row.type == "buffer"s ? "3 bytes "s + row.text : row.text;
        EXPECT_THAT(dump.out, HasSubstr(row.nameText + (row.type == "guid"s ? "\n" : " = "s + text).substr(0, 100)));
    }
    EXPECT_EQ(dump.out.substr(0, dump.out.find('\n')), "bool     n = true");

    Outcome const unpack = Vek({L"data", L"unpack", folder + L"all.dat", folder + L"all.xml"});
    EXPECT_EQ(unpack.code, 0);
    EXPECT_EQ(unpack.err, "");
    EXPECT_THAT(FileBytes(folder + L"all.xml"), HasSubstr(R"(<Entry Name="n" Type="byte" Value="200")"));
    Outcome const pack = Vek({L"data", L"pack", folder + L"all.xml", folder + L"again.dat"});
    EXPECT_EQ(pack.code, 0) << pack.err;
    EXPECT_EQ(FileBytes(folder + L"again.dat"), AllBytes());

    Vek({L"data", L"pack", L"--big-endian", folder + L"all.xml", folder + L"big.dat"});
    EXPECT_THAT(FileBytes(folder + L"big.dat"), testing::StartsWith("\0\0\0"s));
    EXPECT_EQ(Vek({L"data", L"dump", L"--big-endian", folder + L"big.dat"}).out, dump.out);
    EXPECT_EQ(CountFiles(folder), 4);
}

TEST(VekData, LossIsTold)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"rest.dat", "\x01\0\0\0\0\0\0\0\x01\0\0\0\x02rest"s);
    Outcome const outcome = Vek({L"data", L"unpack", folder + L"rest.dat", folder + L"out.xml"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("4 bytes behind the last entry"));
    EXPECT_THAT(outcome.err, HasSubstr("other bytes"));
}

TEST(VekData, BadInput)
{
    std::wstring const folder = MakeFolder();
    StoreBytes(folder + L"cut.dat", AllBytes().substr(0, AllBytes().size() - 1));
    StoreBytes(folder + L"unknown.dat", "\x01\0\0\0\0\0\0\0\x63\0\0\0"s);
    for (wchar_t const * const command : {L"dump", L"unpack"})
    {
        Outcome const outcome = Vek({L"data", command, folder + L"cut.dat", folder + L"out.xml"});
        EXPECT_EQ(outcome.code, command == L"dump"s ? 2 : 1) << "one argument too many";
    }
    Outcome const dump = Vek({L"data", L"dump", folder + L"cut.dat"});
    EXPECT_EQ(dump.code, 1);
    EXPECT_THAT(dump.out, HasSubstr("n = -2\n"));
    EXPECT_THAT(dump.err, HasSubstr("entry " + std::to_string(std::size(ROWS)) + ","));
    EXPECT_THAT(Vek({L"data", L"dump", folder + L"unknown.dat"}).out, HasSubstr("type 99"));
    EXPECT_THAT(Vek({L"data", L"unpack", folder + L"unknown.dat", L"x.xml"}).err, HasSubstr("the unknown type 99"));
    EXPECT_EQ(Vek({L"data", L"dump", folder + L"none.dat"}).code, 1);

    std::pair<char const *, char const *> const documents[] = {
        {"<Other/>", "<Other>"},
        {"<TypedData><Item/></TypedData>", "<Item>"},
        {"<TypedData><Entry Type='bool' Value='true'/></TypedData>", "\"Name\""},
        {"<TypedData><Entry Name='n' Type='int' Value='1'/></TypedData>", "unknown type \"int\""},
        {"<TypedData><Entry Name='n' Type='int32'/></TypedData>", "\"Value\""},
        {"<TypedData><Entry Name='n' Type='int32' Value='1x'/></TypedData>", "\"1x\" is no value of the type int32"},
        {"<TypedData><Entry Name='n' Type='byte' Value='256'/></TypedData>", "\"256\""},
        {"<TypedData><Entry Name='n' Type='vec4i' Value='1, 2, 3'/></TypedData>", "\"1, 2, 3\""},
        {"<TypedData><Entry Name='n' Type='vec4i' Value='1, 2, 3, 4, 5'/></TypedData>", "\"1, 2, 3, 4, 5\""},
        {"<TypedData><Entry Name='n' Type='buffer' Value='0'/></TypedData>", "\"0\""},
        {"<TypedData><Entry Name='n' Type='buffer' Value=''/></TypedData>", "\"\""},
        {"<TypedData><Entry Name='n' Type='char' Value='ab'/></TypedData>", "\"ab\""},
        {"<TypedData><Entry Name='n' Type='string' Value='&#x20AC;'/></TypedData>", "of the type string"},
        {"<TypedData><Entry Name='n' Type='string' Value='a\\x00'/></TypedData>", "of the type string"},
        {"<TypedData><Entry Name='\\q' Type='bool' Value='true'/></TypedData>", "escape"},
    };
    for (auto const & [document, message] : documents)
    {
        StoreBytes(folder + L"bad.xml", document);
        Outcome const outcome = Vek({L"data", L"pack", folder + L"bad.xml", folder + L"bad.dat"});
        EXPECT_EQ(outcome.code, 1) << document;
        EXPECT_THAT(outcome.err, HasSubstr(message)) << document;
    }
    EXPECT_EQ(CountFiles(folder), 3) << "nothing was written";
}

} // namespace
