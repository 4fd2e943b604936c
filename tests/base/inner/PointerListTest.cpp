#include "base/PointerList.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using List = vek::PointerList<char>;

std::string Forwards(List const & list)
{
    std::string text;
    for (List::Node const * node = list.First(); node; node = node->Next())
        text += *node->Pointer();
    return text;
}

std::string Backwards(List const & list)
{
    std::string text;
    for (List::Node const * node = list.Last(); node; node = node->Previous())
        text.insert(text.begin(), *node->Pointer());
    return text;
}

} // namespace

TEST(PointerList, AppendsAndRemoves)
{
    char letters[] = "abc";
    // upper case appends, lower case removes, '!' takes the first
    std::pair<char const *, std::string> const rows[] = {
        {"", ""},           {"A", "a"},       {"ABC", "abc"},    {"ABCa", "bc"}, {"ABCb", "ac"},  {"ABCc", "ab"},
        {"ABABA", "ababa"}, {"ABABAa", "bb"}, {"ABABAb", "aaa"}, {"AAa", ""},    {"Ba", "b"},     {"a", ""},
        {"AAaB", "b"},      {"!", ""},        {"ABA!", "ba"},    {"A!B", "b"},   {"ABCcbaC", "c"}};
    for (auto const & [operations, expected] : rows)
    {
        SCOPED_TRACE(operations);
        List list;
        for (char const * operation = operations; *operation; ++operation)
        {
            std::string const before = Forwards(list);
            if (*operation == '!')
                EXPECT_EQ(list.TakeFirst(), before.empty() ? nullptr : &letters[before[0] - 'a']);
            else if (*operation < 'a')
                EXPECT_TRUE(list.AppendTail(&letters[*operation - 'A']));
            else
                list.Remove(&letters[*operation - 'a']);
        }
        EXPECT_EQ(Forwards(list), expected);
        EXPECT_EQ(Backwards(list), expected);
        EXPECT_EQ(list.Count(), expected.size());
        EXPECT_EQ(list.Empty(), expected.empty());
        for (unsigned int i = 0; i <= expected.size(); ++i)
            EXPECT_EQ(list.At(i), i < expected.size() ? &letters[expected[i] - 'a'] : nullptr) << i;
        for (char & letter : letters)
            EXPECT_EQ(list.Contains(&letter), letter && expected.find(letter) != std::string::npos);
    }
}

TEST(PointerList, RemovesOnlyNodesOfItsOwn)
{
    char letters[] = "ab";
    List mine, other;
    mine.AppendTail(letters);
    other.AppendTail(letters);
    mine.RemoveNode(other.First());
    mine.RemoveNode(nullptr);
    EXPECT_TRUE(Forwards(mine) == "a" && Forwards(other) == "a");

    VekGuard::FailFrom(1);
    EXPECT_EQ(mine.AppendTail(letters + 1), !VekGuard::Active) << "stays as it is without memory";
    VekGuard::FailReset();
    EXPECT_EQ(Forwards(mine), VekGuard::Active ? "a" : "ab");
}
