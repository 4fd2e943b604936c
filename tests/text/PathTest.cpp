#include <stdio.h>

#include "support/FillStack.h"
#include "support/GuardHeap.h"
#include "text/TextKit.h"

#include <climits>
#include <cstdlib>
#include <tuple>
#include <type_traits>
#include <utility>

namespace
{

static_assert(std::is_same_v<FILE, _iobuf>);
constexpr unsigned long DIRECTORY = 0x10, PLAIN_FILE = 0;

template <class T>
class Path : public testing::Test
{
};
TYPED_TEST_SUITE(Path, BothWidths);

TYPED_TEST(Path, Parts)
{
    // Name, Extension, Directory or Without extension; last, where a name or extension begins in the path, -1: null
    std::tuple<char, char const *, int, char const *, int> const rows[] = {
        // clang-format off
        {'N', "C:\\dir\\file.txt", -1, "file.txt", 7}, {'N', "C:file.txt", -1, "file.txt", 2}, {'N', "dir/", -1, "", 4},
        {'N', "", -1, "", -1}, {'N', "x\\abcdef", 3, "abc", 2}, {'N', "file", -1, "file", 0}, {'N', "\\f", 5, "f", 1},
        {'N', "x\\abc", 0, "", 2}, {'N', "x\\abc", INT_MIN, "", 2}, {'N', "x\\abc", INT_MAX, "abc", 2},
        {'E', "a\\b.c.d", -1, "d", 6}, {'E', "a.b\\c", -1, "c", 4}, {'E', "", -1, "", -1}, {'E', "a.txt", 2, "tx", 2},
        {'E', "a.", -1, "", 2}, {'E', ".rc", -1, "rc", 1},
        {'E', "dir\\file", -1, "file", 4}, // kept: without a dot the file name is the extension
        {'E', "file", -1, "file", 0}, // kept: or the whole path
        {'D', "C:\\dir\\file.txt", -1, "C:\\di", -1}, // kept: one character short, all of them
        {'D', "a\\c", -1, "", -1}, {'D', "C:\\dir\\file.txt", 3, "C:\\", -1}, {'D', "file.txt", -1, "", -1},
        {'D', "\\file.txt", -1, "", -1}, {'D', "", -1, "", -1}, {'D', "abcd\\x", 0, "", -1},
        {'D', "abcd\\x", -2, "", -1}, {'D', "abcd/", INT_MAX, "abc", -1}, {'W', "dir\\file.txt", -1, "dir\\file", -1},
        {'W', "a.b.c", -1, "a.b", -1}, {'W', "dir\\file.txt", 3, "dir", -1},
        {'W', "dir\\file", -1, "dir", -1}, // kept: a name without a dot is removed
        {'W', "\\file", -1, "", -1}, {'W', "dir\\", -1, "dir\\", -1}, {'W', "dir\\x.", -1, "dir\\x.", -1},
        {'W', "", -1, "", -1}, {'W', "file", -1, "file", -1}, {'W', "file", 2, "fi", -1}, {'W', "a.b", -2, "", -1},
        {'W', "file", -2, "", -1}, {'W', "a.b", INT_MAX, "a", -1},
        // clang-format on
    };
    for (auto const & [part, rowPath, max, rowExpected, offset] : rows)
    {
        SCOPED_TRACE(testing::Message() << part << " of " << rowPath << " max " << max);
        auto const path = Text<TypeParam>(rowPath), expected = Text<TypeParam>(rowExpected);
        Buffer<TypeParam> out(expected.size() + 1);
        auto const withPlace = part == 'N' ? Api<TypeParam>::FileName : Api<TypeParam>::Extension;
        auto const plain = part == 'D' ? Api<TypeParam>::Directory : Api<TypeParam>::WithoutExtension;
        TypeParam const * begin = nullptr;
        if (part == 'N' || part == 'E')
            begin = withPlace(path.c_str(), out.data(), max);
        else
            plain(path.c_str(), out.data(), max);
        EXPECT_EQ(out.Content(), expected);
        EXPECT_EQ(begin, offset < 0 ? nullptr : path.c_str() + offset);
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
    auto const isSame = [](char const * first, char const * second)
    { return Api<TypeParam>::IsSamePath(Text<TypeParam>(first).c_str(), Text<TypeParam>(second).c_str()); };
    EXPECT_TRUE(isSame("C:\\A\\B", "c:\\a\\b") && isSame("", ""));
    EXPECT_FALSE(isSame("C:/a", "C:\\a") || isSame("a\\.\\b", "a\\b") || isSame("", "a") || isSame("a", "")); // kept
}

TYPED_TEST(Path, FilesAreOpenedClosedAndFound)
{
    char const * const folder = std::getenv("VEK_TEST_TMP");
    std::string const narrow = std::string(folder ? folder : ".") + "/text-path.tmp";
    auto const name = Text<TypeParam>(narrow.c_str());
    remove(narrow.c_str());
    auto const open = [&name](char const * mode)
    { return Api<TypeParam>::Open(name.c_str(), Text<TypeParam>(mode).c_str()); };
    EXPECT_FALSE(Api<TypeParam>::Exist(name.c_str()));
    EXPECT_EQ(open("rb"), nullptr);
    for (char const * mode : {"wb", "rb", "  rb"})
    {
        FILE * const file = open(mode);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(mode[0] == 'w' ? fputc('x', file) : fgetc(file), 'x') << mode;
        Api<TypeParam>::Close(file);
        EXPECT_TRUE(Api<TypeParam>::Exist(name.c_str()));
    }
    for (char const * mode : {"", "q", "b", "r?", "r%s", " "}) // modes the runtime ends a program for
        EXPECT_EQ(open(mode), nullptr) << mode;
    EXPECT_EQ(Api<TypeParam>::Open(nullptr, name.c_str()), nullptr);
    EXPECT_EQ(Api<TypeParam>::Open(name.c_str(), nullptr), nullptr);
    EXPECT_FALSE(Api<TypeParam>::Exist(nullptr));
    for (char const * none : {"", "."}) // a directory can't be opened
        EXPECT_FALSE(Api<TypeParam>::Exist(Text<TypeParam>(none).c_str())) << none;
    remove(narrow.c_str());
}

TEST(PlatformPath, Relative)
{
    std::wstring const root = L"C:\\";
    std::wstring deep = root;
    for (int i = 0; i < 127; ++i)
        deep += L"a\\";
    // empty: refused
    std::tuple<std::wstring, unsigned long, std::wstring, std::wstring> const rows[] = {
        {L"C:\\a\\b", DIRECTORY, L"C:\\a\\c\\d.txt", L"..\\c\\d.txt"},
        {L"C:\\a\\b.txt", PLAIN_FILE, L"C:\\a\\d.txt", L".\\d.txt"},
        {L"C:\\a", DIRECTORY, L"D:\\a", L""},
        {deep, DIRECTORY, L"C:\\b", L""}, // the way back would be longer than the buffer
        {deep, DIRECTORY, root, L""},
        {root + std::wstring(257, L'x'), DIRECTORY, L"C:\\b", L""},
        {L"C:\\b", DIRECTORY, root + std::wstring(5000, L'x'), L""},
        // where the platform's routine would look behind the end of a path
        {L"C:\\a\\b:", PLAIN_FILE, L"C:\\a\\c", L"..\\c"},
        {L"C:\\a\\b", PLAIN_FILE, L"C:\\a\\c:", L".\\c:"},
        {L"C:\\a\\b", PLAIN_FILE, L"C:\\a\\cd:", L".\\cd:"},
        {L"C:", DIRECTORY, L"C:\\x", L".\\x"},
        {L"C:", PLAIN_FILE, L"C:\\x", L".\\x"},
        {L"ab", DIRECTORY, L"AB\\x", L".\\x"},
        {L"ab", DIRECTORY, L"ab\\", L"."},
        {L"\\\\", PLAIN_FILE, L"\\\\", L"."},
        {L":\\", PLAIN_FILE, L":\\\\b", L".\\b"},
        // a directory of two characters that doesn't begin the other path as a whole component
        {L".\\", DIRECTORY, L".\\b", L"\\b"},
        {L"a\\", DIRECTORY, L"a\\", L"\\"},
        {L"a:", DIRECTORY, L"a:b", L"."},
    };
    for (auto const & [from, fromAttributes, to, expected] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(from.substr(0, 12) + L" to " + to.substr(0, 12)));
        Buffer<wchar_t> out(260);
        CVekString<wchar_t> string(L"before");
        bool const made = !expected.empty();
        FillStack(L'\\');
        EXPECT_EQ(VekGetRelativePathT(out.data(), from.c_str(), fromAttributes, to.c_str(), 0), made);
        EXPECT_EQ(out.Content(), expected);
        FillStack(L':');
        EXPECT_EQ(VekGetRelativePathT(string, from.c_str(), fromAttributes, to.c_str(), 0), made);
        EXPECT_EQ(Text(string), made ? expected : L"before");
    }
    wchar_t out[260];
    EXPECT_FALSE(VekGetRelativePathT(out, nullptr, 0, L"C:\\a", 0));
    EXPECT_FALSE(VekGetRelativePathT(out, L"C:\\a", 0, nullptr, 0));
}

TEST(PlatformPath, Absolute)
{
    std::wstring const longName(300, L'x'), longBase = L"C:\\" + longName, tooLong(1100, L'x');
    std::tuple<wchar_t const *, wchar_t const *, bool, wchar_t const *> const rows[] = {
        // clang-format off
        {L"..\\x", L"C:\\a\\b", true, L"C:\\a\\x"}, {L".\\x\\..\\y", L"C:\\a", true, L"C:\\a\\y"},
        {L"C:\\q", L"C:\\a", true, L"C:\\a\\C:\\q"}, // kept: joined although absolute already
        {longName.c_str(), L"C:\\a", false, longName.c_str()}, {L"x", longName.c_str(), false, L"x"},
        {L"..\\..\\..\\..\\x", L"C:\\a", true, L"C:\\x"}, {L"..\\y", longBase.c_str(), true, L"C:\\y"},
        {L"..\\y", tooLong.c_str(), false, L"..\\y"},
        // clang-format on
    };
    for (auto const & [rowPath, base, result, expected] : rows)
    {
        CVekString<wchar_t> path(rowPath);
        EXPECT_EQ(VekMakePathAbsolute(path, CVekString<wchar_t>(base)), result) << Text(path);
        EXPECT_EQ(Text(path), expected);
    }
}

TEST(PlatformPath, FailsWithoutMemoryForTheResult)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "allocations fail on demand in the guarded build only";
    CVekString<wchar_t> path(L"file.txt"), base(L"C:\\dir"), relative(L"before");
    VekGuard::FailFrom(1);
    bool const isMade = VekMakePathAbsolute(path, std::move(base)) ||
                        VekGetRelativePathT(relative, L"C:\\a\\b", DIRECTORY, L"C:\\a\\c\\d.txt", 0);
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_FALSE(isMade);
    EXPECT_EQ(Text(path) + Text(relative), L"file.txtbefore");
}

} // namespace
