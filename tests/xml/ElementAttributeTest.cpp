// Attributes of an element: adding, setting, renaming, removing, typed reads, and the text forms of variants.

#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/XMLKit.h"

#include <gtest/gtest.h>

#include <guiddef.h>

#include <random>

namespace
{

Holder<CVekXMLElement> Element(wchar_t const * name = L"e")
{
    return Holder<CVekXMLElement>(new CVekXMLElement(name, static_cast<int>(wcslen(name))));
}

// An element with the attributes "a", "b" and so on, as many as there are values, stored as they are.
Holder<CVekXMLElement> WithValues(std::vector<std::wstring> const & values)
{
    auto element = Element();
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        wchar_t const name[] = {static_cast<wchar_t>(L'a' + i), 0};
        element->AddAttribute(name, L"", -1);
        element->SetAttributeValue(static_cast<int>(i), values[i].c_str());
    }
    return element;
}

std::wstring Stored(IVekXMLElement const & element, int index)
{
    return static_cast<wchar_t const *>(element.GetAttributeValue(index));
}

std::wstring ReadByName(IVekXMLElement const & element, wchar_t const * name)
{
    CVekString<wchar_t> value;
    element.GetAttributeValue(name, value, L"(default)");
    return static_cast<wchar_t const *>(value);
}

TEST(XMLElementAttributes, AddAttributePlaces)
{
    struct
    {
        int count;
        int index;
        int result;
        wchar_t const * after;
        char const * row;
    } const rows[] = {
        {0, -1, 0, L"e[x=1]", "first"},
        {2, -1, 2, L"e[a= b= x=1]", "-1 appends"},
        {2, 0, 0, L"e[x=1 a= b=]", "at the front"},
        {2, 1, 1, L"e[a= x=1 b=]", "deliberate: unlike AddChild, the last position inserts"},
        {1, 0, 0, L"e[x=1 a=]", "deliberate: so does the front of one"},
        {2, 2, 2, L"e[a= b= x=1]", "the count appends"},
        {2, INT_MAX, 2, L"e[a= b= x=1]", "far beyond appends"},
        {2, INT_MIN, 2, L"e[a= b= x=1]", "negative appends"},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.row);
        auto const element = WithValues(std::vector<std::wstring>(static_cast<std::size_t>(row.count)));
        EXPECT_EQ(element->AddAttribute(L"x", 1, row.index), row.result);
        EXPECT_EQ(TreeText(*element), row.after);
    }
}

TEST(XMLElementAttributes, NamesAreTakenInAnyCase)
{
    LogCapture log;
    auto const element = WithValues({L"1"});
    EXPECT_EQ(element->AddAttribute(L"A", 2, -1), -1);
    EXPECT_EQ(element->AddAttribute(L"A", VEK_DT_UNKNOWN, -1), -1) << "the name is looked at first";
    EXPECT_EQ(log.Take(), L"");
    EXPECT_EQ(element->AddAttribute(nullptr, 2, -1), 1);
    EXPECT_EQ(element->AddAttribute(L"", 3, -1), -1);
    EXPECT_EQ(element->FindAttributeIndex(L"A"), 0);
    EXPECT_EQ(element->FindAttributeIndex(nullptr), 1);
    EXPECT_EQ(element->FindAttributeIndex(L"none"), -1);
    EXPECT_EQ(TreeText(*element), L"e[a=1 =2]");
}

TEST(XMLElementAttributes, SetByNameEscapesByIndexDoesNot)
{
    struct
    {
        wchar_t const * text;
        wchar_t const * stored;
        wchar_t const * readBack;
    } const rows[] = {
        {L"a<b\n", L"a&lt;b&lt;EOL&gt;", L"a<b\n"},
        {L"<>&'\"", L"&lt;&gt;&amp;&apos;&quot;", L"<>&'\""},
        {L"plain", L"plain", L"plain"},
        {L"", L"", L""},
        // Kept: "&amp;" is undone first.
        {L"&lt;", L"&amp;lt;", L"<"},
        {L"<EOL>", L"&lt;EOL&gt;", L"\n"},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
        auto const element = WithValues({L"old"});
        EXPECT_TRUE(element->SetAttributeValue(L"A", row.text, false));
        EXPECT_EQ(Stored(*element, 0), row.stored);
        EXPECT_EQ(ReadByName(*element, L"a"), row.readBack);
        CVekString<wchar_t> byIndex;
        EXPECT_TRUE(element->GetAttributeValue(0, byIndex, L"(default)"));
        EXPECT_EQ(std::wstring(byIndex), row.stored) << "kept: reading by index does not undo the escaping";
        EXPECT_TRUE(element->SetAttributeValue(0, row.text));
        EXPECT_EQ(Stored(*element, 0), row.text) << "kept: setting by index does not escape";
        EXPECT_EQ(element->AddAttribute(L"new", row.text, -1), 1);
        EXPECT_EQ(Stored(*element, 1), row.stored);
    }
}

TEST(XMLElementAttributes, SetAttributeValueOutcomes)
{
    LogCapture log;
    auto const element = WithValues({L"1"});
    EXPECT_FALSE(element->SetAttributeValue(L"x", 2, false));
    EXPECT_EQ(log.Take(), L"");
    EXPECT_TRUE(element->SetAttributeValue(L"x", 2, true));
    EXPECT_FALSE(element->SetAttributeValue(L"y", VEK_DT_BUFFER, true));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type");
    EXPECT_FALSE(element->SetAttributeValue(L"x", VEK_DT_BUFFER, true));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type\n"
                          L"CVekXMLElement::SetAttributeValue --> Failed to convert to string");
    EXPECT_FALSE(element->SetAttributeValue(1, VEK_DT_BUFFER));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type\n"
                          L"CVekXMLElement::SetAttributeValue --> Can not convert value to string");
    EXPECT_FALSE(element->SetAttributeValue(2, 5));
    EXPECT_FALSE(element->SetAttributeValue(-1, 5));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::SetAttributeValue --> Invalid index 2\n"
                          L"CVekXMLElement::SetAttributeValue --> Invalid index -1");
    EXPECT_EQ(TreeText(*element), L"e[a=1 x=2]");
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
    for (int index : {-1, 0, 1})
    {
        EXPECT_FALSE(element->RemoveAttribute(index)) << index;
        EXPECT_FALSE(element->RenameAttribute(index, L"x")) << index;
        std::wstring const number = std::to_wstring(index);
        EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveAttribute --> Invalid index " + number +
                                  L"\nCVekXMLElement::RenameAttribute --> Invalid index " + number);
    }
    EXPECT_FALSE(element->RemoveAttribute(L"new"));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveAttribute --> Invalid index 0");
    for (int index : {2, 3, INT_MAX})
    {
        EXPECT_TRUE(element->RemoveAttribute(index)) << index;
        EXPECT_TRUE(element->RenameAttribute(index, L"x")) << index;
    }
    EXPECT_EQ(log.Take(), L"");
    EXPECT_EQ(TreeText(*element), L"e[new=1 NEW=2]");
    element->RenameAttribute(L"new", nullptr);
    EXPECT_EQ(element->FindAttributeIndex(L""), 0);
    element->RemoveAllAttributes();
    EXPECT_EQ(element->GetNumAttributes(), 0);
}

TEST(XMLElementAttributes, TypesWithoutAText)
{
    LogCapture log;
    auto const element = Element();
    GUID const id = {};
    VEK_VARIANT const matrix{CVekMatrix4x4<float>()};
    VEK_VARIANT const matrixDouble{CVekMatrix4x4<double>()};
    VEK_VARIANT const guid(id);
    VEK_VARIANT const unknown(VEK_DT_UNKNOWN);
    VEK_VARIANT const beyond(static_cast<VEK_DATATYPE>(22));
    VEK_VARIANT const negative(static_cast<VEK_DATATYPE>(-1));
    for (VEK_VARIANT const * value : {&matrix, &matrixDouble, &guid, &unknown, &beyond, &negative})
    {
        EXPECT_EQ(element->AddAttribute(L"x", *value, -1), -1);
        EXPECT_EQ(log.Take(), L"CVekXMLElement::VariantToString --> Invalid data type") << value->GetType();
    }
    EXPECT_EQ(element->GetNumAttributes(), 0);
}

TEST(XMLElementAttributes, VariantTexts)
{
    VEK_VARIANT twoInBool(true);
    twoInBool = static_cast<unsigned char>(2);
    std::string const narrowText(100'000, 'n');
    std::wstring const wideText(100'000, L'w');
    struct
    {
        VEK_VARIANT value;
        std::wstring text;
        char const * row;
    } const rows[] = {
        {true, L"TRUE", "1 bool"},
        {false, L"FALSE", "1 bool"},
        {twoInBool, L"FALSE", "1 deliberate: only a stored 1 is true"},
        {static_cast<unsigned char>(200), L"200", "2 byte"},
        {'z', L"z", "3 character"},
        {static_cast<char>(-23), L"\xFFE9", "3 kept: a narrow character is sign-extended"},
        {'\0', L"", "3 zero ends the text"},
        {L'\x20AC', L"\x20AC", "4 wide character"},
        {L'<', L"<", "4 set by index: not escaped"},
        {L'\0', L"", "4 zero ends the text"},
        {static_cast<short>(1234), L"1234", "5 short"},
        {static_cast<short>(-1), L"65535", "5 kept: read as unsigned"},
        {static_cast<unsigned short>(1234), L"1234", "6 unsigned short"},
        {static_cast<unsigned short>(65535), L"-1", "6 kept: read as signed"},
        {INT_MIN, L"-2147483648", "7 int"},
        {2147483647u, L"2147483647", "8 unsigned"},
        {4294967295u, L"-1", "8 kept: printed as signed"},
        {1.5f, L"1.500000", "9 float"},
        {0.1f, L"0.100000", "9 float"},
        {-2.25, L"-2.250000", "10 double"},
        {1e-9, L"0.000000", "10 kept: six digits"},
        {1e15, L"1000000000000000.000000", "10 double"},
        {"na\xEFve", L"na\xFFEFve", "11 narrow text, bytes sign-extended"},
        {"", L"", "11 empty"},
        {narrowText.c_str(), std::wstring(100'000, L'n'), "11 long"},
        {L"wide & \x4E2D", L"wide & \x4E2D", "12 wide text"},
        {wideText.c_str(), wideText, "12 long"},
        {CVekRGBA<unsigned char>(1, 2, 3, 255), L"1, 2, 3, 255", "13 byte colour"},
        {CVekRGBA<float>(0.5f, 1, 0, -1), L"0.500000, 1.000000, 0.000000, -1.000000", "14 colour"},
        {CVekVector4D<int>(1, -2, 3, INT_MAX), L"1, -2, 3, 2147483647", "15 int vector"},
        {CVekVector4D<float>(1, 0.1f, 3, 4), L"0, 1072693248, -1610612736, 1069128089",
         "16 kept: the halves of x and y as doubles"},
        {CVekVector4D<double>(1, 2.5, -3, 1e10), L"1.000000, 2.500000, -3.000000, 10000000000.000000",
         "17 double vector"},
    };
    auto const element = WithValues({L"old"});
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.row);
        EXPECT_TRUE(element->SetAttributeValue(0, row.value));
        EXPECT_EQ(Stored(*element, 0), row.text);
    }
    VEK_VARIANT const huge(CVekVector4D<double>(-DBL_MAX, -DBL_MAX, -DBL_MAX, -DBL_MAX));
    EXPECT_TRUE(element->SetAttributeValue(0, huge));
    EXPECT_EQ(Stored(*element, 0).size(), 4u * 317 + 3 * 2) << "the longest number text of all";
}

TEST(XMLElementAttributes, BadIndexes)
{
    LogCapture log;
    auto const element = WithValues({L"1"});
    for (int index : {-1, 1, INT_MIN, INT_MAX})
    {
        std::wstring const message = L"CVekXMLElement::GetAttributeValue --> Invalid index " + std::to_wstring(index);
        EXPECT_EQ(Stored(*element, index), L"");
        EXPECT_EQ(log.Take(), message);
        CVekString<wchar_t> text(L"old");
        EXPECT_FALSE(element->GetAttributeValue(index, text, L"default"));
        EXPECT_EQ(std::wstring(text), L"default");
        EXPECT_EQ(log.Take(), message);
        EXPECT_FALSE(element->GetAttributeValue(index, text, nullptr));
        EXPECT_EQ(std::wstring(text), L"");
        log.Clear();
        int number = 1;
        EXPECT_FALSE(element->GetAttributeValue(index, number, 7));
        EXPECT_EQ(number, 7);
        EXPECT_EQ(log.Take(), message);
        EXPECT_EQ(std::wstring(element->GetAttributeName(index)), L"");
        EXPECT_EQ(log.Take(), L"");
    }
    CVekString<wchar_t> text(L"own");
    EXPECT_FALSE(element->GetAttributeValue(L"none", text, text));
    EXPECT_EQ(std::wstring(text), L"own") << "the default may be the output itself";
    EXPECT_FALSE(element->GetAttributeValue(L"none", text, L"d"));
    EXPECT_EQ(std::wstring(text), L"d");
    EXPECT_EQ(log.Take(), L"");
}

TEST(XMLElementAttributes, HugeAndMany)
{
    LogCapture log;
    auto const element = Element();
    std::wstring const name(1'000'000, L'n');
    std::wstring const value(1'000'000, L'<');
    EXPECT_EQ(element->AddAttribute(name.c_str(), value.c_str(), -1), 0);
    EXPECT_EQ(element->FindAttributeIndex(name.c_str()), 0);
    EXPECT_EQ(element->GetAttributeValue(0).GetLength(), 4'000'000);
    EXPECT_EQ(ReadByName(*element, name.c_str()), value);
    element->RemoveAllAttributes();

    int const count = VekGuard::Active ? 1'000 : 10'000;
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(element->AddAttribute((L"a" + std::to_wstring(i)).c_str(), i, -1), i);
    int last = 0;
    EXPECT_TRUE(element->GetAttributeValue((L"A" + std::to_wstring(count - 1)).c_str(), last, 0));
    EXPECT_EQ(last, count - 1);
    EXPECT_EQ(log.Take(), L"");
}

TEST(XMLElementAttributes, FailedAllocations)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    VEK_VARIANT const narrow("a<b, a text of some length");
    VEK_VARIANT const wide(L"a<b, a text of some length");
    struct
    {
        char const * row;
        bool (*operation)(CVekXMLElement &, VEK_VARIANT const &);
        wchar_t const * after;
    } const rows[] = {
        {"AddAttribute", [](CVekXMLElement & e, VEK_VARIANT const & v) { return e.AddAttribute(L"name", v, 0) == 0; },
         L"e[name=a&lt;b, a text of some length a=old]"},
        {"SetAttributeValue by name",
         [](CVekXMLElement & e, VEK_VARIANT const & v) { return e.SetAttributeValue(L"a", v, false); },
         L"e[a=a&lt;b, a text of some length]"},
        {"SetAttributeValue by index",
         [](CVekXMLElement & e, VEK_VARIANT const & v) { return e.SetAttributeValue(0, v); },
         L"e[a=a<b, a text of some length]"},
        {"RenameAttribute",
         [](CVekXMLElement & e, VEK_VARIANT const &) { return e.RenameAttribute(L"a", L"a longer name"); },
         L"e[a longer name=old]"},
    };
    for (auto const & row : rows)
    {
        for (VEK_VARIANT const * value : {&narrow, &wide})
        {
            bool failed = true;
            for (std::size_t n = 1; failed; ++n)
            {
                SCOPED_TRACE(testing::Message() << row.row << ", allocation " << n);
                auto const element = WithValues({L"old"});
                VekGuard::FailAllocation(n);
                bool const done = row.operation(*element, *value);
                failed = VekGuard::FailReset();
                EXPECT_EQ(done, !failed);
                EXPECT_EQ(TreeText(*element), failed ? L"e[a=old]" : row.after) << "nothing is stored by halves";
            }
        }
    }
}

class AttributeModel
{
public:
    void Step()
    {
        static wchar_t const * const names[] = {L"a", L"A", L"b", L"bb", L"", L"c", L"d", L"D"};
        wchar_t const * const name = names[Random(0, 7)];
        int const count = static_cast<int>(m_model.size());
        int const index = Random(-2, count + 2);
        int const found = Find(name);
        bool const inside = index >= 0 && index < count;
        std::wstring const value = std::to_wstring(Random(-99, 99));
        bool const add = Random(0, 1) != 0;
        switch (Random(0, 6))
        {
        case 0:
        case 1:
        {
            int const place = found != -1 ? -1 : inside ? index : count;
            if (place != -1)
                m_model.insert(m_model.begin() + place, {name, value});
            EXPECT_EQ(m_element->AddAttribute(name, value.c_str(), index), place);
            break;
        }
        case 2:
            if (found != -1)
                m_model[static_cast<std::size_t>(found)].second = value;
            else if (add)
                m_model.push_back({name, value});
            EXPECT_EQ(m_element->SetAttributeValue(name, value.c_str(), add), found != -1 || add);
            break;
        case 3:
            if (inside)
                m_model[static_cast<std::size_t>(index)].second = value;
            EXPECT_EQ(m_element->SetAttributeValue(index, value.c_str()), inside);
            break;
        case 4:
            if (found != -1)
                m_model[static_cast<std::size_t>(found)].first = names[index & 7];
            EXPECT_EQ(m_element->RenameAttribute(name, names[index & 7]), found != -1);
            break;
        case 5:
            EXPECT_EQ(m_element->RemoveAttribute(index), index >= count);
            EXPECT_FALSE(m_element->RemoveAttribute(name));
            break;
        default:
            if (Random(0, 15) == 0)
            {
                m_model.clear();
                m_element->RemoveAllAttributes();
            }
        }
    }

    void Check() const
    {
        ASSERT_EQ(m_element->GetNumAttributes(), static_cast<int>(m_model.size()));
        for (std::size_t i = 0; i < m_model.size(); ++i)
        {
            ASSERT_EQ(std::wstring(m_element->GetAttributeName(static_cast<int>(i))), m_model[i].first);
            ASSERT_EQ(Stored(*m_element, static_cast<int>(i)), m_model[i].second);
            ASSERT_EQ(m_element->FindAttributeIndex(m_model[i].first.c_str()), Find(m_model[i].first.c_str()));
        }
    }

private:
    int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    int Find(wchar_t const * name) const
    {
        for (std::size_t i = 0; i < m_model.size(); ++i)
            if (_wcsicmp(m_model[i].first.c_str(), name) == 0)
                return static_cast<int>(i);
        return -1;
    }

    std::mt19937 m_random{4711};
    Holder<CVekXMLElement> m_element = Element();
    std::vector<std::pair<std::wstring, std::wstring>> m_model;
};

TEST(XMLElementAttributes, FollowAModel)
{
    CVekSetDebugOutputLevel const quiet(-1);
    AttributeModel model;
    for (int step = 0; step < 20'000 && !testing::Test::HasFailure(); ++step)
    {
        SCOPED_TRACE(step);
        model.Step();
        model.Check();
    }
}

} // namespace
