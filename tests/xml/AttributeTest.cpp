// The attribute by itself: text forms of typed values, and what reading makes of any text.

#include "support/RefCountContract.h"
#include "support/XMLKit.h"

#include <gtest/gtest.h>

#include <locale.h>

namespace
{

std::wstring Text(CVekXMLAttribute const & attribute)
{
    return static_cast<wchar_t const *>(attribute.GetValue());
}

template <class T>
struct Row
{
    T value;
    wchar_t const * text;
};

template <class T>
using Rows = std::vector<Row<T>>;
using Bytes = CVekRGBA<unsigned char>;
using Colour = CVekRGBA<float>;
using Ints = CVekVector4D<int>;
using Floats = CVekVector4D<float>;
using Doubles = CVekVector4D<double>;

// Values and the texts they are set as, chosen by the type of the argument; then texts and what is read from them.
Rows<bool> SetRows(bool)
{
    return {{true, L"TRUE"}, {false, L"FALSE"}};
}
Rows<int> SetRows(int)
{
    return {{0, L"0"}, {INT_MIN, L"-2147483648"}, {INT_MAX, L"2147483647"}};
}
Rows<float> SetRows(float)
{
    return {{0.1f, L"0.100000"}, {-1e10f, L"-10000000000.000000"}, {1e-7f, L"0.000000"}};
}
Rows<double> SetRows(double)
{
    return {{0.1, L"0.100000"}, {123456789.125, L"123456789.125000"}};
}
Rows<Bytes> SetRows(Bytes)
{
    return {{{0, 1, 128, 255}, L"0, 1, 128, 255"}};
}
Rows<Colour> SetRows(Colour)
{
    return {{{0, 1, 0.5f, -1}, L"0.000000, 1.000000, 0.500000, -1.000000"}};
}
Rows<Ints> SetRows(Ints)
{
    return {{{INT_MIN, -1, 0, INT_MAX}, L"-2147483648, -1, 0, 2147483647"}};
}
Rows<Floats> SetRows(Floats)
{
    return {{{0.1f, 1, -2.5f, 1e6f}, L"0.100000, 1.000000, -2.500000, 1000000.000000"}};
}
// Kept: the components are cut to floats before they are printed.
Rows<Doubles> SetRows(Doubles)
{
    return {{{123456789, 1, 2, 3}, L"123456792.000000, 1.000000, 2.000000, 3.000000"}};
}

Rows<bool> GetRows(bool)
{
    return {{true, L"true"}, {false, L"False"}, {true, L"TRUE"}};
}
Rows<int> GetRows(int)
{
    return {{12, L" \t12abc"}, {-7, L"-7"}, {0, L"x"}, {0, L""}, {3, L"3.9"}, {0, L"0x10"}};
}
Rows<float> GetRows(float)
{
    return {{0.5f, L" .5"}, {-300, L"-3e2x"}, {0, L"x"}, {0, L""}};
}
// Kept: no more than a float's precision comes back.
Rows<double> GetRows(double)
{
    return {{static_cast<double>(0.1f), L"0.1"}, {123456792, L"123456789.125"}};
}
Rows<Bytes> GetRows(Bytes)
{
    return {{{1, 255, 0, 255}, L"1,255,  256,\t-1"}, {{1, 0, 0, 0}, L"257, x"}, {{}, L""}};
}
Rows<Colour> GetRows(Colour)
{
    return {{{1, 0.5f, 0, 0}, L"1, .5"}, {{0.25f, 1, 0, 0}, L"0.25,1 , 3"}, {{}, L", 1, 2"}};
}
Rows<Ints> GetRows(Ints)
{
    return {{{1, -2, 3, 4}, L" 1, -2,3,4 tail"},
            {{1, 0, 0, 0}, L"1 , 2, 3, 4"},
            {{1, 2, 0, 0}, L"1, 2; 3, 4"},
            {{1, 2, 3, 0}, L"1, 2, 3, "},
            {{1, 0, 0, 0}, L"1.5, 2"}};
}
Rows<Floats> GetRows(Floats)
{
    return {{{0.1f, 1, -250, 4}, L"0.1, 1, -2.5e+2, 4"},
            {{0.1f, -0.25f, 123456.789f, 4}, L"0.1, -.25,123456.789, 4, 5"},
            {{1, 0, 0, 0}, L"1 2 3 4"},
            {{1, 2, 3, 4}, L"1.000000000000000000000, +2, 3., 4x"}};
}
Rows<Doubles> GetRows(Doubles)
{
    return {{{123456792, static_cast<double>(0.1f), 2, 0}, L"123456789, 0.1, 2"}};
}

template <class T>
class XMLAttributeType : public testing::Test
{
};
using Types = testing::Types<bool, int, float, double, Bytes, Colour, Ints, Floats, Doubles>;
TYPED_TEST_SUITE(XMLAttributeType, Types);

TYPED_TEST(XMLAttributeType, SetAndGet)
{
    CVekXMLAttribute attribute;
    for (auto const & row : SetRows(TypeParam()))
    {
        EXPECT_TRUE(attribute.SetValue(row.value));
        EXPECT_EQ(Text(attribute), row.text);
    }
    for (auto const & row : GetRows(TypeParam()))
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
        attribute.SetValue(row.text);
        TypeParam value{};
        EXPECT_TRUE(attribute.GetValue(value));
        EXPECT_EQ(value, row.value);
    }
}

TYPED_TEST(XMLAttributeType, SurvivesAnyText)
{
    std::wstring const digits(100'000, L'9');
    std::wstring const texts[] = {L"",
                                  L",",
                                  L"1,",
                                  digits,
                                  L"-" + digits + L"," + digits,
                                  L"1e" + digits,
                                  L"99999999999999999999, 1e999, -1e999, 1",
                                  L"nan, inf, 0x, e, +, -, .",
                                  L"%s%n, %d",
                                  std::wstring(100'000, L' '),
                                  L"\xFFFF\xD800, \x0661"};
    for (std::wstring const & text : texts)
    {
        CVekXMLAttribute attribute;
        attribute.SetValue(text.c_str());
        TypeParam value{};
        EXPECT_EQ(attribute.GetValue(value), (!std::is_same_v<TypeParam, bool>))
            << testing::PrintToString(text.substr(0, 40));
    }
}

TEST(XMLAttribute, OnlyTheTwoWordsAreBooleans)
{
    CVekXMLAttribute attribute;
    for (wchar_t const * text : {L"", L"1", L"yes", L"TRUE ", L" TRUE", L"TRUEFALSE", L"FALS"})
    {
        attribute.SetValue(text);
        for (bool value : {true, false})
        {
            bool const before = value;
            EXPECT_FALSE(attribute.GetValue(value)) << testing::PrintToString(std::wstring(text));
            EXPECT_EQ(value, before) << "kept: the output is left alone";
        }
    }
}

TEST(XMLAttribute, FollowsTheRuntimesLocale)
{
    if (!setlocale(LC_NUMERIC, "German_Germany.1252"))
        GTEST_SKIP() << "no such locale here";
    CVekXMLAttribute attribute;
    CVekVector4D<float> const vector(0.5f, 2, -3.25f, 4);
    CVekVector4D<float> read;
    attribute.SetValue(vector);
    std::wstring const text = Text(attribute);
    attribute.GetValue(read);
    setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(text, L"0,500000, 2,000000, -3,250000, 4,000000");
    EXPECT_EQ(read, vector);
}

TEST(XMLAttribute, TextIsStoredAsItIs)
{
    CVekXMLAttribute attribute;
    attribute.SetName(L"<n>");
    attribute.SetValue(L"<&>\n");
    EXPECT_EQ(std::wstring(attribute.GetName()), L"<n>");
    EXPECT_EQ(Text(attribute), L"<&>\n") << "the attribute itself escapes nothing";
    attribute.SetValue(static_cast<wchar_t const *>(nullptr));
    attribute.SetName(nullptr);
    EXPECT_EQ(Text(attribute), L"");
    EXPECT_EQ(attribute.GetName().GetLength(), 0);
}

TEST(XMLAttribute, CopiesNameAndValueOnly)
{
    CVekXMLAttribute attribute(L"name!", 4, L"value!", 5);
    attribute.AddRef();
    CVekXMLAttribute const copy(attribute);
    CVekXMLAttribute assigned;
    assigned = attribute;
    attribute.SetName(L"other");
    attribute.SetValue(1);
    for (CVekXMLAttribute const * each : {&copy, static_cast<CVekXMLAttribute const *>(&assigned)})
    {
        EXPECT_EQ(std::wstring(each->GetName()), L"name");
        EXPECT_EQ(Text(*each), L"value");
        EXPECT_EQ(each->GetRefCount(), 1u);
    }
}

TEST(XMLAttribute, Counts)
{
    ExpectRefCountContract("CVekXMLAttribute", new CVekXMLAttribute(L"n", 1, L"v", 1));
}

} // namespace
