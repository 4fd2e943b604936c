// The attribute by itself: text forms of typed values, and what reading makes of any text.

#include "support/XMLKit.h"

#include <locale.h>

namespace
{

std::wstring Text(CVekXMLAttribute const & attribute)
{
    return static_cast<wchar_t const *>(attribute.GetValue());
}

template <class T>
using Rows = std::vector<std::pair<T, wchar_t const *>>;

// Values with the texts they are set as; texts with what is read from them; and that no text does harm.
template <class T>
void ExpectTexts(char const * type, Rows<T> const & setRows, Rows<T> const & getRows)
{
    SCOPED_TRACE(type);
    CVekXMLAttribute attribute;
    for (auto const & [value, text] : setRows)
    {
        EXPECT_TRUE(attribute.SetValue(value));
        EXPECT_EQ(Text(attribute), text);
    }
    T read{};
    for (auto const & [value, text] : getRows)
    {
        attribute.SetValue(text);
        EXPECT_TRUE(attribute.GetValue(read));
        EXPECT_EQ(read, value) << testing::PrintToString(std::wstring(text));
    }
    std::wstring const digits(100'000, L'9');
    for (std::wstring const & text :
         {std::wstring(), std::wstring(L","), std::wstring(L"1,"), L"-" + digits + L"," + digits, L"1e" + digits,
          std::wstring(L"99999999999999999999, 1e999, -1e999, 1"), std::wstring(L"nan, inf, 0x, e, +, -, ."),
          std::wstring(L"%s%n, %d"), std::wstring(100'000, L' '), std::wstring(L"\xFFFF\xD800, \x0661"),
          std::wstring(L"1"), std::wstring(L"TRUE "), std::wstring(L" TRUE"), std::wstring(L"TRUEFALSE"),
          std::wstring(L"FALS")})
    {
        attribute.SetValue(text.c_str());
        T const before = read;
        bool const isRead = attribute.GetValue(read);
        EXPECT_EQ(isRead, (!std::is_same_v<T, bool>)) << testing::PrintToString(text.substr(0, 40));
        EXPECT_TRUE(isRead || read == before) << "kept: the output is left alone";
    }
}

TEST(XMLAttribute, SetsAndReadsEachType)
{
    // clang-format off
    ExpectTexts<bool>("bool", {{true, L"TRUE"}, {false, L"FALSE"}},
        {{true, L"true"}, {false, L"False"}, {true, L"TRUE"}}); // and no other text
    ExpectTexts<int>("int", {{0, L"0"}, {INT_MIN, L"-2147483648"}, {INT_MAX, L"2147483647"}},
        {{12, L" \t12abc"}, {-7, L"-7"}, {0, L"x"}, {0, L""}, {3, L"3.9"}, {0, L"0x10"}});
    ExpectTexts<float>("float", {{0.1f, L"0.100000"}, {-1e10f, L"-10000000000.000000"}, {1e-7f, L"0.000000"}},
        {{0.5f, L" .5"}, {-300.0f, L"-3e2x"}, {0.0f, L"x"}, {0.0f, L""}});
    ExpectTexts<double>("kept: doubles are read with a float's precision",
        {{0.1, L"0.100000"}, {123456789.125, L"123456789.125000"}},
        {{static_cast<double>(0.1f), L"0.1"}, {123456792.0, L"123456789.125"}});
    ExpectTexts<CVekRGBA<unsigned char>>("bytes", {{{0, 1, 128, 255}, L"0, 1, 128, 255"}},
        {{{1, 255, 0, 255}, L"1,255,  256,\t-1"}, {{1, 0, 0, 0}, L"257, x"}, {{}, L""}});
    ExpectTexts<CVekRGBA<float>>("colour", {{{0, 1, 0.5f, -1}, L"0.000000, 1.000000, 0.500000, -1.000000"}},
        {{{1, 0.5f, 0, 0}, L"1, .5"}, {{0.25f, 1, 0, 0}, L"0.25,1 , 3"}, {{}, L", 1, 2"}});
    ExpectTexts<CVekVector4D<int>>("ints", {{{INT_MIN, -1, 0, INT_MAX}, L"-2147483648, -1, 0, 2147483647"}},
        {{{1, -2, 3, 4}, L" 1, -2,3,4 tail"}, {{1, 0, 0, 0}, L"1 , 2, 3, 4"}, {{1, 2, 0, 0}, L"1, 2; 3, 4"},
         {{1, 2, 3, 0}, L"1, 2, 3, "}, {{1, 0, 0, 0}, L"1.5, 2"}});
    ExpectTexts<CVekVector4D<float>>("floats",
        {{{0.1f, 1, -2.5f, 1e6f}, L"0.100000, 1.000000, -2.500000, 1000000.000000"}},
        {{{0.1f, 1, -250, 4}, L"0.1, 1, -2.5e+2, 4"}, {{1, 0, 0, 0}, L"1 2 3 4"},
         {{0.1f, -0.25f, 123456.789f, 4}, L"0.1, -.25,123456.789, 4, 5"},
         {{1, 2, 3, 4}, L"1.000000000000000000000, +2, 3., 4x"}});
    ExpectTexts<CVekVector4D<double>>("kept: doubles are cut to floats before they are printed",
        {{{123456789, 1, 2, 3}, L"123456792.000000, 1.000000, 2.000000, 3.000000"}},
        {{{123456792, static_cast<double>(0.1f), 2, 0}, L"123456789, 0.1, 2"}});
    // clang-format on
}

TEST(XMLAttribute, FollowsTheRuntimesLocale)
{
    if (!setlocale(LC_NUMERIC, "German_Germany.1252"))
        GTEST_SKIP() << "no such locale here";
    CVekXMLAttribute attribute;
    CVekVector4D<float> const vector(0.5f, 2, -3.25f, 4);
    CVekVector4D<float> read;
    attribute.SetValue(vector);
    attribute.GetValue(read);
    setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(Text(attribute), L"0,500000, 2,000000, -3,250000, 4,000000");
    EXPECT_EQ(read, vector);
}

TEST(XMLAttribute, KeepsAndCopiesTextsAsTheyAre)
{
    CVekXMLAttribute attribute(L"<n>!", 3, L"<&>\n!", 4);
    attribute.AddRef();
    CVekXMLAttribute const copy(attribute);
    CVekXMLAttribute assigned;
    assigned = attribute;
    attribute.SetValue(static_cast<wchar_t const *>(nullptr));
    attribute.SetName(nullptr);
    EXPECT_EQ(std::wstring(attribute.GetName()) + Text(attribute), L"");
    for (CVekXMLAttribute const * each : {&copy, static_cast<CVekXMLAttribute const *>(&assigned)})
    {
        EXPECT_EQ(std::wstring(each->GetName()) + Text(*each), L"<n><&>\n") << "the attribute itself escapes nothing";
        EXPECT_EQ(each->GetRefCount(), 1u);
    }
}

} // namespace
