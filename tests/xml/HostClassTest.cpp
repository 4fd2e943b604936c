// Classes of hosts that are built without type records (this file is), or by the compiler of the other C++ ABI.

#include "support/ForeignElement.h"
#include "support/TestStream.h"
#include "support/XMLKit.h"

#ifdef __GXX_RTTI
#error "to be compiled with -fno-rtti"
#endif

#include <cstdint>

namespace
{

// Their tables are this file's own, other than those of the classes themselves.
struct Stream : TestStream
{
};
struct Foreign : ForeignElement
{
    using ForeignElement::ForeignElement;
};

// What stands in front of the table of an object, which is copied: a locator that begins with zeros, as the other ABI
// has it, addresses of nothing, and what -fno-rtti leaves.
constexpr std::uintptr_t ZEROS[4] = {};
struct Front
{
    char const * row;
    std::uintptr_t before;
    std::uintptr_t record;

    friend void PrintTo(Front const & front, std::ostream * out) { *out << front.row; }
};
std::vector<Front> const FRONTS = {
    {"this compiler without type records", 0, 0},
    {"a record that begins with 0", 0, reinterpret_cast<std::uintptr_t>(ZEROS)},
    {"an address before that", reinterpret_cast<std::uintptr_t>(ZEROS), reinterpret_cast<std::uintptr_t>(ZEROS)},
    {"no address at all", 0, 0x41414144},
    {"an odd address", 0, reinterpret_cast<std::uintptr_t>(ZEROS) + 1},
};

class Table
{
public:
    Table(void * object, Front const & front) : m_slots{front.before, front.record}
    {
        auto *& table = *static_cast<std::uintptr_t const **>(object);
        std::copy_n(table, 56, m_slots + 2);
        table = m_slots + 2;
    }

private:
    std::uintptr_t m_slots[2 + 56];
};

struct HostClass : XMLTest, testing::WithParamInterface<Front>
{
};

TEST_P(HostClass, StreamIsWrittenTo)
{
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<a/>", document));
    CVekRef<Stream> const stream(new Stream);
    Table const table(stream.Get(), GetParam());
    CVekRef<IVekXMLWriter> const writer(XMLManager().CreateXMLWriter());
    EXPECT_TRUE(writer->WriteXML(stream.Get(), document.Get()));
    EXPECT_EQ(stream->bytes.substr(stream->bytes.size() - 5), "<a/>\n");
}

TEST_P(HostClass, ForeignElementIsANullEntryAndNoRoot)
{
    CVekRef<Foreign> const foreign(new Foreign(L"f"));
    Table const table(foreign.Get(), GetParam());
    auto const top = NewElement(L"top");
    EXPECT_EQ(top->AddChild(foreign.Get(), -1), 0);
    EXPECT_EQ(TreeText(*top), L"top{0}");
    EXPECT_EQ(foreign->GetRefCount(), 2u);
    foreign->Release();
    auto const document = NewDocument();
    document->SetRootElement(foreign.Get());
    EXPECT_FALSE(ParseBytes("<a/>", document));
    EXPECT_EQ(m_log.Take(), L"CVekXMLParser::PushElement --> pElement is NULL\n"
                            L"CVekXMLParser::ParseXMLFile --> Failed to push Element");
}

// Overrides what the library might do by itself, and writes down when it is asked.
struct Derived : CVekXMLElement
{
    explicit Derived(std::wstring & log, wchar_t const * name = L"")
        : CVekXMLElement(name, static_cast<int>(wcslen(name))), calls(log)
    {
    }
    ~Derived() override { calls += L"~" + std::wstring(CVekXMLElement::GetName()) + L" "; }
    unsigned int Release() override
    {
        calls += L"Release ";
        return CVekXMLElement::Release();
    }
    int AddChild(IVekXMLElement * child, int index) override
    {
        calls += L"AddChild " + std::wstring(child->GetName()) + L" ";
        return refuses ? 0 : CVekXMLElement::AddChild(child, index);
    }
    int AddAttribute(wchar_t const * name, VEK_VARIANT const & value, int index) override
    {
        calls += L"AddAttribute " + std::wstring(name) + L" ";
        return CVekXMLElement::AddAttribute(name, value, index);
    }
    CVekString<wchar_t> const & GetName() const override
    {
        return calls == L"renamed" ? renamed : CVekXMLElement::GetName();
    }

    std::wstring & calls;
    CVekString<wchar_t> renamed{L"renamed"};
    bool refuses = false;
};

TEST_P(HostClass, DerivedRootIsAskedByTheParser)
{
    std::wstring calls;
    CVekRef<Derived> root(new Derived(calls));
    Table const table(root.Get(), GetParam());
    auto const document = NewDocument();
    document->SetRootElement(root.Get());
    EXPECT_TRUE(ParseBytes("<r x='&lt;' X='2'><a><b/></a><c y='1'/></r>", document)) << m_log.Take();
    EXPECT_EQ(calls, L"AddAttribute x AddAttribute X AddChild a AddChild c Release ");
    EXPECT_EQ(TreeText(*root), L"r[x=&lt;]{a{b} c[y=1]}");
    EXPECT_EQ(root->GetChild(1)->GetRefCount(), 1u);
    root->refuses = true;
    EXPECT_TRUE(ParseBytes("<r><d><e z='1'/><e/></d><f/></r>", document))
        << "what it doesn't store is read all the same";
    EXPECT_EQ(root->GetNumChildren(), 2);
}

TEST_P(HostClass, DerivedChildIsTheLibrarysOwn)
{
    std::wstring calls;
    auto * const child = new Derived(calls, L"d");
    Table const table(child, GetParam());
    auto top = NewElement(L"top");
    for (int i = 0; i < 100; ++i)
        top->AddChild(NewElement(L"x" + std::to_wstring(i)).Get(), -1);
    top->AddChild(child, 50);
    for (int i = 0; i < 8; ++i)
    {
        calls = i % 2 ? L"renamed" : L"";
        EXPECT_EQ(top->FindChild(L"RENAMED", false), i % 2 ? child : nullptr) << "what it is called is asked each time";
        EXPECT_EQ(top->FindChild(L"D", false), i % 2 ? nullptr : child);
        EXPECT_EQ(top->FindChild(L"x99", false), top->GetChild(100));
    }
    calls.clear();
    top->RemoveAllChildren();
    top->AddChild(child, -1);
    EXPECT_EQ(child->Release(), 1u);
    top->RemoveChild(static_cast<IVekXMLElement *>(child));
    EXPECT_EQ(calls, L"Release Release Release ~d ");
}

INSTANTIATE_TEST_SUITE_P(Fronts, HostClass, testing::ValuesIn(FRONTS));

TEST(HostClasses, TreesOfDerivedElementsEndWithoutRecursion)
{
    std::wstring calls;
    constexpr int DEPTH = 50'000;
    for (bool const isMixed : {false, true})
    {
        calls.clear();
        CVekRef<CVekXMLElement> top(new Derived(calls));
        CVekXMLElement * at = top.Get();
        for (int i = 0; i < DEPTH; ++i)
        {
            CVekRef<CVekXMLElement> const next(isMixed && i % 3 ? new CVekXMLElement : new Derived(calls, L"d"));
            at->CVekXMLElement::AddChild(NewElement().Get(), -1);
            at->CVekXMLElement::AddChild(next.Get(), -1);
            at = next.Get();
        }
        calls.clear();
        top.Reset();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), L'~'), isMixed ? (DEPTH + 2) / 3 + 1 : DEPTH + 1);
    }
}

} // namespace
