// Children, name, parent and CDATA of an element, and the places of children and attributes.

#include "support/ForeignElement.h"
#include "support/GuardHeap.h"
#include "support/XMLKit.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <sstream>

namespace
{

#if defined(__i386__)
static_assert(sizeof(CVekXMLElement) == 60);
static_assert(sizeof(CVekXMLAttribute) == 16);
static_assert(sizeof(CVekXMLWriter) == 28);
#endif

// An element named "top" with children of the given names, each held by it alone; "0" stands for a null entry.
CVekRef<CVekXMLElement> Family(std::wstring const & names)
{
    auto top = NewElement(L"top");
    std::wistringstream stream(names);
    for (std::wstring name; stream >> name;)
        top->AddChild(name == L"0" ? nullptr : static_cast<CVekXMLElement *>(NewElement(name).Get()), -1);
    return top;
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
        {"very negative appends", L"a b c", INT_MIN, 3, 3, L"top[a= b= c= x=]{a b c x}"},
    };
    for (auto const & [row, before, index, childAt, attributeAt, after] : rows)
    {
        SCOPED_TRACE(row);
        auto const top = Family(before);
        for (int i = 0; i < top->GetNumChildren(); ++i)
            top->AddAttribute(top->GetChild(i)->GetName(), L"", -1);
        auto const child = NewElement(L"x");
        EXPECT_EQ(top->AddChild(child.Get(), index), childAt);
        EXPECT_EQ(top->AddAttribute(L"x", L"", index), attributeAt);
        EXPECT_EQ(TreeText(*top), after);
        EXPECT_EQ(child->GetRefCount(), 2u);
        EXPECT_EQ(child->GetParent(), nullptr) << "kept: AddChild records no parent";
    }
}

TEST(XMLElement, FindRemoveAndGetChild)
{
    CVekLibrary const library;
    LogCapture log;
    auto const top = Family(L"0 a B a2 b 0");
    EXPECT_EQ(top->FindChild(L"b", true), top->GetChild(2)) << "the first match, in any case";
    EXPECT_EQ(top->FindChild(nullptr), nullptr) << "null entries have no name, not even an empty one";
    IVekXMLElement * const made = top->FindChild(nullptr, true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetRefCount(), 1u) << "the parent's is the only reference";
    EXPECT_EQ(top->FindChild(nullptr), made) << "null matches an empty name";
    top->RemoveChild(L"B");
    top->FindChild(L"C", true);
    EXPECT_EQ(TreeText(*top), L"top{0 a a2 b 0  C}");
    top->RemoveChild(L"c");
    top->RemoveChild(L"none");
    top->RemoveChild(static_cast<wchar_t const *>(nullptr));
    top->RemoveChild(static_cast<IVekXMLElement *>(NewElement(L"b").Get()));
    top->RemoveChild(top->GetChild(2));
    top->RemoveChild(1);
    EXPECT_EQ(TreeText(*top), L"top{0 b 0}") << "an element of the same name is not the same element";
    EXPECT_EQ(log.Take(), L"");
    top->RemoveChild(3);
    top->RemoveChild(-1);
    EXPECT_EQ(top->GetChild(3), nullptr);
    EXPECT_EQ(static_cast<CVekXMLElement const &>(*top).GetChild(-1), nullptr);
    EXPECT_EQ(log.Take(), L"CVekXMLElement::RemoveChild --> Invalid index 3\n"
                          L"CVekXMLElement::RemoveChild --> Invalid index -1\n"
                          L"CVekXMLElement::GetChild --> Invalid index 3\n"
                          L"CVekXMLElement::GetChild --> Invalid index -1");
    top->RemoveAllChildren();
    top->SetName(nullptr);
    EXPECT_EQ(TreeText(*top), L"");
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

TEST(XMLElement, ForeignElementsAreNullEntries)
{
    LogCapture log;
    auto const top = Family(L"a");
    CVekRef<ForeignElement> const foreign(new ForeignElement(L"f"));
    EXPECT_EQ(top->AddChild(foreign.Get(), -1), 1);
    EXPECT_EQ(foreign->GetRefCount(), 2u) << "kept: the reference is added all the same";
    EXPECT_EQ(top->GetChild(1), nullptr);
    EXPECT_EQ(top->FindChild(L"f"), nullptr);
    EXPECT_EQ(top->AddChild(NewElement(L"b").Get(), -1), 2);
    top->RemoveChild(static_cast<IVekXMLElement *>(foreign.Get()));
    EXPECT_EQ(TreeText(*top), L"top{a b}") << "kept: a foreign element is removed as the first null entry";
    top->AddChild(foreign.Get(), 0);
    top->RemoveChild(0);
    EXPECT_EQ(TreeText(*top), L"top{a b}");
    top->AddChild(foreign.Get(), 0);
    top->RemoveAllChildren();
    EXPECT_EQ(foreign->GetRefCount(), 4u) << "and nothing gives the references back";
    top->AddChild(Family(L"x 0 y").Get(), -1); // ends with its parent, null entry and all
    EXPECT_EQ(log.Take(), L"");
    while (foreign->GetRefCount() > 1)
        foreign->Release();
}

TEST(XMLElement, SetParentOnce)
{
    LogCapture log;
    auto const first = NewElement(), second = NewElement(), child = NewElement();
    child->SetParent(nullptr);
    child->SetParent(first.Get());
    EXPECT_EQ(log.Take(), L"");
    child->SetParent(second.Get());
    EXPECT_EQ(log.Take(), L"CVekXMLElement::SetParent --> This Element still belongs to other Element");
    EXPECT_EQ(child->GetParent(), static_cast<IVekXMLElement *>(first.Get()));
    EXPECT_EQ(first->GetRefCount(), 1u) << "a parent is not counted";
}

TEST(XMLElement, CDATASection)
{
    LogCapture log;
    auto const element = NewElement();
    unsigned char const bytes[] = {1, 0, 2, 0, 3};
    for (int const size : {5, 0}) // a section of no bytes is a section
    {
        ASSERT_TRUE(element->AddCDATASection(size ? bytes : nullptr, size));
        EXPECT_TRUE(element->HasCDATASection());
        ASSERT_EQ(element->GetCDATASectionSize(), size);
        EXPECT_TRUE(!size || memcmp(element->GetCDATASection(), bytes, 5) == 0);
        EXPECT_NE(element->GetCDATASection(), bytes);
        EXPECT_FALSE(element->AddCDATASection(bytes, 1));
        EXPECT_EQ(log.Take(), L"CVekXMLElement::AddCDATASection --> This Element already has CDATA section");
        element->RemoveCDATASection();
        element->RemoveCDATASection();
        EXPECT_FALSE(element->HasCDATASection() || element->GetCDATASection() || element->GetCDATASectionSize());
    }
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
    original->SetParent(parent.Get());
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
        EXPECT_EQ(each->GetParent(), static_cast<IVekXMLElement *>(parent.Get()));
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
        top->GetChild(0)->AddChild(shared.Get(), -1);
        top->GetChild(1)->AddChild(shared.Get(), -1);
        top->GetChild(1)->AddChild(shared.Get(), -1);
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

// A wide element beside plain lists of what it should hold, changed at random: whatever way it is searched, the first
// match in order is found.
TEST(XMLElement, FollowsAModel)
{
    CVekSetDebugOutputLevel const quiet(-1);
    std::mt19937 random(7);
    auto const below = [&](std::size_t count) { return static_cast<int>(random() % count); };
    auto const name = [&] { return (random() % 2 ? L"n" : L"N") + std::to_wstring(random() % 200); };
    auto const top = NewElement();
    std::vector<CVekRef<CVekXMLElement>> children;
    std::vector<std::wstring> attributes;
    for (int step = 0; step < 20'000 && !testing::Test::HasFailure(); ++step)
    {
        SCOPED_TRACE(step);
        int const count = top->GetNumChildren();
        std::wstring const sought = name(), newName = name();
        auto const isSought = [&](std::wstring const & each) { return _wcsicmp(each.c_str(), sought.c_str()) == 0; };
        auto const child = std::find_if(children.begin(), children.end(),
                                        [&](CVekRef<CVekXMLElement> const & each)
                                        { return each && isSought(std::wstring(each->GetName())); });
        ASSERT_EQ(top->FindChild(sought.c_str(), false), child == children.end() ? nullptr : child->Get());
        int const index = count ? below(static_cast<std::size_t>(count)) : 0;
        // Half of the rounds grow, half shrink; the last child comes and goes most of all.
        int const operation = below(step / 2000 % 2 ? 8 : 12);
        if (operation == 0 && count)
            top->GetChild(index) ? top->GetChild(index)->SetName(newName.c_str()) : void();
        else if (operation < 4 && count)
        {
            int const removed = operation == 1 ? index : count - 1;
            top->RemoveChild(removed);
            children.erase(children.begin() + removed);
        }
        else if (operation == 4)
        {
            top->RemoveChild(sought.c_str());
            if (child != children.end())
                children.erase(child);
        }
        else
        {
            children.push_back(operation == 5 ? CVekRef<CVekXMLElement>() : NewElement(newName));
            bool const inserts = operation == 6 && index < count - 1;
            ASSERT_EQ(top->AddChild(children.back().Get(), inserts ? index : -1), inserts ? index : count);
            std::rotate(children.begin() + (inserts ? index : count), children.end() - 1, children.end());
        }

        auto const attribute = std::find_if(attributes.begin(), attributes.end(), isSought);
        int const found = attribute == attributes.end() ? -1 : static_cast<int>(attribute - attributes.begin());
        ASSERT_EQ(top->FindAttributeIndex(sought.c_str()), found);
        int const place = index < top->GetNumAttributes() && step % 8 == 0 ? index : top->GetNumAttributes();
        if (step % 3000 == 2999)
        {
            top->RemoveAllAttributes();
            attributes.clear();
        }
        else if (step % 5 == 0 && found != -1)
        {
            ASSERT_TRUE(top->RenameAttribute(sought.c_str(), newName.c_str()));
            *attribute = newName;
        }
        else
        {
            ASSERT_EQ(top->AddAttribute(sought.c_str(), 1, place), found == -1 ? place : -1);
            if (found == -1)
                attributes.insert(attributes.begin() + place, sought);
        }
    }
    for (int i = 0; i < top->GetNumChildren(); ++i)
        ASSERT_EQ(top->GetChild(i), children[static_cast<std::size_t>(i)].Get());
    for (int i = 0; i < top->GetNumAttributes(); ++i)
        ASSERT_STREQ(top->GetAttributeName(i), attributes[static_cast<std::size_t>(i)].c_str());
}

// Ten times as many children and attributes take ten times as long, not a hundred times.
TEST(XMLElement, WideElementsAreFilledInLinearTime)
{
    if (VekGuard::Active)
        GTEST_SKIP() << "the guard heap takes its own time";
    CVekLibrary const library;
    auto const seconds = [](int count)
    {
        auto const root = NewElement(L"root");
        auto const begin = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i)
        {
            std::wstring const name = L"name" + std::to_wstring(i);
            root->FindChild(name.c_str(), true);
            root->AddAttribute(name.c_str(), i, -1);
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    double best = 1e9;
    for (int round = 0; round < 3; ++round)
        best = std::min(best, seconds(40'000) / seconds(4'000));
    EXPECT_LT(best, 35);
}

} // namespace
