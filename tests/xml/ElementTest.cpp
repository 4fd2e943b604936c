// Children, name, parent and CDATA of an element.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/Slots.h"
#include "support/WarmUp.h"
#include "support/XMLKit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace
{

// The traces of this program's tests use memory that stays.
VekTest::WarmUp const g_warmUp([] { SCOPED_TRACE(0); });

#if defined(__i386__)
static_assert(sizeof(CVekXMLElement) == 60);
static_assert(sizeof(CVekXMLAttribute) == 16);
#endif

Holder<CVekXMLElement> Element(std::wstring const & name)
{
    return Holder<CVekXMLElement>(new CVekXMLElement(name.c_str(), static_cast<int>(name.size())));
}

// An element named "top" with children of the given names, each held by it alone; "0" stands for a null entry.
Holder<CVekXMLElement> Family(std::wstring const & names)
{
    auto top = Element(L"top");
    std::wistringstream stream(names);
    for (std::wstring name; stream >> name;)
        top->AddChild(name == L"0" ? nullptr : static_cast<IVekXMLElement *>(Element(name)), -1);
    return top;
}

std::wstring ChildNames(IVekXMLElement const & element)
{
    std::wstring names;
    for (int i = 0; i < element.GetNumChildren(); ++i)
    {
        IVekXMLElement const * const child = element.GetChild(i);
        if (i)
            names += L' ';
        names += child ? std::wstring(child->GetName()) : std::wstring(1, L'0');
    }
    return names;
}

TEST(XMLElement, BeginsEmpty)
{
    Holder<CVekXMLElement> const element(new CVekXMLElement);
    EXPECT_EQ(TreeText(*element), L"");
    EXPECT_EQ(element->GetParent(), nullptr);
    EXPECT_EQ(element->GetCDATASection(), nullptr);
    EXPECT_EQ(element->GetRefCount(), 1u);
}

TEST(XMLElement, SetName)
{
    auto const element = Element(L"old");
    std::wstring const huge(1'000'000, L'n');
    for (wchar_t const * name : {L"new", L"", L"caf\x00E9", huge.c_str()})
    {
        element->SetName(name);
        EXPECT_EQ(std::wstring(element->GetName()), name);
    }
    element->SetName(nullptr);
    EXPECT_EQ(element->GetName().GetLength(), 0);
}

TEST(XMLElement, AddChildPlaces)
{
    struct
    {
        wchar_t const * before;
        int index;
        int result;
        wchar_t const * after;
        char const * row;
    } const rows[] = {
        {L"", -1, 0, L"x", "first"},
        {L"a b", -1, 2, L"a b x", "-1 appends"},
        {L"a b c", 1, 1, L"a x b c", "in the middle"},
        {L"a b", 0, 0, L"x a b", "at the front of two"},
        {L"a b", 1, 2, L"a b x", "kept: the last position appends"},
        {L"a", 0, 1, L"a x", "kept: the front of one is its last position and appends"},
        {L"a b", 2, 2, L"a b x", "the count appends"},
        {L"a b", INT_MAX, 2, L"a b x", "far beyond appends"},
        {L"a b c", -2, 3, L"a b c x", "negative appends"},
        {L"a b c", INT_MIN, 3, L"a b c x", "very negative appends"},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.row);
        auto const top = Family(row.before);
        auto const child = Element(L"x");
        EXPECT_EQ(top->AddChild(child, row.index), row.result);
        EXPECT_EQ(ChildNames(*top), row.after);
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
    EXPECT_EQ(top->FindChild(L"none"), nullptr);
    EXPECT_EQ(top->FindChild(L"none", false), nullptr);
    EXPECT_EQ(top->FindChild(nullptr), nullptr) << "null entries have no name, not even an empty one";
    EXPECT_EQ(top->GetChild(0), nullptr);
    EXPECT_EQ(log.Take(), L"");

    top->RemoveChild(L"B");
    EXPECT_EQ(ChildNames(*top), L"0 a a2 b 0");
    top->RemoveChild(L"none");
    top->RemoveChild(static_cast<wchar_t const *>(nullptr));
    top->RemoveChild(top->GetChild(2));
    EXPECT_EQ(ChildNames(*top), L"0 a b 0");
    top->RemoveChild(1);
    EXPECT_EQ(ChildNames(*top), L"0 b 0");
    EXPECT_EQ(log.Take(), L"");
    top->RemoveChild(3);
    top->RemoveChild(-1);
    EXPECT_EQ(top->GetChild(3), nullptr);
    EXPECT_EQ(static_cast<CVekXMLElement const &>(*top).GetChild(-1), nullptr);
    EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveChild --> Invalid index 3\n"
                          L"CVekXMLElement::RemoveChild --> Invalid index -1\n"
                          L"CVekXMLElement::GetChild --> Invalid index 3\n"
                          L"CVekXMLElement::GetChild --> Invalid index -1");

    auto const stranger = Element(L"b");
    top->RemoveChild(static_cast<IVekXMLElement *>(stranger));
    EXPECT_EQ(ChildNames(*top), L"0 b 0") << "an element of the same name is not the same element";
    auto const unnamed = Element(L"");
    top->AddChild(unnamed, -1);
    EXPECT_EQ(top->FindChild(nullptr), static_cast<IVekXMLElement *>(unnamed)) << "null matches an empty name";
    EXPECT_EQ(top->FindChild(L""), static_cast<IVekXMLElement *>(unnamed));
    top->RemoveAllChildren();
    EXPECT_EQ(ChildNames(*top), L"");
    EXPECT_EQ(unnamed->GetRefCount(), 1u);
    EXPECT_EQ(log.Take(), L"");
}

TEST(XMLElement, NamesFoldOnlyASCIILetters)
{
    struct
    {
        wchar_t const * name;
        wchar_t const * asked;
        bool found;
    } const rows[] = {
        {L"azAZ09", L"AZaz09", true},
        {L"\x00E9t\x00E9", L"\x00E9T\x00E9", true},
        {L"\x00E9", L"\x00C9", false},
        {L"@", L"`", false},
        {L"[", L"{", false},
        {L"abc", L"ab", false},
        {L"ab", L"abc", false},
        {L"long-enough-for-blocks", L"LONG-ENOUGH-FOR-BLOCKS", true},
        {L"long-enough-for-blocks", L"LONG-ENOUGH-FOR-BLOCKZ", false},
    };
    for (auto const & row : rows)
        EXPECT_EQ(Family(row.name)->FindChild(row.asked) != nullptr, row.found)
            << testing::PrintToString(std::wstring(row.name)) << " " << testing::PrintToString(std::wstring(row.asked));
}

TEST(XMLElement, FindChildCreates)
{
    LibraryScope const library;
    auto const top = Family(L"a");
    EXPECT_EQ(top->FindChild(L"A", true), top->GetChild(0));
    IVekXMLElement * const made = top->FindChild(L"b", true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetRefCount(), 1u) << "the parent's is the only reference";
    EXPECT_EQ(ChildNames(*top), L"a b");
    EXPECT_EQ(top->FindChild(L"B", true), made);
    EXPECT_NE(top->FindChild(nullptr, true), nullptr);
    EXPECT_EQ(ChildNames(*top), L"a b ");
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
    EXPECT_EQ(top->AddChild(Element(L"b"), -1), 2);
    top->RemoveChild(static_cast<IVekXMLElement *>(foreign));
    EXPECT_EQ(ChildNames(*top), L"a b") << "kept: a foreign element is removed as the first null entry";
    EXPECT_EQ(foreign->GetRefCount(), 2u);
    top->AddChild(foreign, 0);
    top->RemoveChild(0);
    EXPECT_EQ(ChildNames(*top), L"a b");
    top->AddChild(foreign, 0);
    top->RemoveAllChildren();
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
    bool gone = false;
    bool topGone = false;
    Holder<CVekXMLElement> top(new DerivedElement(topGone));
    {
        Holder<CVekXMLElement> const child(new DerivedElement(gone));
        top->AddChild(child, -1);
        EXPECT_EQ(top->GetChild(0), static_cast<IVekXMLElement *>(child));
        top->AddChild(Element(L"plain"), -1);
        EXPECT_EQ(ChildNames(*top), L" plain");
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
    struct
    {
        std::uintptr_t before;
        void const * record;
        char const * row;
    } const rows[] = {
        {0, locator, "a record that begins with 0"},
        {reinterpret_cast<std::uintptr_t>(locator), locator, "an address before that"},
        {0, reinterpret_cast<void const *>(std::uintptr_t{0x41414144}), "no address at all"},
        {0, reinterpret_cast<char const *>(locator) + 1, "an odd address"},
        {0, nullptr, "null"},
    };
    for (auto const & row : rows)
    {
        SCOPED_TRACE(row.row);
        std::uintptr_t table[2 + 55] = {row.before, reinterpret_cast<std::uintptr_t>(row.record)};
        table[2] = reinterpret_cast<std::uintptr_t>(std::bit_cast<MemberPointer>(&OtherElement::AddRef).address);
        OtherElement object = {table + 2, 1};
        Holder<CVekXMLElement> const top(new CVekXMLElement);
        EXPECT_EQ(top->AddChild(reinterpret_cast<IVekXMLElement *>(&object), -1), 0);
        EXPECT_EQ(ChildNames(*top), L"0");
        EXPECT_EQ(object.references, 2u);
    }
}

TEST(XMLElement, SetParentOnce)
{
    LogCapture log;
    auto const first = Element(L"first");
    auto const second = Element(L"second");
    auto const child = Element(L"child");
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
    auto const element = Element(L"e");
    unsigned char const bytes[] = {1, 0, 2, 0, 3};
    ASSERT_TRUE(element->AddCDATASection(bytes, 5));
    EXPECT_NE(element->GetCDATASection(), bytes);
    EXPECT_EQ(std::string(reinterpret_cast<char const *>(element->GetCDATASection()), 5), std::string("\1\0\2\0\3", 5));
    EXPECT_EQ(element->GetCDATASectionSize(), 5);
    EXPECT_FALSE(element->AddCDATASection(bytes, 1));
    EXPECT_EQ(log.Take(), L"CVekXMLElement::AddCDATASection --> This Element already has CDATA section");
    EXPECT_EQ(element->GetCDATASectionSize(), 5);
    element->RemoveCDATASection();
    element->RemoveCDATASection();
    EXPECT_FALSE(element->HasCDATASection());
    EXPECT_EQ(element->GetCDATASection(), nullptr);
    EXPECT_EQ(element->GetCDATASectionSize(), 0);
    EXPECT_TRUE(element->AddCDATASection(nullptr, 0)) << "a section of no bytes is a section";
    EXPECT_TRUE(element->HasCDATASection());
    EXPECT_FALSE(element->AddCDATASection(bytes, 5));
    element->RemoveCDATASection();
    EXPECT_FALSE(element->HasCDATASection());
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
    auto const parent = Element(L"parent");
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

TEST(XMLElement, MillionNestedElementsEnd)
{
    int const count = VekGuard::Active ? 20'000 : 1'000'000;
    Holder<CVekXMLElement> const top(new CVekXMLElement);
    CVekXMLElement * last = top;
    for (int i = 0; i < count; ++i)
    {
        auto * const next = new CVekXMLElement;
        last->AddChild(next, -1);
        next->Release();
        last = next;
    }
    last->AddRef();
    top->RemoveAllChildren();
    EXPECT_EQ(last->Release(), 0u) << "only the held end of the chain is left";
    EXPECT_EQ(top->GetNumChildren(), 0);
}

TEST(XMLElement, MillionSiblingsEnd)
{
    int const count = VekGuard::Active ? 20'000 : 1'000'000;
    Holder<CVekXMLElement> const top(new CVekXMLElement);
    for (int i = 0; i < count; ++i)
        top->AddChild(Holder<CVekXMLElement>(new CVekXMLElement), -1);
    EXPECT_EQ(top->GetNumChildren(), count);
}

// Runs the operation with its first allocation failing, then its second, until none fails any more.
template <class Operation>
void WithFailingAllocations(char const * name, Operation operation)
{
    SCOPED_TRACE(name);
    int failures = -1;
    bool failed = true;
    for (std::size_t n = 1; failed; ++n, ++failures)
    {
        SCOPED_TRACE(n);
        auto const top = Family(L"a");
        failed = operation(*top, n);
    }
    EXPECT_GT(failures, 0);
}

TEST(XMLElement, FailedAllocations)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    LibraryScope const library;
    std::wstring const name(300, L'x');
    WithFailingAllocations("FindChild",
                           [&](CVekXMLElement & top, std::size_t n)
                           {
                               VekGuard::FailAllocation(n);
                               IVekXMLElement const * const made = top.FindChild(name.c_str(), true);
                               bool const failed = VekGuard::FailReset();
                               // A new element can do without the block of its empty name.
                               EXPECT_TRUE(made || failed);
                               EXPECT_TRUE(!made || !failed || n == 2);
                               EXPECT_EQ(ChildNames(top), made ? L"a " + name : L"a")
                                   << "an element is added with its name or not at all";
                               return failed;
                           });
    WithFailingAllocations("AddChild",
                           [&](CVekXMLElement & top, std::size_t n)
                           {
                               auto const child = Element(L"b");
                               VekGuard::FailAllocation(n);
                               int const index = top.AddChild(child, -1);
                               bool const failed = VekGuard::FailReset();
                               EXPECT_EQ(index, failed ? 0 : 1);
                               EXPECT_EQ(ChildNames(top), failed ? L"a" : L"a b");
                               EXPECT_EQ(child->GetRefCount(), 2u) << "kept: the extra reference stays even then";
                               if (failed)
                                   child->Release();
                               return failed;
                           });
    WithFailingAllocations("AddCDATASection",
                           [&](CVekXMLElement & top, std::size_t n)
                           {
                               unsigned char const bytes[] = {1, 2};
                               VekGuard::FailAllocation(n);
                               bool const added = top.AddCDATASection(bytes, 2);
                               bool const failed = VekGuard::FailReset();
                               EXPECT_EQ(added, !failed);
                               EXPECT_EQ(top.HasCDATASection(), !failed);
                               return failed;
                           });
}

class ElementModel
{
public:
    ElementModel()
    {
        for (wchar_t const * name : {L"a", L"A", L"b", L"", L"bb", L"c", L"C", L"d"})
            m_pool.push_back(Element(name));
    }

    void Step()
    {
        int const count = static_cast<int>(m_model.size());
        int const index = Random(-2, count + 2);
        CVekXMLElement * const element = m_pool[static_cast<std::size_t>(Random(0, 7))];
        wchar_t const * const name = element->GetName();
        auto const named = std::find_if(m_model.begin(), m_model.end(),
                                        [&](CVekXMLElement * each) { return _wcsicmp(each->GetName(), name) == 0; });
        switch (Random(0, 9))
        {
        case 0:
        case 1:
        case 2:
        case 3:
        {
            int const place = index >= 0 && index < count - 1 ? index : count;
            m_model.insert(m_model.begin() + place, element);
            EXPECT_EQ(m_top->AddChild(element, index), place);
            break;
        }
        case 4:
        case 5:
            if (index >= 0 && index < count)
                m_model.erase(m_model.begin() + index);
            m_top->RemoveChild(index);
            break;
        case 6:
            if (named != m_model.end())
                m_model.erase(named);
            m_top->RemoveChild(name);
            break;
        case 7:
            if (auto const at = std::find(m_model.begin(), m_model.end(), element); at != m_model.end())
                m_model.erase(at);
            m_top->RemoveChild(static_cast<IVekXMLElement *>(element));
            break;
        case 8:
            EXPECT_EQ(m_top->FindChild(name, false), named == m_model.end() ? nullptr : *named);
            break;
        default:
            if (Random(0, 20) == 0)
            {
                m_model.clear();
                m_top->RemoveAllChildren();
            }
        }
    }

    void Check() const
    {
        ASSERT_EQ(m_top->GetNumChildren(), static_cast<int>(m_model.size()));
        for (std::size_t i = 0; i < m_model.size(); ++i)
            ASSERT_EQ(m_top->GetChild(static_cast<int>(i)), m_model[i]);
        for (auto const & element : m_pool)
            ASSERT_EQ(element->GetRefCount(),
                      1u + static_cast<unsigned int>(
                               std::count(m_model.begin(), m_model.end(), static_cast<CVekXMLElement *>(element))));
    }

private:
    int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    std::mt19937 m_random{20'260'101};
    std::vector<Holder<CVekXMLElement>> m_pool;
    Holder<CVekXMLElement> m_top{new CVekXMLElement};
    std::vector<CVekXMLElement *> m_model;
};

TEST(XMLElement, ChildrenFollowAModel)
{
    CVekSetDebugOutputLevel const quiet(-1);
    ElementModel model;
    for (int step = 0; step < 20'000 && !testing::Test::HasFailure(); ++step)
    {
        SCOPED_TRACE(step);
        model.Step();
        model.Check();
    }
}

} // namespace
