// Children, name, parent and CDATA of an element, and the places of children and attributes.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/Slots.h"
#include "support/XMLKit.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace
{

#if defined(__i386__)
static_assert(sizeof(CVekXMLElement) == 60);
static_assert(sizeof(CVekXMLAttribute) == 16);
#endif

// An element named "top" with children of the given names, each held by it alone; "0" stands for a null entry.
Holder<CVekXMLElement> Family(std::wstring const & names)
{
    auto top = NewElement(L"top");
    std::wistringstream stream(names);
    for (std::wstring name; stream >> name;)
        top->AddChild(name == L"0" ? nullptr : static_cast<CVekXMLElement *>(NewElement(name)), -1);
    return top;
}

TEST(XMLElement, BeginsEmptyAndTakesAnyName)
{
    Holder<CVekXMLElement> const element(new CVekXMLElement);
    EXPECT_EQ(TreeText(*element), L"");
    EXPECT_EQ(element->GetParent(), nullptr);
    EXPECT_EQ(element->GetCDATASection(), nullptr);
    EXPECT_EQ(element->GetRefCount(), 1u);
    std::wstring const huge(1'000'000, L'n');
    for (wchar_t const * name : {L"new", L"", L"caf\x00E9", huge.c_str(), static_cast<wchar_t const *>(nullptr)})
    {
        element->SetName(name);
        EXPECT_EQ(std::wstring(element->GetName()), name ? name : L"");
    }
}

TEST(XMLElement, PlacesOfChildrenAndAttributes)
{
    std::tuple<char const *, wchar_t const *, int, int, int, wchar_t const *> const rows[] = {
        {"first", L"", -1, 0, 0, L"top[x=]{x}"},
        {"-1 appends", L"a b", -1, 2, 2, L"top[a= b= x=]{a b x}"},
        {"in the middle", L"a b c", 1, 1, 1, L"top[a= x= b= c=]{a x b c}"},
        {"at the front of two", L"a b", 0, 0, 0, L"top[x= a= b=]{x a b}"},
        {"kept: the last position appends a child, but inserts an attribute", L"a b", 1, 2, 1, L"top[a= x= b=]{a b x}"},
        {"kept: so does the front of one", L"a", 0, 1, 0, L"top[x= a=]{a x}"},
        {"the count appends", L"a b", 2, 2, 2, L"top[a= b= x=]{a b x}"},
        {"far beyond appends", L"a b", INT_MAX, 2, 2, L"top[a= b= x=]{a b x}"},
        {"negative appends", L"a b c", -2, 3, 3, L"top[a= b= c= x=]{a b c x}"},
        {"very negative appends", L"a b c", INT_MIN, 3, 3, L"top[a= b= c= x=]{a b c x}"},
    };
    for (auto const & [row, before, index, childAt, attributeAt, after] : rows)
    {
        SCOPED_TRACE(row);
        auto const top = Family(before);
        for (int i = 0; i < top->GetNumChildren(); ++i)
            top->AddAttribute(top->GetChild(i)->GetName(), L"", -1);
        auto const child = NewElement(L"x");
        EXPECT_EQ(top->AddChild(child, index), childAt);
        EXPECT_EQ(top->AddAttribute(L"x", L"", index), attributeAt);
        EXPECT_EQ(TreeText(*top), after);
        EXPECT_EQ(child->GetRefCount(), 2u);
        EXPECT_EQ(child->GetParent(), nullptr) << "kept: AddChild records no parent";
    }
}

TEST(XMLElement, FindRemoveAndGetChild)
{
    LogCapture log;
    auto const top = Family(L"0 a B a2 b 0");
    EXPECT_EQ(top->FindChild(L"b"), top->GetChild(2)) << "the first match, in any case";
    EXPECT_EQ(top->FindChild(L"A2", false), top->GetChild(3));
    EXPECT_EQ(top->FindChild(L"none", false), nullptr);
    EXPECT_EQ(top->FindChild(nullptr), nullptr) << "null entries have no name, not even an empty one";
    EXPECT_EQ(top->GetChild(0), nullptr);
    top->RemoveChild(L"B");
    EXPECT_EQ(TreeText(*top), L"top{0 a a2 b 0}");
    top->RemoveChild(L"none");
    top->RemoveChild(static_cast<wchar_t const *>(nullptr));
    top->RemoveChild(top->GetChild(2));
    top->RemoveChild(1);
    EXPECT_EQ(TreeText(*top), L"top{0 b 0}");
    EXPECT_EQ(log.Take(), L"");
    top->RemoveChild(3);
    top->RemoveChild(-1);
    EXPECT_EQ(top->GetChild(3), nullptr);
    EXPECT_EQ(static_cast<CVekXMLElement const &>(*top).GetChild(-1), nullptr);
    EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveChild --> Invalid index 3\n"
                          L"CVekXMLElement::RemoveChild --> Invalid index -1\n"
                          L"CVekXMLElement::GetChild --> Invalid index 3\n"
                          L"CVekXMLElement::GetChild --> Invalid index -1");

    top->RemoveChild(static_cast<IVekXMLElement *>(NewElement(L"b")));
    auto const unnamed = NewElement();
    top->AddChild(unnamed, -1);
    EXPECT_EQ(TreeText(*top), L"top{0 b 0 }") << "an element of the same name is not the same element";
    EXPECT_EQ(top->FindChild(nullptr), static_cast<IVekXMLElement *>(unnamed)) << "null matches an empty name";
    top->RemoveAllChildren();
    EXPECT_EQ(TreeText(*top), L"top");
    EXPECT_EQ(unnamed->GetRefCount(), 1u);
}

TEST(XMLElement, NamesFoldOnlyASCIILetters)
{
    std::tuple<wchar_t const *, wchar_t const *, bool> const rows[] = {
        // clang-format off
        {L"azAZ09", L"AZaz09", true}, {L"\x00E9t\x00E9", L"\x00E9T\x00E9", true}, {L"\x00E9", L"\x00C9", false},
        {L"@", L"`", false}, {L"[", L"{", false}, {L"abc", L"ab", false}, {L"ab", L"abc", false},
        {L"long-enough-for-blocks", L"LONG-ENOUGH-FOR-BLOCKS", true},
        {L"long-enough-for-blocks", L"LONG-ENOUGH-FOR-BLOCKZ", false},
        // clang-format on
    };
    for (auto const & [name, asked, found] : rows)
        EXPECT_EQ(Family(name)->FindChild(asked) != nullptr, found)
            << testing::PrintToString(std::wstring(name)) << " " << testing::PrintToString(std::wstring(asked));
}

TEST(XMLElement, FindChildCreates)
{
    LibraryScope const library;
    auto const top = Family(L"a");
    EXPECT_EQ(top->FindChild(L"A", true), top->GetChild(0));
    IVekXMLElement * const made = top->FindChild(L"b", true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetRefCount(), 1u) << "the parent's is the only reference";
    EXPECT_EQ(top->FindChild(L"B", true), made);
    EXPECT_NE(top->FindChild(nullptr, true), nullptr);
    EXPECT_EQ(TreeText(*top), L"top{a b }");
}

TEST(XMLElement, ForeignElementsAreNullEntries)
{
    LogCapture log;
    auto const top = Family(L"a");
    Holder<ForeignElement> const foreign(new ForeignElement(L"f"));
    EXPECT_EQ(top->AddChild(foreign, -1), 1);
    EXPECT_EQ(foreign->GetRefCount(), 2u) << "deliberate: the reference is added all the same";
    EXPECT_EQ(top->GetChild(1), nullptr);
    EXPECT_EQ(top->FindChild(L"f"), nullptr);
    EXPECT_EQ(top->AddChild(NewElement(L"b"), -1), 2);
    top->RemoveChild(static_cast<IVekXMLElement *>(foreign));
    EXPECT_EQ(TreeText(*top), L"top{a b}") << "kept: a foreign element is removed as the first null entry";
    top->AddChild(foreign, 0);
    top->RemoveChild(0);
    EXPECT_EQ(TreeText(*top), L"top{a b}");
    top->AddChild(foreign, 0);
    top->RemoveAllChildren();
    EXPECT_EQ(foreign->GetRefCount(), 4u) << "and nothing gives the references back";
    EXPECT_EQ(log.Take(), L"");
    while (foreign->GetRefCount() > 1)
        foreign->Release();
}

struct DerivedElement : CVekXMLElement
{
    explicit DerivedElement(bool & gone) : m_gone(gone) {}
    ~DerivedElement() override { m_gone = true; }
    bool & m_gone;
};

TEST(XMLElement, DerivedElementsAreTheLibrarysOwn)
{
    bool gone = false, topGone = false;
    Holder<CVekXMLElement> const top(new DerivedElement(topGone));
    {
        Holder<CVekXMLElement> const child(new DerivedElement(gone));
        top->AddChild(child, -1);
        top->AddChild(NewElement(L"plain"), -1);
        EXPECT_EQ(TreeText(*top), L"{ plain}");
    }
    EXPECT_FALSE(gone);
    top->RemoveAllChildren();
    EXPECT_TRUE(gone);
}

struct OtherElement
{
    std::uintptr_t const * table;
    unsigned int references;
    unsigned int AddRef() { return ++references; }
};

// What stands in front of another compiler's tables is not what this one puts there.
TEST(XMLElement, ElementsOfOtherCompilersAreNullEntries)
{
    static std::uintptr_t const locator[4] = {};
    std::tuple<std::uintptr_t, void const *, char const *> const rows[] = {
        {0, locator, "a record that begins with 0"},
        {reinterpret_cast<std::uintptr_t>(locator), locator, "an address before that"},
        {0, reinterpret_cast<void const *>(std::uintptr_t{0x41414144}), "no address at all"},
        {0, reinterpret_cast<char const *>(locator) + 1, "an odd address"},
        {0, nullptr, "null"},
    };
    for (auto const & [before, record, row] : rows)
    {
        SCOPED_TRACE(row);
        std::uintptr_t table[2 + 55] = {before, reinterpret_cast<std::uintptr_t>(record)};
        table[2] = reinterpret_cast<std::uintptr_t>(std::bit_cast<MemberPointer>(&OtherElement::AddRef).address);
        OtherElement object = {table + 2, 1};
        auto const top = NewElement();
        EXPECT_EQ(top->AddChild(reinterpret_cast<IVekXMLElement *>(&object), -1), 0);
        EXPECT_EQ(TreeText(*top), L"{0}");
        EXPECT_EQ(object.references, 2u);
    }
}

TEST(XMLElement, SetParentOnce)
{
    LogCapture log;
    auto const first = NewElement(), second = NewElement(), child = NewElement();
    child->SetParent(nullptr);
    child->SetParent(first);
    EXPECT_EQ(log.Take(), L"");
    child->SetParent(second);
    child->SetParent(nullptr);
    EXPECT_EQ(log.Take(), L"CVekXMLElement::SetParent --> This Element still belongs to other Element\n"
                          L"CVekXMLElement::SetParent --> This Element still belongs to other Element");
    EXPECT_EQ(child->GetParent(), static_cast<IVekXMLElement *>(first));
    EXPECT_EQ(first->GetRefCount(), 1u) << "a parent is not counted";
}

TEST(XMLElement, CDATASection)
{
    LogCapture log;
    auto const element = NewElement();
    unsigned char const bytes[] = {1, 0, 2, 0, 3};
    ASSERT_TRUE(element->AddCDATASection(bytes, 5));
    EXPECT_NE(element->GetCDATASection(), bytes);
    EXPECT_EQ(std::string(reinterpret_cast<char const *>(element->GetCDATASection()), 5), std::string("\1\0\2\0\3", 5));
    EXPECT_FALSE(element->AddCDATASection(bytes, 1));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::AddCDATASection --> This Element already has CDATA section");
    EXPECT_EQ(element->GetCDATASectionSize(), 5);
    element->RemoveCDATASection();
    element->RemoveCDATASection();
    EXPECT_EQ(element->GetCDATASection(), nullptr);
    EXPECT_EQ(element->GetCDATASectionSize(), 0);
    EXPECT_TRUE(element->AddCDATASection(nullptr, 0)) << "a section of no bytes is a section";
    EXPECT_TRUE(element->HasCDATASection());
    EXPECT_FALSE(element->AddCDATASection(bytes, 5));
    element->RemoveCDATASection();
    log.Clear();
    EXPECT_FALSE(element->AddCDATASection(bytes, -1));
    EXPECT_FALSE(element->AddCDATASection(nullptr, 4));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::AddCDATASection --> Failed to allocate memory for CDATA\n"
                          L"CVekXMLElement::AddCDATASection --> Failed to allocate memory for CDATA");
    EXPECT_FALSE(element->HasCDATASection());
}

// The copies share everything without references of their own: of each pair only one object is ever destroyed.
TEST(XMLElement, CopiesAreShallow)
{
    auto const parent = NewElement();
    auto const original = Family(L"a b");
    original->SetParent(parent);
    original->AddAttribute(L"n", 7, -1);
    unsigned char const bytes[] = {1, 0};
    original->AddCDATASection(bytes, 2);
    original->AddRef();

    alignas(CVekXMLElement) unsigned char places[2][sizeof(CVekXMLElement)];
    auto * const copy = new (static_cast<void *>(places[0])) CVekXMLElement(*original);
    auto * const assigned = new (static_cast<void *>(places[1])) CVekXMLElement;
    *assigned = *original;
    for (CVekXMLElement * each : {copy, assigned})
    {
        SCOPED_TRACE(each == copy ? "constructed" : "assigned");
        EXPECT_EQ(TreeText(*each), L"top[n=7]'\x0001'{a b}");
        EXPECT_EQ(each->GetRefCount(), 2u) << "kept: the count is copied, too";
        EXPECT_EQ(each->GetParent(), static_cast<IVekXMLElement *>(parent));
        EXPECT_EQ(each->GetChild(1), original->GetChild(1));
        EXPECT_EQ(each->GetCDATASection(), original->GetCDATASection());
        EXPECT_EQ(&each->GetAttributeName(0), &original->GetAttributeName(0));
        EXPECT_EQ(each->GetChild(0)->GetRefCount(), 1u);
        // Only the name is each copy's own.
        const_cast<CVekString<wchar_t> &>(each->GetName()).~CVekString<wchar_t>();
    }
    original->Release();
}

TEST(XMLElement, SharedAndSelfHeldChildren)
{
    auto const shared = Family(L"inner");
    {
        auto const top = Family(L"left right");
        top->GetChild(0)->AddChild(shared, -1);
        top->GetChild(1)->AddChild(shared, -1);
        top->GetChild(1)->AddChild(shared, -1);
        EXPECT_EQ(shared->GetRefCount(), 4u);
    }
    EXPECT_EQ(shared->GetRefCount(), 1u);
    EXPECT_EQ(TreeText(*shared), L"top{inner}") << "what others hold lives on whole";

    // An element that holds itself ends when it lets go, in the middle of its own operation.
    auto * const narcissus = new CVekXMLElement;
    narcissus->AddChild(narcissus, -1);
    EXPECT_EQ(narcissus->Release(), 1u);
    narcissus->RemoveAllChildren();
}

// The other operations: ElementAttributeTest.
TEST(XMLElement, FailedAllocationsOfAddChild)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    bool failed = true;
    for (std::size_t n = 1; failed; ++n)
    {
        SCOPED_TRACE(n);
        auto const top = Family(L"a");
        auto const child = NewElement(L"b");
        VekGuard::FailAllocation(n);
        int const index = top->AddChild(child, -1);
        failed = VekGuard::FailReset();
        EXPECT_TRUE(failed || n > 1) << "nothing was allocated";
        EXPECT_EQ(index, failed ? 0 : 1);
        EXPECT_EQ(TreeText(*top), failed ? L"top{a}" : L"top{a b}");
        EXPECT_EQ(child->GetRefCount(), 2u) << "kept: the extra reference stays even then";
        if (failed)
            child->Release();
    }
}

// An element beside plain lists of what it should hold, changed at random.
class ElementModel
{
public:
    ElementModel()
    {
        for (wchar_t const * name : NAMES)
            m_pool.push_back(NewElement(name));
    }

    void StepChildren()
    {
        int const count = static_cast<int>(m_children.size());
        int const index = Random(-2, count + 2);
        CVekXMLElement * const element = m_pool[static_cast<std::size_t>(Random(0, 7))];
        wchar_t const * const name = element->GetName();
        auto const named = std::find_if(m_children.begin(), m_children.end(),
                                        [&](CVekXMLElement * each) { return _wcsicmp(each->GetName(), name) == 0; });
        int const operation = Random(0, 9);
        if (operation < 4)
        {
            int const place = index >= 0 && index < count - 1 ? index : count;
            m_children.insert(m_children.begin() + place, element);
            EXPECT_EQ(m_top->AddChild(element, index), place);
            return;
        }
        auto removed = m_children.end();
        if (operation == 4)
        {
            EXPECT_EQ(m_top->FindChild(name, false), named == m_children.end() ? nullptr : *named);
        }
        else if (operation == 5)
        {
            removed = std::find(m_children.begin(), m_children.end(), element);
            m_top->RemoveChild(static_cast<IVekXMLElement *>(element));
        }
        else if (operation == 6)
        {
            removed = named;
            m_top->RemoveChild(name);
        }
        else if (operation == 7 && Random(0, 20) == 0)
        {
            m_children.clear();
            removed = m_children.end();
            m_top->RemoveAllChildren();
        }
        else
        {
            removed = index >= 0 && index < count ? m_children.begin() + index : removed;
            m_top->RemoveChild(index);
        }
        if (removed != m_children.end())
            m_children.erase(removed);
    }

    void StepAttributes()
    {
        wchar_t const * const name = NAMES[Random(0, 7)];
        wchar_t const * const newName = NAMES[Random(0, 7)];
        int const count = static_cast<int>(m_attributes.size());
        int const index = Random(-2, count + 2);
        bool const inside = index >= 0 && index < count;
        int const found = Find(name);
        std::wstring const value = std::to_wstring(Random(-99, 99));
        bool const add = Random(0, 1) != 0;
        switch (Random(0, 6))
        {
        case 0:
            if (Random(0, 15) == 0)
            {
                m_attributes.clear();
                m_top->RemoveAllAttributes();
            }
            break;
        case 1:
            if (found != -1)
                m_attributes[static_cast<std::size_t>(found)].second = value;
            else if (add)
                m_attributes.push_back({name, value});
            EXPECT_EQ(m_top->SetAttributeValue(name, value.c_str(), add), found != -1 || add);
            break;
        case 2:
            if (inside)
                m_attributes[static_cast<std::size_t>(index)].second = value;
            EXPECT_EQ(m_top->SetAttributeValue(index, value.c_str()), inside);
            break;
        case 3:
            if (found != -1)
                m_attributes[static_cast<std::size_t>(found)].first = newName;
            EXPECT_EQ(m_top->RenameAttribute(name, newName), found != -1);
            break;
        case 4:
            EXPECT_EQ(m_top->RemoveAttribute(index), index >= count);
            EXPECT_FALSE(m_top->RemoveAttribute(name));
            break;
        default:
            int const place = found != -1 ? -1 : inside ? index : count;
            if (place != -1)
                m_attributes.insert(m_attributes.begin() + place, {name, value});
            EXPECT_EQ(m_top->AddAttribute(name, value.c_str(), index), place);
        }
    }

    void Check() const
    {
        ASSERT_EQ(m_top->GetNumChildren(), static_cast<int>(m_children.size()));
        for (std::size_t i = 0; i < m_children.size(); ++i)
            ASSERT_EQ(m_top->GetChild(static_cast<int>(i)), m_children[i]);
        for (CVekXMLElement * const element : m_pool)
            ASSERT_EQ(element->GetRefCount() - 1, std::count(m_children.begin(), m_children.end(), element));
        ASSERT_EQ(m_top->GetNumAttributes(), static_cast<int>(m_attributes.size()));
        int index = 0;
        for (auto const & [name, value] : m_attributes)
        {
            ASSERT_EQ(m_top->FindAttributeIndex(name.c_str()), Find(name.c_str()));
            ASSERT_STREQ(m_top->GetAttributeName(index), name.c_str());
            ASSERT_STREQ(m_top->GetAttributeValue(index++), value.c_str());
        }
    }

private:
    static constexpr wchar_t const * NAMES[] = {L"a", L"A", L"b", L"", L"bb", L"c", L"C", L"d"};

    int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    int Find(wchar_t const * name) const
    {
        auto const at = std::find_if(m_attributes.begin(), m_attributes.end(),
                                     [&](auto const & each) { return _wcsicmp(each.first.c_str(), name) == 0; });
        return at == m_attributes.end() ? -1 : static_cast<int>(at - m_attributes.begin());
    }

    std::mt19937 m_random{20'260'101};
    std::vector<Holder<CVekXMLElement>> m_pool;
    Holder<CVekXMLElement> m_top = NewElement();
    std::vector<CVekXMLElement *> m_children;
    std::vector<std::pair<std::wstring, std::wstring>> m_attributes;
};

TEST(XMLElement, FollowsAModel)
{
    CVekSetDebugOutputLevel const quiet(-1);
    ElementModel model;
    for (int step = 0; step < 20'000 && !testing::Test::HasFailure(); ++step)
    {
        SCOPED_TRACE(step);
        model.StepChildren();
        model.StepAttributes();
        model.Check();
    }
}

} // namespace
