// The library's texts, numbers and bytes beside the standard library's.

#include "VekLib.h"
#include "VekStd.h"

#include "support/Files.h"
#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cfloat>
#include <chrono>
#include <climits>
#include <clocale>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <thread>
#include <unordered_map>
#include <unordered_set>

namespace
{

using Text = CVekString<wchar_t>;

TEST(VekStd, StringsAreValues)
{
    Text text(L"mesh");
    (text += L"/") += Text(L"skin");
    text += text;
    text += L'!';
    text += L'\0';
    text += static_cast<wchar_t const *>(nullptr);
    EXPECT_EQ(VekView(text), L"mesh/skinmesh/skin!");
    EXPECT_EQ(VekToStd(text), L"mesh/skinmesh/skin!");
    EXPECT_EQ(VekToString(std::wstring_view(L"cut\0off", 7)).GetLength(), 3);
    EXPECT_EQ(VekToString(std::string_view("narrow").substr(2)), "rrow");
    std::unordered_set<Text> set{Text(L"a"), Text(L"b"), Text(L"a")};
    EXPECT_TRUE(set.size() == 2 && set.count(Text(L"b")) == 1);
    EXPECT_EQ((std::map<Text, int>{{Text(L"b"), 1}, {Text(L"a"), 2}, {Text(L"b"), 3}}.begin()->second), 2);
    CVekRef<IVekTimer> const timer{new CVekTimer};
    std::unordered_map<CVekRef<IVekTimer>, int> const counts{{timer, 5}};
    EXPECT_EQ(counts.at(timer), 5);
}

TEST(VekStd, VariantsOfLongNumbersAndTexts)
{
    struct
    {
        VEK_VARIANT variant;
        VEK_DATATYPE type;
        wchar_t const * text;
    } const rows[] = {
        {0L, VEK_DT_INT, L"0"},
        {-5LL, VEK_DT_INT, L"-5"},
        {7ULL, VEK_DT_INT, L"7"},
        {LONG_MIN, VEK_DT_INT, L"-2147483648"},
        {static_cast<long long>(INT_MIN) - 1, VEK_DT_STRINGW, L"-2147483649"},
        {static_cast<unsigned long>(INT_MAX), VEK_DT_INT, L"2147483647"},
        {ULONG_MAX, VEK_DT_STRINGW, L"4294967295"},
        {LLONG_MIN, VEK_DT_STRINGW, L"-9223372036854775808"},
        {ULLONG_MAX, VEK_DT_STRINGW, L"18446744073709551615"},
        {VekToVariant(std::wstring(L"wide")), VEK_DT_STRINGW, L"wide"},
        {VekToVariant(std::string_view("narrow", 3)), VEK_DT_STRINGA, L"nar"},
        {Text(L"own"), VEK_DT_STRINGW, L"own"},
    };
    CVekXMLElement element;
    for (auto const & row : rows)
    {
        EXPECT_EQ(row.variant.GetType(), row.type) << VekUtf8FromWide(std::wstring_view(row.text)).value();
        ASSERT_TRUE(element.SetAttributeValue(L"a", row.variant, true));
        EXPECT_EQ(VekView(element.GetAttributeValue(0)), row.text);
    }
}

// --- numbers --------------------------------------------------------------------------------------------------------

template <class Real>
std::wstring Written(Real value)
{
    wchar_t wide[32];
    char narrow[32];
    int const length = VekStrFromNumberW(wide, 32, value);
    EXPECT_EQ(VekStrFromNumberA(narrow, 32, value), length);
    EXPECT_EQ(std::wstring(narrow, narrow + length), wide);
    EXPECT_EQ(VekStrFromNumberW(wide, length, value), -1) << "one too few";
    EXPECT_EQ(wide[0], 0);
    VekStrFromNumberW(wide, 32, value);
    Real back = 0, narrowBack = 0;
    EXPECT_TRUE(VekStrToNumberW(wide, back) && VekStrToNumberA(narrow, narrowBack));
    using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;
    bool const isSame = std::bit_cast<Bits>(back) == std::bit_cast<Bits>(value) && narrowBack == back;
    EXPECT_TRUE(isSame || std::isnan(value)) << narrow;
    return wide;
}

TEST(VekStd, NumbersAsText)
{
    std::pair<double, wchar_t const *> const rows[] = {
        {0, L"0"},
        {-0.0, L"-0"},
        {0.1, L"0.1"},
        {-12.5, L"-12.5"},
        {100, L"100"},
        {0.0001, L"0.0001"},
        {1e-9, L"1e-9"},
        {-1.5e-10, L"-1.5e-10"},
        {1e300, L"1e300"},
        {0.1 + 0.2, L"0.30000000000000004"},
        {1.0 / 3, L"0.3333333333333333"},
        {123456789012345, L"123456789012345"},
        {DBL_MAX, L"1.7976931348623157e308"},
        {5e-324, L"5e-324"},
        {HUGE_VAL, L"inf"},
        {-HUGE_VAL, L"-inf"},
        {std::nan(""), L"nan"},
    };
    for (auto const & [value, text] : rows)
        EXPECT_EQ(Written(value), text);
    EXPECT_EQ(Written(0.1F), L"0.1");
    EXPECT_EQ(Written(16777216.0F), L"16777216");
    EXPECT_EQ(Written(FLT_MAX), L"3.4028235e38");
    EXPECT_EQ(Written(1e-45F), L"1e-45");

    std::mt19937_64 random(1);
    for (int i = 0; i < 5000; ++i)
    {
        Written(static_cast<double>(static_cast<std::int64_t>(random() >> (random() % 64))) /
                std::pow(10, random() % 20));
        if (double const any = std::bit_cast<double>(random()); any == any)
            Written(any);
        if (float const any = std::bit_cast<float>(static_cast<std::uint32_t>(random())); any == any)
            Written(any);
    }
    if (setlocale(LC_NUMERIC, "German_Germany.1252"))
    {
        EXPECT_EQ(Written(0.1 + 0.2), L"0.30000000000000004");
        setlocale(LC_NUMERIC, "C");
    }
}

TEST(VekStd, NumbersFromText)
{
    constexpr double NONE = -77; // nothing read
    std::string const nines(400, '9'), zeros(400, '0');
    std::pair<std::string, double> const rows[] = {
        {" \t12.5\n", 12.5},
        {"+5", 5},
        {".5e1", 5},
        {"5.", 5},
        {"9007199254740993", 9007199254740992},
        {"9007199254740993.00000000000000000000000001", 9007199254740994},
        {"0." + zeros + "1e401", 1},
        {"1" + zeros + "e-400", 1},
        {"9007199254740993." + zeros + zeros + zeros + "1", 9007199254740994},
        {"0e999", 0},
        {"2.4703282292062327e-324", 0},
        {"2.4703282292062328e-324", 5e-324},
        {"1.7976931348623158e308", DBL_MAX},
        {"1.7976931348623159e308", NONE},
        {"1e-400", 0},
        {"-inf", -HUGE_VAL},
        {nines, NONE},
        {"1e400", NONE},
        {"1e99999999999", NONE},
        {"", NONE},
        {".", NONE},
        {"-", NONE},
        {"+-5", NONE},
        {"1e", NONE},
        {"1,5", NONE},
        {"12.5x", NONE},
        {"0x10", NONE},
        {"in", NONE},
    };
    for (auto const & [text, expected] : rows)
    {
        double value = NONE;
        EXPECT_EQ(VekStrToNumberA(text.c_str(), value), expected != NONE) << text;
        EXPECT_EQ(value, expected) << text;
    }
    double value = NONE;
    char const * end = nullptr;
    EXPECT_TRUE(VekStrToNumberA("7e+x", value, &end));
    EXPECT_TRUE(value == 7 && std::string(end) == "e+x");
    EXPECT_FALSE(VekStrToNumberW(nullptr, value));
}

TEST(VekStd, VectorsAsText)
{
    EXPECT_EQ(VekView(VekToText(CVekVector2D<double>(0.1, -2))), L"0.1, -2");
    EXPECT_EQ(VekView(VekToText(CVekVector3D<float>(0.1F, 1e-9F, 3))), L"0.1, 1e-9, 3");
    EXPECT_EQ(VekView(VekToText(0.1F)), L"0.1");
    std::pair<wchar_t const *, bool> const rows[] = {
        {L"1, 2, 3", true}, {L" 1 2\t3 ", true}, {L"1,2,3", true},       {L"1 , 2 ,3", true},
        {L"1, 2", false},   {L"1,,2,3", false},  {L"1, 2, 3, 4", false}, {L"1, 2, 3,", false},
        {L"1-2-3", false},  {L"", false},        {nullptr, false},
    };
    for (auto const & [text, isRead] : rows)
    {
        CVekVector3D<double> vector(7, 7, 7);
        EXPECT_EQ(VekFromText(text, vector), isRead)
            << (text ? VekUtf8FromWide(std::wstring_view(text)).value() : "null");
        EXPECT_EQ(vector, isRead ? CVekVector3D<double>(1, 2, 3) : CVekVector3D<double>(7, 7, 7));
    }
    CVekXMLElement element;
    CVekVector2D<float> const size(0.1F, 1e30F);
    CVekVector2D<float> read;
    EXPECT_TRUE(element.SetAttributeValue(L"size", VekToText(size), true));
    EXPECT_TRUE(VekReadXMLAttribute(element, L"size", read) && read == size);
    EXPECT_FALSE(VekReadXMLAttribute(element, L"none", read));
}

// --- UTF-8 and bytes ------------------------------------------------------------------------------------------------

TEST(VekStd, Utf8)
{
    for (char32_t character = 0; character <= 0x10FFFF; character += character < 0x3000 ? 1 : 37)
    {
        std::wstring wide;
        if (character > 0xFFFF)
            wide = {static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10)),
                    static_cast<wchar_t>(0xDC00 + (character & 0x3FF))};
        else
            wide.push_back(static_cast<wchar_t>(character));
        auto const bytes = VekUtf8FromWide(std::wstring_view(L"a" + wide + L"z"));
        bool const isHalf = character >= 0xD800 && character < 0xE000;
        ASSERT_EQ(bytes.has_value(), !isHalf) << std::hex << static_cast<unsigned int>(character);
        if (bytes)
        {
            ASSERT_EQ(bytes->size(), 3U + (character > 0x7F) + (character > 0x7FF) + (character > 0xFFFF));
            ASSERT_EQ(VekWideFromUtf8(*bytes), L"a" + wide + L"z");
        }
    }
    EXPECT_EQ(VekWideFromUtf8("\xF0\x9F\x98\x80 \xE2\x82\xAC"), L"\xD83D\xDE00 \x20AC");
    EXPECT_EQ(VekWideFromUtf8(u8"\u00E9"), L"\u00E9");
    for (std::string_view const bad :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC3(", "\xE2\x82(", "\xE2(\x82"})
    {
        EXPECT_EQ(VekWideFromUtf8(std::string("ok") + std::string(bad)), std::nullopt) << testing::PrintToString(bad);
        EXPECT_EQ(VekWideFromUtf8(std::string(bad) + "ok"), std::nullopt) << testing::PrintToString(bad);
    }
    for (std::wstring_view const bad : {L"\xD83D", L"\xDE00", L"\xDE00\xD83D", L"\xD83D\xD83D\xDE00", L"\xD83Dx"})
        EXPECT_EQ(VekUtf8FromWide(bad), std::nullopt);
}

TEST(VekStd, Bytes)
{
    CVekMemoryIOStream stream;
    EXPECT_TRUE(VekBytes(stream).empty());
    std::string const text = "some bytes";
    ASSERT_TRUE(VekOpenBytes(stream, std::as_bytes(std::span(text))));
    EXPECT_EQ(stream.ReadByte(true), 's');
    IVekMemoryIOStream const & fixed = stream;
    EXPECT_EQ(std::memcmp(VekBytes(fixed).data(), text.data(), text.size()), 0);
    EXPECT_EQ(VekBytes(fixed).size(), text.size());
    stream.Close();
    EXPECT_TRUE(VekBytes(fixed).empty());

    CVekXMLElement element;
    EXPECT_EQ(VekCDATAText(element), L"");
    EXPECT_TRUE(VekSetCDATAText(element, L"first text") && VekSetCDATAText(element, VekCDATAText(element).substr(6)));
    EXPECT_EQ(VekCDATAText(element), L"text");
}

TEST(VekStd, WholeFiles)
{
    std::wstring const path = TemporaryPath(L"whole.bin");
    for (std::string const & bytes : {std::string(), std::string("a\r\n\x1A\0b", 6), std::string(300'000, 'c')})
    {
        EXPECT_TRUE(VekWriteFile(path.c_str(), bytes)) << bytes.size();
        EXPECT_EQ(VekReadFile(path.c_str()), bytes) << bytes.size();
    }
    EXPECT_FALSE(VekReadFile(TemporaryPath(L"none/whole.bin").c_str()));
    EXPECT_FALSE(VekWriteFile(TemporaryPath(L"none/whole.bin").c_str(), "bytes"));
    EXPECT_TRUE(VekWriteTextFile(path.c_str(), L"\x20AC\r\n"));
    EXPECT_EQ(VekReadFile(path.c_str()), "\xE2\x82\xAC\r\n");
    EXPECT_FALSE(VekWriteTextFile(path.c_str(), L"half \xD83D"));
    EXPECT_EQ(VekReadTextFile(path.c_str()), L"\x20AC\r\n");
    VekWriteFile(path.c_str(), "\xC3(");
    EXPECT_FALSE(VekReadTextFile(path.c_str()) || VekReadTextFile(TemporaryPath(L"none").c_str()));
}

// --- source texts, curves, workers ----------------------------------------------------------------------------------

TEST(VekStd, SourceTextsInPieces)
{
    CVekLexer lexer;
    ASSERT_TRUE(VekAddKeywords(lexer, L" if\telse\n", 5) && VekAddOperators(lexer, L"- -> +") &&
                VekAddOperators(lexer, L"", 9) && lexer.AddComment(L"//", L"\n"));
    // A token as its kind (a keyword or an operator with its identifier) and text, what is between in brackets.
    std::pair<std::wstring, std::wstring> const rows[] = {
        {L"", L""},
        {L" \r\n", L"[ \r\n]"},
        {L"else If", L"1.6 else|[ ]4.0 If|"},
        {L"a-1", L"4.0 a|2.0 -|8.0 1|"},
        {L"a->b+-c", L"4.0 a|2.1 ->|4.0 b|2.2 +|2.0 -|4.0 c|"},
        {L"\r0xF // -if\n\"a-b\"", L"[\r]128.0 0x|4.0 F|[ // -if\n]32.0 \"a-b\"|"},
    };
    for (auto const & [source, expected] : rows)
    {
        CVekTokenizer tokenizer;
        ASSERT_TRUE(VekTokenizeSource(tokenizer, lexer, source));
        std::wstring pieces;
        for (auto const & [text, token] : VekPieces(tokenizer, source))
            if (token)
                pieces += std::to_wstring(token->GetKind()) + L"." + std::to_wstring(token->GetID()) + L" " +
                          std::wstring(text) + L"|";
            else
                pieces += L"[" + std::wstring(text) + L"]";
        EXPECT_EQ(pieces, expected) << testing::PrintToString(source);
    }
}

TEST(VekStd, CurvesOfVectors)
{
    std::vector<CVekVector3D<double>> points;
    EXPECT_TRUE(VekTessellate(VekInterpolate(3, points), 0.1).empty());
    for (int i = 0; i < 50; ++i)
        points.emplace_back(i, i % 3, 0);
    auto const curve = VekInterpolate(3, points);
    for (double const tolerance : {0.1, 1e-6, 0.0}) // less and more points than are tried first, and none
    {
        auto const found = VekTessellate(curve, tolerance);
        std::vector<CVekVector3D<double>> expected(curve.Tessellate(tolerance, nullptr, nullptr, 0));
        curve.Tessellate(tolerance, expected.data(), nullptr, static_cast<unsigned int>(expected.size()));
        EXPECT_TRUE(found == expected) << tolerance << ": " << found.size();
    }
}

TEST(VekStd, RunsOnWorkers)
{
    CVekLibrary const library;
    struct
    {
        std::size_t count;
        unsigned int workers;
        bool isCancelled, isDone;
    } const rows[] = {
        {0, 3, false, true}, {1, 5, false, true}, {40, 3, false, true}, {40, 0, false, false}, {500, 2, true, false}};
    for (auto const & row : rows)
    {
        std::vector<std::atomic<int>> calls(row.count);
        double shown = -1;
        CVekProgressController progress;
        VekSetProgressCallback(progress,
                               [&](double percent, wchar_t const * task)
                               {
                                   shown = std::wstring(task) == L"all" ? percent : -1;
                                   return percent == 0 || !row.isCancelled;
                               });
        CVekProgressBegin const task(&progress, L"all", 100, 1, 0);
        auto const work = [&](std::size_t i)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ++calls[i];
        };
        EXPECT_EQ(VekRunOnWorkers(row.count, row.workers, work, &progress), row.isDone) << row.count;
        EXPECT_TRUE(std::all_of(calls.begin(), calls.end(), [](int times) { return times <= 1; })) << row.count;
        int const done = std::accumulate(calls.begin(), calls.end(), 0);
        EXPECT_EQ(row.isDone, done == static_cast<int>(row.count)) << done;
        EXPECT_TRUE(std::abs(shown - 100) < 1e-6 || !row.isDone || done == 0) << shown;
    }
    std::atomic<std::size_t> sum{0};
    EXPECT_TRUE(VekRunOnWorkers(101, 4, [&](std::size_t i) { sum += i; }) && sum == 5050);
}

} // namespace
