// Attributes of an element: adding, setting, renaming, removing, typed reads, and the text forms of variants.

#include "support/GuardHeap.h"
#include "support/XMLKit.h"

#include <guiddef.h>

namespace
{

// An element "e" with the attributes "a", "b" and so on, as many as there are values, stored as they are.
CVekRef<CVekXMLElement> WithValues(std::vector<wchar_t const *> const & values)
{
    auto element = NewElement(L"e");
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        wchar_t const name[] = {static_cast<wchar_t>(L'a' + i), 0};
        element->AddAttribute(name, L"", -1);
        element->SetAttributeValue(static_cast<int>(i), values[i]);
    }
    return element;
}

std::wstring Stored(IVekXMLElement const & element, int index)
{
    return static_cast<wchar_t const *>(element.GetAttributeValue(index));
}

TEST(XMLElementAttributes, SetByNameEscapesByIndexDoesNot)
{
    std::tuple<wchar_t const *, wchar_t const *, wchar_t const *> const rows[] = {
        {L"<>&'\"\n", L"&lt;&gt;&amp;&apos;&quot;&lt;EOL&gt;", L"<>&'\"\n"},
        {L"", L"", L""},
        {L"&lt;", L"&amp;lt;", L"<"}, // kept: "&amp;" is undone first
        {L"<EOL>", L"&lt;EOL&gt;", L"\n"},
    };
    for (auto const & [text, stored, readBack] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(text)));
        auto const element = WithValues({L"old"});
        EXPECT_TRUE(element->SetAttributeValue(L"A", text, false));
        EXPECT_EQ(Stored(*element, 0), stored);
        CVekString<wchar_t> value;
        EXPECT_TRUE(element->GetAttributeValue(L"a", value, L"(default)"));
        EXPECT_EQ(std::wstring(value), readBack);
        EXPECT_TRUE(element->GetAttributeValue(0, value, L"(default)"));
        EXPECT_EQ(std::wstring(value), stored) << "kept: reading by index does not undo the escaping";
        EXPECT_TRUE(element->SetAttributeValue(0, text));
        EXPECT_EQ(Stored(*element, 0), text) << "kept: setting by index does not escape";
        EXPECT_EQ(element->AddAttribute(L"new", text, -1), 1);
        EXPECT_EQ(Stored(*element, 1), stored);
    }
}

TEST(XMLElementAttributes, NamesAndOutcomes)
{
    LogCapture log;
    auto const element = WithValues({L"1"});
    EXPECT_EQ(element->AddAttribute(L"A", VEK_DT_UNKNOWN, -1), -1) << "a taken name, in any case, is looked at first";
    EXPECT_FALSE(element->SetAttributeValue(L"x", 2, false));
    EXPECT_TRUE(element->SetAttributeValue(L"x", 2, true));
    EXPECT_EQ(element->AddAttribute(nullptr, 3, -1), 2);
    EXPECT_EQ(element->AddAttribute(L"", 4, -1), -1);
    EXPECT_EQ(element->FindAttributeIndex(nullptr), 2);
    EXPECT_EQ(log.Take(), L"");
    EXPECT_FALSE(element->SetAttributeValue(L"y", VEK_DT_BUFFER, true));
    EXPECT_FALSE(element->SetAttributeValue(L"x", VEK_DT_BUFFER, true));
    EXPECT_FALSE(element->SetAttributeValue(1, VEK_DT_BUFFER));
    EXPECT_FALSE(element->SetAttributeValue(3, 5) || element->SetAttributeValue(-1, 5));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type\n"
                          L"CVekXMLElement::VariantToString --> Invalid data type\n"
                          L"CVekXMLElement::SetAttributeValue --> Failed to convert to string\n"
                          L"CVekXMLElement::VariantToString --> Invalid data type\n"
                          L"CVekXMLElement::SetAttributeValue --> Can not convert value to string\n"
                          L"CVekXMLElement::SetAttributeValue --> Invalid index 3\n"
                          L"CVekXMLElement::SetAttributeValue --> Invalid index -1");
    EXPECT_EQ(TreeText(*element), L"e[a=1 x=2 =3]");
}

TEST(XMLElementAttributes, RenameAndRemove)
{
    LogCapture log;
    auto const element = WithValues({L"1", L"2"});
    EXPECT_TRUE(element->RenameAttribute(L"A", L"new"));
    EXPECT_TRUE(element->RenameAttribute(L"new", element->GetAttributeName(0)));
    EXPECT_FALSE(element->RenameAttribute(L"a", L"x"));
    EXPECT_TRUE(element->RenameAttribute(L"b", L"NEW")) << "kept: a taken name is not refused";
    EXPECT_FALSE(element->RemoveAttribute(L"none"));
    EXPECT_EQ(log.Take(), L"");
    // Kept: by index all is refused but what is beyond the list, and by name that comes to the same.
    for (int index : {-1, 1, 2, INT_MAX})
        EXPECT_TRUE(element->RemoveAttribute(index) == (index > 1) &&
                    element->RenameAttribute(index, L"x") == (index > 1))
            << index;
    EXPECT_FALSE(element->RemoveAttribute(L"new"));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveAttribute --> Invalid index -1\n"
                          L"CVekXMLElement::RenameAttribute --> Invalid index -1\n"
                          L"CVekXMLElement::RemoveAttribute --> Invalid index 1\n"
                          L"CVekXMLElement::RenameAttribute --> Invalid index 1\n"
                          L"CVekXMLElement::RemoveAttribute --> Invalid index 0");
    EXPECT_EQ(TreeText(*element), L"e[new=1 NEW=2]");
    element->RenameAttribute(L"new", nullptr);
    EXPECT_EQ(element->FindAttributeIndex(L""), 0);
    element->RemoveAllAttributes();
    EXPECT_EQ(element->GetNumAttributes(), 0);
}

TEST(XMLElementAttributes, VariantTexts)
{
    VEK_VARIANT twoInBool(true);
    twoInBool = static_cast<unsigned char>(2);
    std::string const narrowText(100'000, 'n');
    std::wstring const wideText(100'000, L'w');
    std::tuple<VEK_VARIANT, std::wstring, char const *> const rows[] = {
        // clang-format off
        {true, L"TRUE", "1 bool"}, {false, L"FALSE", "1 bool"},
        {twoInBool, L"FALSE", "1 kept: only a stored 1 is true"},
        {static_cast<unsigned char>(200), L"200", "2 byte"},
        {'z', L"z", "3 character"}, {'\0', L"", "3 zero ends the text"},
        {static_cast<char>(-23), L"\xFFE9", "3 kept: a narrow character is sign-extended"},
        {L'\x20AC', L"\x20AC", "4 wide character"}, {L'<', L"<", "4 not escaped"}, {L'\0', L"", "4 zero"},
        {static_cast<short>(1234), L"1234", "5 short"}, {static_cast<short>(-1), L"65535", "5 kept: read as unsigned"},
        {static_cast<unsigned short>(65535), L"-1", "6 kept: read as signed"},
        {INT_MIN, L"-2147483648", "7 int"},
        {2147483647u, L"2147483647", "8 unsigned"}, {4294967295u, L"-1", "8 kept: printed as signed"},
        {0.1f, L"0.100000", "9 float"}, {1e-9, L"0.000000", "10 kept: six digits"},
        {1e15, L"1000000000000000.000000", "10 double"},
        {"na\xEFve", L"na\xFFEFve", "11 narrow text, bytes sign-extended"}, {"", L"", "11 empty"},
        {narrowText.c_str(), std::wstring(100'000, L'n'), "11 long"},
        {L"wide & \x4E2D", L"wide & \x4E2D", "12 wide text"}, {wideText.c_str(), wideText, "12 long"},
        {CVekRGBA<unsigned char>(1, 2, 3, 255), L"1, 2, 3, 255", "13 byte colour"},
        {CVekRGBA<float>(0.5f, 1, 0, -1), L"0.500000, 1.000000, 0.000000, -1.000000", "14 colour"},
        {CVekVector4D<int>(1, -2, 3, INT_MAX), L"1, -2, 3, 2147483647", "15 int vector"},
        {CVekVector4D<float>(1, 0.1f, 3, 4), L"0, 1072693248, -1610612736, 1069128089",
         "16 kept: the halves of x and y as doubles"},
        {CVekVector4D<double>(1, 2.5, -3, 1e10), L"1.000000, 2.500000, -3.000000, 10000000000.000000", "17 doubles"},
        // clang-format on
    };
    LogCapture log;
    auto const element = WithValues({L"old"});
    for (auto const & [value, text, row] : rows)
    {
        SCOPED_TRACE(row);
        EXPECT_TRUE(element->SetAttributeValue(0, value));
        EXPECT_EQ(Stored(*element, 0), text);
    }
    EXPECT_TRUE(element->SetAttributeValue(0, CVekVector4D<double>(-DBL_MAX, -DBL_MAX, -DBL_MAX, -DBL_MAX)));
    EXPECT_EQ(Stored(*element, 0).size(), 4u * 317 + 3 * 2) << "the longest number text of all";
    for (VEK_VARIANT const & value :
         {VEK_VARIANT(CVekMatrix4x4<float>()), VEK_VARIANT(CVekMatrix4x4<double>()), VEK_VARIANT(GUID{}),
          VEK_VARIANT(VEK_DT_UNKNOWN), VEK_VARIANT(static_cast<VEK_DATATYPE>(22)),
          VEK_VARIANT(static_cast<VEK_DATATYPE>(-1))})
    {
        EXPECT_EQ(element->AddAttribute(L"x", value, -1), -1);
        EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type") << value.GetType();
    }
    EXPECT_EQ(element->GetNumAttributes(), 1);
}

TEST(XMLElementAttributes, BadIndexesAndDefaults)
{
    LogCapture log;
    auto const element = WithValues({L"1"});
    CVekString<wchar_t> text;
    for (int index : {-1, 1, INT_MIN, INT_MAX})
    {
        int number = 1;
        EXPECT_EQ(std::wstring(element->GetAttributeName(index)) + Stored(*element, index), L"");
        EXPECT_FALSE(element->GetAttributeValue(index, number, 7));
        EXPECT_FALSE(element->GetAttributeValue(index, text, L"default"));
        EXPECT_EQ(std::wstring(text) + std::to_wstring(number), L"default7");
        std::wstring const message = L"CVekXMLElement::GetAttributeValue --> Invalid index " + std::to_wstring(index);
        EXPECT_EQ(log.Take(), message + L"\n" + message + L"\n" + message);
    }
    EXPECT_FALSE(element->GetAttributeValue(L"none", text, text));
    EXPECT_EQ(std::wstring(text), L"default") << "the default may be the output itself";
    EXPECT_FALSE(element->GetAttributeValue(L"none", text, nullptr));
    EXPECT_EQ(std::wstring(text), L"");
    EXPECT_EQ(log.Take(), L"");
}

// Made before anything fails.
std::wstring const longName(300, L'x');
VEK_VARIANT const narrow("a<b, narrow text"), wide(L"a<b, wide text");

TEST(XMLElementAttributes, FailedAllocations)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    CVekLibrary const library;
    using Element = CVekXMLElement;
    std::tuple<bool (*)(Element &), std::wstring> const rows[] = {
        // clang-format off
        {[](Element & e) { return e.AddAttribute(L"name", narrow, 0) == 0; },
         L"e[name=a&lt;b, narrow text a=old]"},
        {[](Element & e) { return e.AddAttribute(L"name", wide, 0) == 0; },
         L"e[name=a&lt;b, wide text a=old]"},
        {[](Element & e) { return e.SetAttributeValue(L"a", narrow, false); },
         L"e[a=a&lt;b, narrow text]"},
        {[](Element & e) { return e.SetAttributeValue(L"a", wide, false); }, L"e[a=a&lt;b, wide text]"},
        {[](Element & e) { return e.SetAttributeValue(0, narrow); }, L"e[a=a<b, narrow text]"},
        {[](Element & e) { return e.SetAttributeValue(0, wide); }, L"e[a=a<b, wide text]"},
        {[](Element & e) { return e.RenameAttribute(L"a", L"a longer name"); }, L"e[a longer name=old]"},
        {[](Element & e) { return e.AddCDATASection(reinterpret_cast<unsigned char const *>(L"x"), 2); },
         L"e[a=old]'x'"},
        {[](Element & e) { return e.FindChild(longName.c_str(), true) != nullptr; }, L"e[a=old]{" + longName + L"}"},
        // clang-format on
    };
    for (auto const & [operation, after] : rows)
    {
        bool failed = true;
        for (std::size_t n = 1; failed; ++n)
        {
            SCOPED_TRACE(testing::PrintToString(after.substr(0, 40)) + ", allocation " + std::to_string(n));
            auto const element = WithValues({L"old"});
            VekGuard::FailAllocation(n);
            bool const done = operation(*element);
            failed = VekGuard::FailReset();
            // A new element can do without the block of its empty name, which is the second one.
            EXPECT_TRUE(done == !failed || (element->GetNumChildren() && n == 2));
            EXPECT_TRUE(failed || n > 1) << "nothing was allocated";
            EXPECT_EQ(TreeText(*element), done ? after : L"e[a=old]") << "nothing is stored by halves";
        }
    }
}

} // namespace
