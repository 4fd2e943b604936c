#include "io/ScanText.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <string>

TEST(ScanText, CountsArguments)
{
    std::pair<char const *, int> const rows[] = {
        // clang-format off
        {"", 0}, {"text", 0}, {"%d", 1}, {"%d %d", 2}, {"%%", 0}, {"%%d%d", 1}, {"%*d%d", 1}, {"%5d", 1},
        {"%I64d%I32u", 2}, {"%hd%ld%lf%Lf", 4}, {"%s", 2}, {"%10s", 2}, {"%c%C%S", 6}, {"%hs%ls%ws", 6}, {"%*s", 0},
        {"%[a-z]", 2}, {"%[]%d]%d", 3}, {"%[^]%d]%d", 3}, {"%[^a]b%d", 3}, {"%*[%d%d]%d", 1}, {"%[unclosed %d", 2},
        {"%", 0}, {"%5", 0}, {"%*", 0}, {"%n%x%X%o%i%u%p%e%g", 9}, {"%zu%zd%zx", 3},
        // clang-format on
    };
    for (auto const & [format, count] : rows)
    {
        std::string const narrow = format;
        EXPECT_EQ(vek::CountScanArguments(format), count) << format;
        EXPECT_EQ(vek::CountScanArguments(std::wstring(narrow.begin(), narrow.end()).c_str()), count) << format;
    }
}

namespace
{

bool Scan(char const * text, char const * format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    bool const done =
        vek::ScanWithList(format, arguments, [&](auto... places) { vek::ScanString(text, format, places...); });
    va_end(arguments);
    return done;
}

} // namespace

TEST(ScanText, HandsArgumentsOnUpToItsLimit)
{
    int n[65] = {};
    std::string text, format;
    for (int i = 1; i <= 64; ++i)
    {
        text += std::to_string(i) + " ";
        format += "%d ";
    }
    auto const scan = [&](std::string const & with)
    {
#define TEN(i) &n[i], &n[i + 1], &n[i + 2], &n[i + 3], &n[i + 4], &n[i + 5], &n[i + 6], &n[i + 7], &n[i + 8], &n[i + 9]
        return Scan(text.c_str(), with.c_str(), TEN(0), TEN(10), TEN(20), TEN(30), TEN(40), TEN(50), &n[60], &n[61],
                    &n[62], &n[63], &n[64]);
#undef TEN
    };
    EXPECT_TRUE(scan(format));
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(n[i], i + 1);
    for (int & number : n)
        number = 0;
    EXPECT_FALSE(scan(format + "%d"));
    EXPECT_EQ(n[0], 0) << "nothing is scanned";

    std::string many;
    for (int i = 0; i < 100000; ++i)
        many += "%s";
    EXPECT_FALSE(scan(many));
}
