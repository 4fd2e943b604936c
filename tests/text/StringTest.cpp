#include "text/TextKit.h"

#include <climits>
#include <random>
#include <tuple>
#include <type_traits>
#include <utility>

namespace
{

static_assert(sizeof(CVekString<char>) == sizeof(void *) && sizeof(CVekString<wchar_t>) == sizeof(void *));
static_assert(!std::is_constructible_v<bool, CVekString<wchar_t>>, "if (string) would always be true");

template <class T>
class String : public testing::Test
{
protected:
    using Std = std::basic_string<T>;
    using Vek = CVekString<T>;

    static Vek Make(char const * ascii) { return Vek(Text<T>(ascii).c_str()); }
    // The three integers in front of the characters.
    static int * Header(Vek & string)
    {
        return reinterpret_cast<int *>(const_cast<T *>(static_cast<T const *>(string))) - 3;
    }
    static std::vector<int> Fields(Vek & string) { return {Header(string), Header(string) + 3}; }
    static void ExpectValid(Vek const & string, Std const & expected)
    {
        ASSERT_EQ(string.GetLength(), static_cast<int>(expected.size()));
        ASSERT_LE(string.GetLength(), string.GetCapacity());
        ASSERT_EQ(Std(static_cast<T const *>(string), expected.size() + 1), Std(expected.c_str(), expected.size() + 1));
    }
};
TYPED_TEST_SUITE(String, BothWidths);

using Fields = std::vector<int>;

TYPED_TEST(String, HeaderStandsInFrontOfTheCharacters)
{
    CVekString<TypeParam> string;
    EXPECT_EQ(this->Fields(string), (Fields{0, 0, 0}));
    string.Assign(Text<TypeParam>("abc").c_str());
    EXPECT_EQ(this->Fields(string), (Fields{3, 4, 0}));
    this->Header(string)[2] = 10; // grow-by
    string.Append(Text<TypeParam>("de").c_str());
    EXPECT_EQ(this->Fields(string), (Fields{5, 16, 10})) << "Append: grow-by + length + count + 1";
    string.AppendFormat(Text<TypeParam>("%012d").c_str(), 7);
    EXPECT_EQ(this->Fields(string), (Fields{17, 18, 10})) << "kept: AppendFormat adds no grow-by";
    string.AssignPart(Text<TypeParam>("01234567890123456789").c_str(), 1, 18);
    EXPECT_EQ(this->Fields(string), (Fields{18, 29, 10})) << "AssignPart: grow-by + count + 1";
    string.Assign(Text<TypeParam>("012345678901234567890123456789").c_str());
    EXPECT_EQ(this->Fields(string), (Fields{30, 31, 10})) << "kept: Assign adds no grow-by";
    CVekString<TypeParam> copy(string);
    EXPECT_EQ(this->Fields(copy), (Fields{30, 31, 0}));
    EXPECT_NE(static_cast<TypeParam const *>(copy), static_cast<TypeParam const *>(string));
    EXPECT_TRUE(string.Reserve(0, true));
    EXPECT_EQ(this->Fields(string), (Fields{0, 0, 0}));
}

TYPED_TEST(String, Reserve)
{
    std::tuple<int, bool, bool, char const *, int> const rows[] = {
        // clang-format off
        {20, true, true, "abcdef", 20}, {20, false, true, "", 20}, {7, true, true, "abcdef", 7},
        {4, true, true, "abc", 4}, // kept: one character less than the capacity
        {0, true, true, "", 0}, {-1, true, false, "abcdef", 7}, {INT_MIN, false, false, "abcdef", 7},
        // clang-format on
    };
    for (auto const & [capacity, keep, result, text, newCapacity] : rows)
    {
        SCOPED_TRACE(testing::Message() << capacity << (keep ? " keep" : ""));
        auto string = this->Make("abcdef");
        EXPECT_EQ(string.Reserve(capacity, keep), result);
        this->ExpectValid(string, Text<TypeParam>(text));
        EXPECT_EQ(string.GetCapacity(), newCapacity);
    }
}

TYPED_TEST(String, ConstructionMoveAndSwap)
{
    CVekString<TypeParam> const nothing(static_cast<TypeParam const *>(nullptr));
    this->ExpectValid(nothing, {});
    TypeParam const raw[] = {'a', 'b', 'c'}; // no terminator
    CVekString<TypeParam> string(raw, 3);
    this->ExpectValid(string, Text<TypeParam>("abc"));
    this->ExpectValid(CVekString<TypeParam>(raw, -3), {});
    this->ExpectValid(CVekString<TypeParam>(nullptr, 3), {});

    CVekString<TypeParam> taken(std::move(string));
    this->ExpectValid(taken, Text<TypeParam>("abc"));
    this->ExpectValid(string, {}); // a string that was moved from stays usable
    EXPECT_EQ(string.Find(raw), -1);
    EXPECT_EQ(string.Compare(Text<TypeParam>("").c_str()), 0);
    string.MoveCharacters(0, 1, 1);
    this->ExpectValid(CVekString<TypeParam>(string), {});
    string.Append(taken);
    string.Append(Text<TypeParam>("d").c_str());
    taken = std::move(string);
    this->ExpectValid(taken, Text<TypeParam>("abcd"));
    string.Swap(taken);
    this->ExpectValid(string, Text<TypeParam>("abcd"));
}

TYPED_TEST(String, PartsAreCutToTheSource)
{
    std::tuple<int, int, char const *> const rows[] = {
        {0, 0, "abcdef"},    {2, 0, "cdef"},         {2, 3, "cde"}, {5, 100, "f"},    {6, 0, ""},  {0, 7, "abcdef"},
        {3, INT_MAX, "def"}, {INT_MAX, INT_MAX, ""}, {-1, 3, ""},   {INT_MIN, 0, ""}, {0, -1, ""}, {2, INT_MIN, ""}};
    auto const source = Text<TypeParam>("abcdef");
    for (auto const & [start, count, part] : rows)
    {
        SCOPED_TRACE(testing::Message() << start << ", " << count);
        std::vector<TypeParam> const exact(source.c_str(), source.c_str() + source.size() + 1);
        auto const expected = Text<TypeParam>(part);
        auto assigned = this->Make("x"), appended = this->Make("xy");
        assigned.AssignPart(exact.data(), start, count);
        this->ExpectValid(assigned, expected);
        assigned.AssignPart(CVekString<TypeParam>(exact.data()), start, count);
        this->ExpectValid(assigned, expected);
        appended.Append(exact.data(), start, count);
        ASSERT_TRUE(appended.Reserve(40, true)); // the quick way, with room
        appended.Append(exact.data(), start, count);
        this->ExpectValid(appended, Text<TypeParam>("xy") + expected + expected);
    }
    TypeParam const raw[] = {'a', 'b'};
    CVekString<TypeParam> string;
    string.Append(raw, 0, 2); // no terminator needed when the count is reached before
    ASSERT_TRUE(string.Reserve(20, true));
    string.Append(raw, 0, 2);
    this->ExpectValid(string, Text<TypeParam>("abab"));
    string.AssignPart(static_cast<TypeParam const *>(nullptr), 0, 1);
    string.Append(nullptr);
    this->ExpectValid(string, {});
}

TYPED_TEST(String, AppendFormat)
{
    auto const format = Text<TypeParam>("%s|%d|%c");
    for (size_t length : {0, 1, 250, 251, 252, 253, 5000}) // around the size of the buffer on the stack
    {
        SCOPED_TRACE(length);
        std::basic_string<TypeParam> const argument(length, TypeParam('q'));
        auto string = this->Make("=");
        string.AppendFormat(format.c_str(), argument.c_str(), -5, 'x');
        this->ExpectValid(string, Text<TypeParam>("=") + argument + Text<TypeParam>("|-5|x"));
        EXPECT_EQ(string.GetCapacity(), static_cast<int>(length) + 7);
    }
    auto string = this->Make("a");
    string.AppendFormat(Text<TypeParam>("b%cc").c_str(), 0);
    this->ExpectValid(string, Text<TypeParam>("ab")); // a formatted zero ends the text
    string.AppendFormat(nullptr);
    int count;
    this->Make("").AppendFormat(Text<TypeParam>("%n").c_str(), &count); // a runtime that refuses it ends no process
}

TYPED_TEST(String, SearchesAtTheEdges) // of "abcABCabc"
{
    using Find = int (CVekString<TypeParam>::*)(TypeParam const *, int, bool) const;
    Find const FIND = &CVekString<TypeParam>::Find, REVERSE = &CVekString<TypeParam>::ReverseFind,
               ONE_OF = &CVekString<TypeParam>::FindOneOf, LAST_OF = &CVekString<TypeParam>::ReverseFindOneOf;
    std::tuple<Find, char const *, int, bool, int> const rows[] = {
        {FIND, "", 0, true, -1},           {FIND, nullptr, 0, true, -1},   {FIND, "c", 9, true, -1},
        {FIND, "a", INT_MAX, true, -1},    {FIND, "a", -5, true, 0},       {FIND, "abcABCabcd", 0, true, -1},
        {REVERSE, "abc", -1, true, 6},     {REVERSE, "abc", 9, true, -1},  {REVERSE, "a", -2, true, -1},
        {REVERSE, "a", INT_MIN, true, -1}, {REVERSE, "", -1, true, -1},    {ONE_OF, "c", 9, true, -1},
        {ONE_OF, "", 0, true, -1},         {ONE_OF, nullptr, 0, true, -1}, {ONE_OF, "a", INT_MIN, true, 0},
        {LAST_OF, "CB", -1, true, 5},      {LAST_OF, "a", 9, true, -1},    {LAST_OF, "a", -7, true, -1}};
    auto const string = this->Make("abcABCabc");
    for (auto const & [operation, rowPattern, start, caseSensitive, result] : rows)
    {
        SCOPED_TRACE(testing::Message() << "start " << start << " result " << result << " of "
                                        << (rowPattern ? rowPattern : "null"));
        auto const text = Text<TypeParam>(rowPattern ? rowPattern : "");
        TypeParam const * const pattern = rowPattern ? text.c_str() : nullptr;
        EXPECT_EQ((string.*operation)(pattern, start, caseSensitive), result);
    }
}

TYPED_TEST(String, MoveCharacters) // in "abcdef" with a capacity of 10
{
    std::tuple<int, int, int, char const *, int> const rows[] = {
        // clang-format off
        {0, 3, 2, "abcabf", 6}, {3, 0, 2, "decdef", 6}, {1, 2, 3, "abbcdf", 6}, {2, 1, 3, "acdeef", 6},
        {3, 1, 3, "adef", 4}, {2, 4, 4, "abcdcdef", 8}, {2, 6, 4, "abcdefcdef", 10}, {2, 7, 4, "abcdef", 6},
        {3, 1, 100, "adef", 4}, {3, 1, INT_MAX, "adef", 4}, {0, 5, 3, "abcdea", 6}, {4, 8, 2, "abcdef", 10},
        {2, 2, 3, "abcdef", 6}, {1, 3, 0, "abcdef", 6}, {6, 0, 1, "abcdef", 6}, {-1, 3, 2, "abcdef", 6},
        {1, -3, 2, "abcdef", 6}, {1, 3, -2, "abcdef", 6}, {0, INT_MAX, 2, "abcdef", 6},
        {INT_MAX, 0, INT_MAX, "abcdef", 6}, {INT_MIN, INT_MIN, INT_MIN, "abcdef", 6},
        // clang-format on
    };
    for (auto const & [from, to, count, text, length] : rows)
    {
        SCOPED_TRACE(testing::Message() << from << " to " << to << " count " << count);
        auto string = this->Make("abcdef");
        ASSERT_TRUE(string.Reserve(10, true));
        string.MoveCharacters(from, to, count);
        EXPECT_EQ(Text(string), Text<TypeParam>(text));
        EXPECT_EQ(string.GetLength(), length);
        EXPECT_EQ(static_cast<TypeParam const *>(string)[string.GetLength()], TypeParam(0));
    }
}

template <class T>
std::basic_string<T> Folded(std::basic_string<T> text, bool caseSensitive)
{
    for (T & unit : text)
        if (!caseSensitive && unit >= T('a') && unit <= T('z'))
            unit = static_cast<T>(unit - 32);
    return text;
}

// Random operations, and searches for patterns that are in the text or nearly are.
TYPED_TEST(String, AgainstStdString)
{
    using Model = std::basic_string<TypeParam>;
    std::mt19937 random(7);
    auto const below = [&random](size_t limit) { return static_cast<int>(random() % (limit + 1)); };
    auto const unit = [&random] { return static_cast<TypeParam>("aAbB@`\xEB[{"[random() % 9]); };
    auto const format = Text<TypeParam>("%s,");
    CVekString<TypeParam> string;
    Model model;
    for (int step = 0; step < 20000; ++step)
    {
        SCOPED_TRACE(step);
        Model source;
        for (int left = below(step % 50 == 0 ? 700 : 20); left > 0; --left)
            source += unit();
        int const start = below(source.size()), count = below(source.size());
        auto const first = static_cast<size_t>(start);
        auto const part = [&](Model const & of)
        { return of.size() < first ? Model() : of.substr(first, count ? static_cast<size_t>(count) : Model::npos); };
        // clang-format off
        auto const own = static_cast<size_t>(below(model.size())); // its own characters as a source
        auto const tail = model.size() < first ? 0 : model.size() - first;
        switch (below(13))
        {
        case 0: string.Assign(source.c_str()); model = source; break;
        case 1: string.AssignPart(source.c_str(), start, count); model = part(source); break;
        case 2: string.Append(source.c_str(), start, count); model += part(source); break;
        case 3: string.Append(CVekString<TypeParam>(source.c_str())); model += source; break;
        case 4: string.AppendFormat(format.c_str(), source.c_str()); model += source + TypeParam(','); break;
        case 5: ASSERT_TRUE(string.Reserve(string.GetLength() + 1 + below(40), true)); break;
        case 6: string = CVekString<TypeParam>(string); break;
        case 7: string.AssignPart(string, start, count); model = part(model); break;
        case 8: string.MoveCharacters(start, 0, INT_MAX); model.erase(0, model.size() > first ? first : 0); break;
        case 9: string.Append(string + own, 0, 1 + count); model += model.substr(own, 1 + static_cast<size_t>(count)); break;
        case 10: string.AppendFormat(format.c_str(), string + tail); model += model.substr(tail) + TypeParam(','); break;
        case 11: string.Assign(string + own); model.erase(0, own); break;
        case 12: string.Append(string); model += model; break;
        default: if (model.size() > 1500) { string.Assign(static_cast<TypeParam const *>(nullptr)); model.clear(); }
        }
        // clang-format on
        this->ExpectValid(string, model);
        if (this->HasFatalFailure())
            return;
        if (model.empty())
            continue;
        int const at = below(model.size() - 1);
        auto const place = static_cast<size_t>(at);
        auto pattern = model.substr(static_cast<size_t>(below(model.size() - 1)), 1 + random() % 24);
        if (random() % 4 == 0)
            pattern[random() % pattern.size()] = unit();
        for (bool caseSensitive : {false, true})
        {
            auto const text = Folded(model, caseSensitive), sought = Folded(pattern, caseSensitive);
            std::vector<size_t> const expected = {text.find(sought, place), text.rfind(sought, place),
                                                  text.find_first_of(sought, place), text.find_last_of(sought, place)};
            TypeParam const * const given = pattern.c_str();
            std::vector<int> const found = {
                string.Find(given, at, caseSensitive), string.ReverseFind(given, at, caseSensitive),
                string.FindOneOf(given, at, caseSensitive), string.ReverseFindOneOf(given, at, caseSensitive)};
            ASSERT_EQ(found, std::vector<int>(expected.begin(), expected.end()))
                << testing::PrintToString(pattern) << " at " << at << " case " << caseSensitive;
        }
    }
}

} // namespace
