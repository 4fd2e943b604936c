#include "text/TextKit.h"

#include "support/GuardHeap.h"

#include <climits>
#include <random>
#include <utility>

namespace
{

static_assert(sizeof(CVekString<char>) == sizeof(void *) && sizeof(CVekString<wchar_t>) == sizeof(void *));

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
    struct Row
    {
        int capacity;
        bool keep;
        bool result;
        char const * text;
        int newCapacity;
    } const rows[] = {
        {20, true, true, "abcdef", 20},
        {20, false, true, "", 20},
        {7, true, true, "abcdef", 7},
        {4, true, true, "abc", 4}, // kept: one character less than the capacity
        {1, true, true, "", 1},
        {0, true, true, "", 0},
        {-1, true, false, "abcdef", 7},
        {INT_MIN, false, false, "abcdef", 7},
        {INT_MAX, true, false, "abcdef", 7},
        {INT_MAX - 1, false, false, "abcdef", 7},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.capacity << (row.keep ? " keep" : ""));
        auto string = this->Make("abcdef");
        // The largest sizes may be had where addresses are plenty.
        if (sizeof(void *) == 8 && sizeof(TypeParam) == 1 && row.capacity > INT_MAX - 2 &&
            string.Reserve(row.capacity, true))
            continue;
        EXPECT_EQ(string.Reserve(row.capacity, row.keep), row.result);
        this->ExpectValid(string, Text<TypeParam>(row.text));
        EXPECT_EQ(string.GetCapacity(), row.newCapacity);
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
    CVekString<TypeParam> copyOfNothing(string);
    this->ExpectValid(copyOfNothing, {});
    string.Append(taken);
    string.Append(Text<TypeParam>("d").c_str());
    taken = std::move(string);
    this->ExpectValid(taken, Text<TypeParam>("abcd"));
    string.Swap(taken);
    this->ExpectValid(string, Text<TypeParam>("abcd"));
}

TYPED_TEST(String, PartsAreCutToTheSource)
{
    struct Row
    {
        int start;
        int count;
        char const * part;
    } const rows[] = {
        {0, 0, "abcdef"},
        {2, 0, "cdef"},
        {2, 3, "cde"},
        {5, 1, "f"},
        {5, 100, "f"},
        {6, 0, ""},
        {6, 1, ""},
        {7, 0, ""},
        {0, 6, "abcdef"},
        {0, 7, "abcdef"},
        {0, INT_MAX, "abcdef"},
        {3, INT_MAX, "def"},
        {INT_MAX, INT_MAX, ""},
        {-1, 3, ""},
        {INT_MIN, 0, ""},
        {0, -1, ""},
        {2, INT_MIN, ""},
    };
    auto const source = Text<TypeParam>("abcdef");
    for (Row const & row : rows)
        for (bool fromString : {false, true})
        {
            SCOPED_TRACE(testing::Message() << row.start << ", " << row.count << (fromString ? " of a string" : ""));
            std::vector<TypeParam> const exact(source.c_str(), source.c_str() + source.size() + 1);
            auto assigned = this->Make("x"), appended = this->Make("xy");
            if (fromString)
                assigned.AssignPart(CVekString<TypeParam>(exact.data()), row.start, row.count);
            else
                assigned.AssignPart(exact.data(), row.start, row.count);
            appended.Append(exact.data(), row.start, row.count);
            this->ExpectValid(assigned, Text<TypeParam>(row.part));
            this->ExpectValid(appended, Text<TypeParam>("xy") + Text<TypeParam>(row.part));
            ASSERT_TRUE(appended.Reserve(40, true)); // the quick way, with room
            appended.Append(exact.data(), row.start, row.count);
            this->ExpectValid(appended, Text<TypeParam>("xy") + Text<TypeParam>(row.part) + Text<TypeParam>(row.part));
        }
    TypeParam const raw[] = {'a', 'b'};
    for (int room : {0, 20})
    {
        auto string = this->Make("");
        ASSERT_TRUE(string.Reserve(room, true));
        string.Append(raw, 0, 2); // no terminator needed when the count is reached before
        this->ExpectValid(string, Text<TypeParam>("ab"));
    }
    auto string = this->Make("ab");
    string.AssignPart(static_cast<TypeParam const *>(nullptr), 0, 1);
    string.Append(nullptr);
    this->ExpectValid(string, {});
}

TYPED_TEST(String, ItsOwnCharactersAsSource)
{
    for (int room : {0, 7, 12, 15, 40})
    {
        SCOPED_TRACE(room);
        auto string = this->Make("abcdef");
        ASSERT_TRUE(room == 0 || string.Reserve(room, true));
        string.Append(string, 3, 0);
        this->ExpectValid(string, Text<TypeParam>("abcdefdef"));
        string.Append(static_cast<TypeParam const *>(string) + 1, 0, 3);
        this->ExpectValid(string, Text<TypeParam>("abcdefdefbcd"));
        string.Append(string);
        this->ExpectValid(string, Text<TypeParam>("abcdefdefbcdabcdefdefbcd"));
        string.AppendFormat(Text<TypeParam>("<%s%s>").c_str(), static_cast<TypeParam const *>(string) + 22,
                            static_cast<TypeParam const *>(string) + 23);
        this->ExpectValid(string, Text<TypeParam>("abcdefdefbcdabcdefdefbcd<cdd>"));
        string.AssignPart(string, 3, 4);
        this->ExpectValid(string, Text<TypeParam>("defd"));
        string = string;
        string.Assign(static_cast<TypeParam const *>(string) + 1);
        this->ExpectValid(string, Text<TypeParam>("efd"));
    }
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
    this->ExpectValid(string, Text<TypeParam>("ab"));
}

TYPED_TEST(String, KeptTheArgumentIsTheLeftOperandOfCompare)
{
    struct Row
    {
        char const * string;
        char const * argument;
        bool caseSensitive;
        int result;
    } const rows[] = {
        {"b", "a", true, -1},
        {"a", "b", true, 1},
        {"a", "A", true, -1},
        {"a", "A", false, 0},
        {"ab", "a", true, -1},
        {"a", "ab", true, 1},
        {"", "", true, 0},
        {"", nullptr, true, 0},
        {"a", nullptr, true, -1},
        {"the same beginning of 25 x", "the same beginning of 25 Y", true, -1},
        {"the same beginning of 25 x", "the SAME beginning of 25 Y", false, 1},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << '"' << row.string << "\" with " << (row.argument ? row.argument : "null"));
        auto const string = this->Make(row.string);
        if (!row.argument)
        {
            EXPECT_EQ(string.Compare(static_cast<TypeParam const *>(nullptr), row.caseSensitive), row.result);
            continue;
        }
        EXPECT_EQ(string.Compare(Text<TypeParam>(row.argument).c_str(), row.caseSensitive), row.result);
        EXPECT_EQ(string.Compare(this->Make(row.argument), row.caseSensitive), row.result);
    }
}

TYPED_TEST(String, FindRows)
{
    enum Operation
    {
        FIND,
        REVERSE,
        ONE_OF,
        REVERSE_ONE_OF
    };
    struct Row
    {
        Operation operation;
        char const * pattern;
        int start;
        bool caseSensitive;
        int result;
    } const rows[] = {
        // in "abcABCabc"
        {FIND, "abc", 0, true, 0},
        {FIND, "abc", 1, true, 6},
        {FIND, "abc", 1, false, 3},
        {FIND, "", 0, true, -1},
        {FIND, nullptr, 0, true, -1},
        {FIND, "c", 8, true, 8},
        {FIND, "c", 9, true, -1},
        {FIND, "a", INT_MAX, true, -1},
        {FIND, "a", -5, true, 0},
        {FIND, "abcABCabcd", 0, true, -1},
        {FIND, "{", 0, false, -1},
        {REVERSE, "abc", -1, true, 6},
        {REVERSE, "abc", 5, true, 0},
        {REVERSE, "ABC", 5, false, 3},
        {REVERSE, "abc", 9, true, -1},
        {REVERSE, "bc", 8, true, 7},
        {REVERSE, "a", -2, true, -1},
        {REVERSE, "a", INT_MIN, true, -1},
        {REVERSE, "", -1, true, -1},
        {REVERSE, "x", -1, true, -1},
        {ONE_OF, "CB", 0, true, 4},
        {ONE_OF, "CB", 0, false, 1},
        {ONE_OF, "c", 9, true, -1},
        {ONE_OF, "", 0, true, -1},
        {ONE_OF, nullptr, 0, true, -1},
        {ONE_OF, "a", INT_MIN, true, 0},
        {REVERSE_ONE_OF, "CB", -1, true, 5},
        {REVERSE_ONE_OF, "CB", 4, true, 4},
        {REVERSE_ONE_OF, "B", 8, false, 7},
        {REVERSE_ONE_OF, "a", 9, true, -1},
        {REVERSE_ONE_OF, "a", -7, true, -1},
        {REVERSE_ONE_OF, "xyz", -1, false, -1},
    };
    auto const string = this->Make("abcABCabc");
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << "operation " << row.operation << " pattern "
                                        << (row.pattern ? row.pattern : "null") << " start " << row.start
                                        << (row.caseSensitive ? "" : " without case"));
        auto const text = Text<TypeParam>(row.pattern ? row.pattern : "");
        TypeParam const * const pattern = row.pattern ? text.c_str() : nullptr;
        int const result = row.operation == FIND      ? string.Find(pattern, row.start, row.caseSensitive)
                           : row.operation == REVERSE ? string.ReverseFind(pattern, row.start, row.caseSensitive)
                           : row.operation == ONE_OF  ? string.FindOneOf(pattern, row.start, row.caseSensitive)
                                                      : string.ReverseFindOneOf(pattern, row.start, row.caseSensitive);
        EXPECT_EQ(result, row.result);
    }
}

template <class T>
T Folded(T unit)
{
    return unit >= T('a') && unit <= T('z') ? static_cast<T>(unit - 32) : unit;
}

template <class T>
int NaiveFind(std::basic_string<T> text, std::basic_string<T> pattern, int start, bool caseSensitive)
{
    if (!caseSensitive)
        for (auto * one : {&text, &pattern})
            for (T & unit : *one)
                unit = Folded(unit);
    size_t const found = text.find(pattern, static_cast<size_t>(start));
    return found == text.npos ? -1 : static_cast<int>(found);
}

// All lengths around the blocks of the search, every start, patterns that are in the text and patterns that nearly are.
TYPED_TEST(String, FindAgainstANaiveModel)
{
    std::mt19937 random(20240117);
    auto const alphabets = {std::string("ab"), std::string("aAbB@`"), std::string("kK\xEB[{")};
    for (std::string const & alphabet : alphabets)
        for (size_t length = 0; length <= 70; ++length)
        {
            std::basic_string<TypeParam> text;
            while (text.size() < length)
                text += static_cast<TypeParam>(alphabet[random() % alphabet.size()]);
            CVekString<TypeParam> const string(text.c_str());
            for (int start = 0; start < static_cast<int>(length); ++start)
            {
                auto pattern = text.substr(random() % length, 1 + random() % 9);
                if (random() % 4 == 0)
                    pattern[random() % pattern.size()] = static_cast<TypeParam>(alphabet[random() % alphabet.size()]);
                bool const caseSensitive = random() % 2 == 0;
                ASSERT_EQ(string.Find(pattern.c_str(), start, caseSensitive),
                          NaiveFind(text, pattern, start, caseSensitive))
                    << "length " << length << " start " << start << " pattern length " << pattern.size() << " alphabet "
                    << alphabet << " case " << caseSensitive;
            }
        }
}

TYPED_TEST(String, MoveCharacters)
{
    struct Row
    {
        int from;
        int to;
        int count;
        char const * text;
        int length;
    } const rows[] = {
        // in "abcdef" with a capacity of 10
        {0, 3, 2, "abcabf", 6},
        {3, 0, 2, "decdef", 6},
        {1, 2, 3, "abbcdf", 6},
        {2, 1, 3, "acdeef", 6},
        {3, 1, 3, "adef", 4},
        {2, 4, 4, "abcdcdef", 8},
        {2, 6, 4, "abcdefcdef", 10},
        {2, 7, 4, "abcdef", 6},
        {3, 1, 100, "adef", 4},
        {3, 1, INT_MAX, "adef", 4},
        {0, 5, 3, "abcdea", 6},
        {4, 8, 2, "abcdef", 10},
        {2, 2, 3, "abcdef", 6},
        {1, 3, 0, "abcdef", 6},
        {6, 0, 1, "abcdef", 6},
        {-1, 3, 2, "abcdef", 6},
        {1, -3, 2, "abcdef", 6},
        {1, 3, -2, "abcdef", 6},
        {0, INT_MAX, 2, "abcdef", 6},
        {INT_MAX, 0, INT_MAX, "abcdef", 6},
        {INT_MIN, INT_MIN, INT_MIN, "abcdef", 6},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to << " count " << row.count);
        auto string = this->Make("abcdef");
        ASSERT_TRUE(string.Reserve(10, true));
        string.MoveCharacters(row.from, row.to, row.count);
        EXPECT_EQ(Text(string), Text<TypeParam>(row.text));
        EXPECT_EQ(string.GetLength(), row.length);
        EXPECT_EQ(static_cast<TypeParam const *>(string)[string.GetLength()], TypeParam(0));
    }
}

TYPED_TEST(String, RandomOperationsAgainstStdString)
{
    using Model = std::basic_string<TypeParam>;
    std::mt19937 random(7);
    auto const below = [&random](size_t limit) { return static_cast<int>(random() % (limit + 1)); };
    CVekString<TypeParam> string;
    Model model;
    for (int step = 0; step < 20000; ++step)
    {
        SCOPED_TRACE(step);
        Model source;
        for (int left = below(step % 50 == 0 ? 700 : 20); left > 0; --left)
            source += static_cast<TypeParam>('a' + below(25));
        int const start = below(source.size()), count = below(source.size());
        Model const part = source.substr(static_cast<size_t>(start), count ? static_cast<size_t>(count) : Model::npos);
        switch (below(9))
        {
        case 0:
            string.Assign(source.c_str());
            model = source;
            break;
        case 1:
            string.AssignPart(source.c_str(), start, count);
            model = part;
            break;
        case 2:
            string.Append(source.c_str(), start, count);
            model += part;
            break;
        case 3:
            string.Append(CVekString<TypeParam>(source.c_str()));
            model += source;
            break;
        case 4:
            string.AppendFormat(Text<TypeParam>("%s,").c_str(), source.c_str());
            model += source + TypeParam(',');
            break;
        case 5:
            ASSERT_TRUE(string.Reserve(string.GetLength() + 1 + below(40), true));
            break;
        case 6:
            string = CVekString<TypeParam>(string);
            break;
        case 7:
            string.AssignPart(string, start, count);
            model = model.size() < static_cast<size_t>(start)
                        ? Model()
                        : model.substr(static_cast<size_t>(start), count ? static_cast<size_t>(count) : Model::npos);
            break;
        case 8:
            string.MoveCharacters(start, 0, INT_MAX);
            if (model.size() > static_cast<size_t>(start))
                model.erase(0, static_cast<size_t>(start));
            break;
        default:
            if (model.size() > 2000)
            {
                string.Assign(static_cast<TypeParam const *>(nullptr));
                model.clear();
            }
            break;
        }
        this->ExpectValid(string, model);
        if (this->HasFatalFailure())
            return;
    }
}

TYPED_TEST(String, SurvivesWithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "allocations fail on demand in the guarded build only";
    auto const longText = std::basic_string<TypeParam>(500, TypeParam('x'));
    auto const format = Text<TypeParam>("%s"), pattern = Text<TypeParam>("c");
    auto full = this->Make("abc");
    CVekString<TypeParam> const longString(longText.c_str());
    VekGuard::FailFrom(1);
    CVekString<TypeParam> nothing; // has no block at all
    CVekString<TypeParam> copy(full);
    bool const reserved = full.Reserve(100, true) || full.Reserve(0, false) || nothing.Reserve(1, true);
    for (CVekString<TypeParam> * string : {&full, &nothing, &copy})
    {
        string->Append(longText.c_str());
        string->Append(longString);
        string->AppendFormat(format.c_str(), longText.c_str());
        string->Assign(longText.c_str());
        string->AssignPart(longText.c_str(), 1, 400);
        string->MoveCharacters(9, 0, 1);
    }
    int const found = nothing.Find(pattern.c_str()) + nothing.ReverseFind(pattern.c_str()) +
                      nothing.FindOneOf(pattern.c_str()) + nothing.ReverseFindOneOf(pattern.c_str());
    nothing.Assign(static_cast<TypeParam const *>(nullptr));
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_FALSE(reserved);
    EXPECT_EQ(found, -4);
    this->ExpectValid(full, Text<TypeParam>("abc"));
    this->ExpectValid(nothing, {});
    this->ExpectValid(copy, {});
    nothing.Append(full);
    this->ExpectValid(nothing, Text<TypeParam>("abc"));
}

} // namespace
