#include <stdio.h>

#include "text/TextKit.h"

#include <climits>
#include <cstdlib>
#include <type_traits>

namespace
{

static_assert(std::is_same_v<FILE, _iobuf>);
constexpr unsigned long DIRECTORY = 0x10, PLAIN_FILE = 0;

template <class T>
class Path : public testing::Test
{
};
TYPED_TEST_SUITE(Path, BothWidths);

TYPED_TEST(Path, NameAndExtension)
{
    struct Row
    {
        bool extension;
        char const * path;
        int max;
        char const * expected;
        int offset; // where it begins in the path; -1: null
    } const rows[] = {
        {false, "C:\\dir\\file.txt", -1, "file.txt", 7},
        {false, "C:file.txt", -1, "file.txt", 2},
        {false, "dir/", -1, "", 4},
        {false, "", -1, "", -1},
        {false, "x\\abcdef", 3, "abc", 2},
        {false, "file", -1, "file", 0},
        {false, "\\f", 5, "f", 1},
        {false, "x\\abc", 0, "", 2},
        {false, "x\\abc", -2, "", 2},
        {false, "x\\abc", INT_MIN, "", 2},
        {false, "x\\abc", INT_MAX, "abc", 2},
        {true, "a\\b.c.d", -1, "d", 6},
        {true, "a.b\\c", -1, "c", 4},
        {true, "", -1, "", -1},
        {true, "a.txt", 2, "tx", 2},
        {true, "a.", -1, "", 2},
        {true, ".rc", -1, "rc", 1},
        {true, "dir\\file", -1, "file", 4}, // deliberate: without a dot the file name is the extension
        {true, "file", -1, "file", 0},      // deliberate: or the whole path
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.path << " max " << row.max);
        auto const path = Text<TypeParam>(row.path), expected = Text<TypeParam>(row.expected);
        Buffer<TypeParam> out(expected.size() + 1);
        TypeParam const * const begin =
            (row.extension ? Api<TypeParam>::Extension : Api<TypeParam>::FileName)(path.c_str(), out.data(), row.max);
        EXPECT_EQ(out.Content(), expected);
        EXPECT_EQ(begin, row.offset < 0 ? nullptr : path.c_str() + row.offset);
    }
}

TYPED_TEST(Path, DirectoryAndNameWithoutExtension)
{
    struct Row
    {
        bool directory;
        char const * path;
        int max;
        char const * expected;
    } const rows[] = {
        {true, "C:\\dir\\file.txt", -1, "C:\\di"}, // deliberate: one character short, all of them
        {true, "ab\\c", -1, "a"},
        {true, "a\\c", -1, ""},
        {true, "C:\\dir\\file.txt", 3, "C:\\"},
        {true, "file.txt", -1, ""},
        {true, "\\file.txt", -1, ""},
        {true, "", -1, ""},
        {true, "abcd\\x", 0, ""},
        {true, "abcd\\x", -2, ""},
        {true, "abcd/", INT_MAX, "abc"},
        {false, "dir\\file.txt", -1, "dir\\file"},
        {false, "a.b.c", -1, "a.b"},
        {false, "dir\\file.txt", 3, "dir"},
        {false, "dir\\file", -1, "dir"}, // deliberate: a name without a dot is removed
        {false, "\\file", -1, ""},
        {false, "dir\\", -1, "dir\\"},
        {false, "dir\\x.", -1, "dir\\x."},
        {false, "", -1, ""},
        {false, "file", -1, "file"},
        {false, "file", 2, "fi"},
        {false, "a.b", -2, ""},
        {false, "file", -2, ""},
        {false, "a.b", INT_MAX, "a"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << (row.directory ? "directory of " : "without extension ") << row.path
                                        << " max " << row.max);
        auto const path = Text<TypeParam>(row.path), expected = Text<TypeParam>(row.expected);
        Buffer<TypeParam> out(expected.size() + 1);
        (row.directory ? Api<TypeParam>::Directory : Api<TypeParam>::WithoutExtension)(path.c_str(), out.data(),
                                                                                       row.max);
        EXPECT_EQ(out.Content(), expected);
    }
}

TYPED_TEST(Path, PartsAreLimitedTo1024CharactersByDefault)
{
    std::basic_string<TypeParam> const name(1500, TypeParam('n'));
    auto const path = Text<TypeParam>("d\\") + name;
    Buffer<TypeParam> out(2000);
    Api<TypeParam>::FileName(path.c_str(), out.data(), -1);
    EXPECT_EQ(out.Content(), name.substr(0, 1024));
    Api<TypeParam>::FileName(path.c_str(), out.data(), 1400);
    EXPECT_EQ(out.Content(), name.substr(0, 1400));
    Api<TypeParam>::Directory((name + path).c_str(), out.data(), -1);
    EXPECT_EQ(out.Content(), name.substr(0, 1024));
    // The extension that is taken off is measured up to 1,024 characters.
    Api<TypeParam>::WithoutExtension(path.c_str(), out.data(), -1);
    EXPECT_EQ(out.Content(), path.substr(0, path.size() - 1024 - 1));
}

TYPED_TEST(Path, IsSamePathIsLiteralButForCase)
{
    struct Row
    {
        char const * first;
        char const * second;
        bool same;
    } const rows[] = {
        {"C:\\A\\B", "c:\\a\\b", true},
        {"C:/a", "C:\\a", false},
        {"a\\.\\b", "a\\b", false},
        {"", "", true},
        {"a", "", false},
        {"a", "a\\", false},
    };
    for (Row const & row : rows)
        EXPECT_EQ(Api<TypeParam>::IsSamePath(Text<TypeParam>(row.first).c_str(), Text<TypeParam>(row.second).c_str()),
                  row.same)
            << row.first << " and " << row.second;
}

TYPED_TEST(Path, FilesAreOpenedClosedAndFound)
{
    char const * const folder = std::getenv("VEK_TEST_TMP");
    auto const name = Text<TypeParam>(folder ? folder : ".") + Text<TypeParam>("/text-path.tmp");
    std::string const narrow(name.begin(), name.end());
    remove(narrow.c_str());
    auto const open = [&name](char const * mode)
    { return Api<TypeParam>::Open(name.c_str(), Text<TypeParam>(mode).c_str()); };
    EXPECT_FALSE(Api<TypeParam>::Exist(name.c_str()));
    EXPECT_EQ(open("rb"), nullptr);
    FILE * const file = open("wb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fwrite("xyz", 1, 3, file), 3u);
    Api<TypeParam>::Close(file);
    EXPECT_TRUE(Api<TypeParam>::Exist(name.c_str()));
    FILE * const again = open("rb");
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(fgetc(again), 'x');
    Api<TypeParam>::Close(again);
    for (char const * mode : {"", "q", "b", "r?", "r%s"}) // modes the runtime ends a program for
        EXPECT_EQ(open(mode), nullptr) << mode;
    EXPECT_EQ(Api<TypeParam>::Open(nullptr, name.c_str()), nullptr);
    EXPECT_EQ(Api<TypeParam>::Open(name.c_str(), nullptr), nullptr);
    EXPECT_FALSE(Api<TypeParam>::Exist(Text<TypeParam>("").c_str()));
    EXPECT_FALSE(Api<TypeParam>::Exist(nullptr));
    EXPECT_FALSE(Api<TypeParam>::Exist(Text<TypeParam>(".").c_str())) << "a directory can't be opened";
    remove(narrow.c_str());
}

TEST(PlatformPath, Relative)
{
    std::wstring const root = L"C:\\";
    std::wstring deep = root;
    for (int i = 0; i < 127; ++i)
        deep += L"a\\";
    struct Row
    {
        std::wstring from;
        unsigned long fromAttributes;
        std::wstring to;
        bool result;
        std::wstring expected;
    } const rows[] = {
        {L"C:\\a\\b", DIRECTORY, L"C:\\a\\c\\d.txt", true, L"..\\c\\d.txt"},
        {L"C:\\a\\b.txt", PLAIN_FILE, L"C:\\a\\d.txt", true, L".\\d.txt"},
        {L"C:\\a", DIRECTORY, L"D:\\a", false, L""},
        {deep, DIRECTORY, L"C:\\b", false, L""}, // the way back would be longer than the buffer
        {deep, DIRECTORY, root, false, L""},
        {root + std::wstring(257, L'x'), DIRECTORY, L"C:\\b", false, L""},
        {L"C:\\b", DIRECTORY, root + std::wstring(5000, L'x'), false, L""},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(&row - rows);
        Buffer<wchar_t> out(260);
        CVekString<wchar_t> string(L"before");
        EXPECT_EQ(VekGetRelativePathT(out.data(), row.from.c_str(), row.fromAttributes, row.to.c_str(), PLAIN_FILE),
                  row.result);
        EXPECT_EQ(out.Content(), row.expected);
        EXPECT_EQ(VekGetRelativePathT(string, row.from.c_str(), row.fromAttributes, row.to.c_str(), PLAIN_FILE),
                  row.result);
        EXPECT_EQ(Text(string), row.result ? row.expected : L"before");
    }
    wchar_t out[260];
    EXPECT_FALSE(VekGetRelativePathT(out, nullptr, 0, L"C:\\a", 0));
    EXPECT_FALSE(VekGetRelativePathT(out, L"C:\\a", 0, nullptr, 0));
}

TEST(PlatformPath, Absolute)
{
    std::wstring const longName(300, L'x');
    struct Row
    {
        wchar_t const * path;
        wchar_t const * base;
        bool result;
        wchar_t const * expected;
    } const rows[] = {
        {L"..\\x", L"C:\\a\\b", true, L"C:\\a\\x"},
        {L".\\x\\..\\y", L"C:\\a", true, L"C:\\a\\y"},
        {L"C:\\q", L"C:\\a", true, L"C:\\a\\C:\\q"}, // kept: joined although absolute already
        {longName.c_str(), L"C:\\a", false, longName.c_str()},
        {L"x", longName.c_str(), false, L"x"},
        {L"..\\..\\..\\..\\x", L"C:\\a", true, L"C:\\x"},
    };
    for (Row const & row : rows)
    {
        CVekString<wchar_t> path(row.path);
        EXPECT_EQ(VekMakePathAbsolute(path, CVekString<wchar_t>(row.base)), row.result) << "row " << &row - rows;
        EXPECT_EQ(Text(path), row.expected) << "row " << &row - rows;
    }
}

} // namespace
