#include "text/TextKit.h"

#include "support/GuardHeap.h"
#include "support/LogCapture.h"

#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <random>
#include <tuple>

namespace
{

template <class T>
class StringFunctions : public testing::Test
{
};
TYPED_TEST_SUITE(StringFunctions, BothWidths);

TYPED_TEST(StringFunctions, CopyAndCatTakeAtMostMaxCharacters)
{
    std::tuple<int, char const *> const rows[] = {{3, "abc"},    {-1, "abcdef"},      {0, ""},  {6, "abcdef"},
                                                  {7, "abcdef"}, {INT_MAX, "abcdef"}, {-2, ""}, {INT_MIN, ""}};
    auto const source = Text<TypeParam>("abcdef");
    for (auto const & [max, rowExpected] : rows)
    {
        SCOPED_TRACE(max);
        auto const expected = Text<TypeParam>(rowExpected);
        Buffer<TypeParam> copy(expected.size() + 1), joined(expected.size() + 3);
        Api<TypeParam>::Copy(copy.data(), source.c_str(), max);
        EXPECT_EQ(copy.Content(), expected);
        Api<TypeParam>::Copy(joined.data(), Text<TypeParam>("xy").c_str(), -1);
        Api<TypeParam>::Cat(joined.data(), source.c_str(), max);
        EXPECT_EQ(joined.Content(), Text<TypeParam>("xy") + expected);
    }
    Buffer<TypeParam> target(7);
    Api<TypeParam>::Plain(target.data(), nullptr);
    EXPECT_EQ(target.Content(), Text<TypeParam>("")) << "a null source empties the target";
    Api<TypeParam>::Plain(nullptr, source.c_str());
    Api<TypeParam>::Plain(nullptr, nullptr);
    Api<TypeParam>::Plain(target.data(), source.c_str());
    EXPECT_EQ(target.Content(), source);
    EXPECT_EQ(Api<TypeParam>::Length(source.c_str()), 6);
}

template <class A, class B>
void ExpectOrder(A const & a, B const & b, int order)
{
    EXPECT_TRUE((a == b) == (order == 0) && (a != b) == (order != 0) && (a < b) == (order < 0));
    EXPECT_TRUE((a > b) == (order > 0) && (a <= b) == (order <= 0) && (a >= b) == (order >= 0));
}

TYPED_TEST(StringFunctions, Compare)
{
    // the last: at most two characters, without case
    std::tuple<char const *, char const *, int, int, int> const rows[] = {
        // clang-format off
        {"abc", "ABD", 1, -1, 0}, {"abc", "ab", 1, 1, 0}, {"ab", "abc", -1, -1, 0}, {"", "", 0, 0, 0},
        {"", "a", -1, -1, -1}, {"a", "", 1, 1, 1}, {"Zq", "zQ", -1, 0, 0}, {"@", "`", -1, -1, -1}, {"{", "[", 1, 1, 1},
        {"x1y", "X1Z", 1, -1, 0},
        {"[", "a", -1, 1, 1}, // folded to upper case, [ is behind A
        {"the same beginning of 25 x", "the same beginning of 25 Y", 1, -1, 0},
        // clang-format on
    };
    for (auto const & [rowFirst, rowSecond, exact, noCase, twoOnly] : rows)
    {
        SCOPED_TRACE(testing::Message() << '"' << rowFirst << "\" and \"" << rowSecond << '"');
        auto const first = Text<TypeParam>(rowFirst), second = Text<TypeParam>(rowSecond);
        EXPECT_EQ(Api<TypeParam>::Compare(first.c_str(), second.c_str(), true), exact);
        EXPECT_EQ(Api<TypeParam>::Compare(first.c_str(), second.c_str(), false), noCase);
        EXPECT_EQ(Api<TypeParam>::CompareCounted(first.c_str(), second.c_str(), 2, false), twoOnly);
        EXPECT_EQ(Api<TypeParam>::CompareCounted(first.c_str(), second.c_str(), INT_MAX, true), exact);
        for (int count : {0, -1, INT_MIN})
            EXPECT_EQ(Api<TypeParam>::CompareCounted(first.c_str(), second.c_str(), count, true), 0) << count;
        CVekString<TypeParam> const left(first.c_str()), right(second.c_str());
        for (bool caseSensitive : {true, false}) // kept: the argument is the left operand
        {
            EXPECT_EQ(right.Compare(left, caseSensitive), caseSensitive ? exact : noCase);
            EXPECT_EQ(right.Compare(first.c_str(), caseSensitive), caseSensitive ? exact : noCase);
        }
        ExpectOrder(left, right, exact); // operators have theirs as they stand
        ExpectOrder(left, second.c_str(), exact);
        ExpectOrder(first.c_str(), right, exact);
    }
    TypeParam const * const none = nullptr;
    CVekString<TypeParam> const empty, full(Text<TypeParam>("a").c_str());
    EXPECT_TRUE(empty.Compare(none) == 0 && full.Compare(none) == -1 && empty == none && full > none && none < full);
}

// Beside a walk of one character a step; now and then over borders of pages.
TYPED_TEST(StringFunctions, CompareOfAnyLength)
{
    std::mt19937 random(3);
    auto const unit = [&random] { return static_cast<TypeParam>("aAzZ@`[{\xE1\x7F"[random() % 10]); };
    auto const flipped = [](TypeParam of)
    { return (of | 32) >= 'a' && (of | 32) <= 'z' ? static_cast<TypeParam>(of ^ 32) : of; };
    for (int round = 0; round < 4000; ++round)
    {
        bool const caseSensitive = random() % 2;
        size_t const length = round % 100 ? random() % 80 : 6000;
        std::vector<TypeParam> first(length + 1), second(random() % 4 ? length + 1 : random() % (length + 1) + 1);
        for (size_t i = 0; i < length; ++i)
            first[i] = unit();
        for (size_t i = 0; i + 1 < second.size(); ++i)
            second[i] = random() % (2 * length) == 0 ? unit() : caseSensitive ? first[i] : flipped(first[i]);
        int const count = random() % 2 ? INT_MAX : static_cast<int>(random() % (length + 20));
        auto const key = [caseSensitive](TypeParam of) {
            return of == 0 ? INT_MIN : caseSensitive || of < 'a' || of > 'z' ? int(of) : of - 32;
        };
        size_t at = 0;
        while (first[at] && key(first[at]) == key(second[at]))
            ++at;
        int const order = (key(first[at]) > key(second[at])) - (key(first[at]) < key(second[at]));
        ASSERT_EQ(Api<TypeParam>::CompareCounted(first.data(), second.data(), count, caseSensitive),
                  at < static_cast<size_t>(count) ? order : 0)
            << "of " << length << ", different at " << at;
    }
}

TEST(StringFunctionsWidth, KeptNarrowCharactersAreComparedSigned)
{
    EXPECT_EQ(VekStrCompareA("a\xE9", "az", true), -1);
    EXPECT_EQ(VekStrCompareW(L"a\x00E9", L"az", true), 1);
    EXPECT_EQ(VekStrCompareW(L"a\xFFE9", L"az", false), 1);
    EXPECT_EQ(VekStrCompareA("a\xE9", "a", true), 1) << "the end sorts before any character";
    EXPECT_EQ(VekStrCompareA("\xE4", "\xC4", false), 1) << "only a-z are folded";
    EXPECT_EQ(CVekString<char>("a\xE9").Compare("az"), 1);
    EXPECT_EQ(CVekString<wchar_t>(L"a\x00E9").Compare(L"az"), -1);
}

int PrintList(wchar_t * buffer, int size, wchar_t const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const length = VekStrPrintfW(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

TYPED_TEST(StringFunctions, PrintfIsBounded)
{
    std::tuple<int, int, char const *> const rows[] = {
        {9, 8, "abc-0042"}, {100, 8, "abc-0042"}, {8, -1, "abc-004"}, {1, -1, ""}};
    auto const format = Text<TypeParam>("%s-%04d"), argument = Text<TypeParam>("abc");
    for (auto const & [size, result, text] : rows)
    {
        SCOPED_TRACE(size);
        Buffer<TypeParam> buffer(static_cast<size_t>(size));
        EXPECT_EQ(Api<TypeParam>::Printf(buffer.data(), size, format.c_str(), argument.c_str(), 42), result);
        EXPECT_EQ(buffer.Content(), Text<TypeParam>(text));
    }
    for (int size : {0, -1, INT_MIN})
        EXPECT_EQ(Api<TypeParam>::Printf(nullptr, size, format.c_str(), argument.c_str(), 42), -1) << size;
    EXPECT_EQ(Api<TypeParam>::PrintfLength(format.c_str(), argument.c_str(), 42), 8);
    EXPECT_EQ(Api<TypeParam>::PrintfLength(Text<TypeParam>("").c_str()), 0);
    wchar_t buffer[16];
    EXPECT_EQ(PrintList(buffer, 16, L"%s %d %hs", L"wide", 7, "nar"), 10);
    EXPECT_STREQ(buffer, L"wide 7 nar") << "from a started list";
}

// What could be taken for a list: it is a pointer to char, too, which 0 and text in quotes turn into.
TEST(StringFunctionsWidth, PrintfTakesALoneArgument)
{
    char narrow[16];
    wchar_t wide[16];
    EXPECT_EQ(VekStrPrintfA(narrow, 16, "%d items", 0), 7);
    EXPECT_STREQ(narrow, "0 items");
    EXPECT_EQ(VekStrPrintfW(wide, 16, L"%d items", 0), 7);
    EXPECT_STREQ(wide, L"0 items");
    EXPECT_EQ(VekStrPrintfA(narrow, 16, "[%s]", "abc"), 5);
    EXPECT_STREQ(narrow, "[abc]");
    EXPECT_EQ(VekStrPrintfW(wide, 16, L"[%hs]", "abc"), 5);
    EXPECT_STREQ(wide, L"[abc]");
}

TYPED_TEST(StringFunctions, CaseIsChangedOnlyInATerminatedBuffer)
{
    using A = Api<TypeParam>;
    std::tuple<void (*)(TypeParam *, int), int, char const *> const rows[] = {
        {A::ToLower, 6, "ab1_z"}, {A::ToUpper, 6, "AB1_Z"},  {A::ToUpper, 5, "aB1_z"},
        {A::ToLower, 0, "aB1_z"}, {A::ToLower, -1, "aB1_z"}, {A::ToUpper, INT_MIN, "aB1_z"}};
    for (auto const & [change, size, expected] : rows)
    {
        auto text = Text<TypeParam>("aB1_z");
        change(text.data(), size);
        EXPECT_EQ(text, Text<TypeParam>(expected)) << size;
    }
}

TYPED_TEST(StringFunctions, Numbers)
{
    std::tuple<char const *, int, int, unsigned long, double> const rows[] = {
        // clang-format off
        {" \t-12x", 10, -12, static_cast<unsigned long>(-12), -12}, {"0x1f", 0, 0, 31, std::atof("0x1f")}, {"017", 0, 17, 15, 17},
        {"ff", 16, 0, 255, 0}, {"zz", 36, 0, 1295, 0}, {"", 10, 0, 0, 0},
        {"4294967295", 10, INT_MAX, ULONG_MAX, 4294967295.0}, {"99999999999", 10, INT_MAX, ULONG_MAX, 99999999999.0},
        {"1.5e3z", 10, 1, 1, 1500}, {"-.25", 10, 0, 0, -.25}, {"12", 1, 12, 0, 12}, {"12", 37, 12, 0, 12},
        {"12", -10, 12, 0, 12},
        // clang-format on
    };
    for (auto const & [rowText, radix, number, unsignedNumber, real] : rows)
    {
        SCOPED_TRACE(testing::Message() << '"' << rowText << "\" radix " << radix);
        auto const text = Text<TypeParam>(rowText);
        EXPECT_EQ(Api<TypeParam>::ToInt(text.c_str()), number);
        EXPECT_EQ(Api<TypeParam>::ToUInt(text.c_str(), radix), unsignedNumber);
        EXPECT_EQ(Api<TypeParam>::ToFloat(text.c_str()), real) << "as the runtime gives it";
    }
}

TEST(Convert, KeptBySignExtensionAndLowByte)
{
    wchar_t wide[8];
    char narrow[8];
    VekStrAtoW(wide, "a\xE9\x7F\x80");
    EXPECT_EQ(std::wstring(wide), L"a\xFFE9\x7F\xFF80");
    VekStrWtoA(narrow, L"\x20AC\x0141z");
    EXPECT_EQ(std::string(narrow), "\xAC\x41z");
    VekStrCopyA(narrow, nullptr); // only the narrow counted copy checks for null
    VekStrCopyA(nullptr, "x");
    EXPECT_EQ(std::string(narrow), "\xAC\x41z");
    VekStrAtoW(wide, nullptr);
    VekStrWtoA(narrow, nullptr);
    EXPECT_TRUE(wide[0] == 0 && narrow[0] == 0);
    VekStrAtoW(nullptr, "a");
    VekStrWtoA(nullptr, L"a");
}

template <class T>
std::wstring Units(CVekString<T> const & text)
{
    std::basic_string<T> const units = Text(text);
    return std::wstring(units.begin(), units.end());
}

TEST(Convert, ToStringsWithAMessageWhenMemoryRunsOut)
{
    std::tuple<std::wstring (*)(), wchar_t const *, wchar_t const *> const rows[] = {
        {[] { return Units(VekCreateStrAtoW("a\xE9")); }, L"a\xFFE9", L"VekCreateStrAtoW"},
        {[] { return Units(VekCreateStrWtoA(L"\x20ACz")); }, L"\xFFACz", L"VekCreateStrWtoA"},
        {[] { return Units(VekCreateStrTtoW(L"\x20AC")); }, L"\x20AC", L"VekCreateStrTtoW"},
        {[] { return Units(VekCreateStrTtoA(L"\x20ACz")); }, L"\xFFACz", L"VekCreateStrTtoA"},
        {[] { return Units(VekCreateStrWtoT(L"\x20AC")); }, L"\x20AC", L"VekCreateStrWtoT"},
        {[] { return Units(VekCreateStrAtoT("a\xE9")); }, L"a\xFFE9", L"VekCreateStrAtoT"},
    };
    LogCapture log;
    for (auto const & [make, text, name] : rows)
    {
        EXPECT_EQ(make(), text) << testing::PrintToString(name);
        EXPECT_EQ(log.Take(), L"");
        VekGuard::FailAllocation(1); // in the guarded build only
        EXPECT_EQ(make(), VekGuard::Active ? L"" : text);
        EXPECT_EQ(VekGuard::FailReset(), VekGuard::Active);
        EXPECT_EQ(log.Take(), VekGuard::Active ? std::wstring(name) + L" --> Failed to allocate buffre" : L"");
    }
    EXPECT_EQ(VekCreateStrWtoA(L"a\x0100z").GetLength(), 1) << "a low byte of 0 ends the text";
    EXPECT_TRUE(VekCreateStrAtoW("").IsEmpty() && log.Take().empty());
}

} // namespace
