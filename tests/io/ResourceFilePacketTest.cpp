#include "VekPackets.h"

#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"
#include "support/TestStream.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <tuple>

#if defined(__i386__)
static_assert(sizeof(CVekResourceFilePacket) == 4 + 4 + 4 + 4 * 4 + 4);
static_assert(sizeof(CVekResourceFileFolderPacket) == sizeof(CVekResourceFilePacket));
#endif

namespace
{

template <class Base>
struct PacketOf final : Base
{
    using Base::Base;
    bool Read(IVekIOStream * stream) override { return stream->ReadByte(true) == 'r'; }
    bool Write(IVekIOStream * stream) override { return stream->WriteByte('w', true); }
};
using Packet = PacketOf<CVekResourceFilePacket>;
using FolderPacket = PacketOf<CVekResourceFileFolderPacket>;

// A packet with children A and B, and p, which is in no list; all live as long as this.
struct Family
{
    Packet parent{nullptr}, a{nullptr}, b{nullptr}, p{nullptr};
    LogCapture log;

    Family()
    {
        parent.AddChild(&a, -1);
        parent.AddChild(&b, -1);
    }
    char NameOf(CVekResourceFilePacket const * packet) const
    {
        return !packet ? '0' : packet == &a ? 'A' : packet == &b ? 'B' : packet == &p ? 'p' : '?';
    }
    std::string Children() const
    {
        std::string text;
        for (int i = 0; i < parent.GetNumChildren(); ++i)
            text += NameOf(parent.GetChild(i));
        return text;
    }
};

} // namespace

TEST(ResourceFilePacket, CountsReferences)
{
    ExpectRefCountContract("packet", new Packet(nullptr));
    ExpectRefCountContract("folder packet", new FolderPacket(nullptr));
}

TEST(ResourceFilePacket, ListOperations)
{
    constexpr wchar_t const * bad = L"CVekResourceFilePacket::RemovePacket --> Invalid index ";
    constexpr wchar_t const * get = L"CVekResourceFilePacket::GetChild --> Invalid index ";
    constexpr wchar_t const * owned =
        L"CVekResourceFilePacket::SetParent --> This packet still belongs to other packet";
    std::tuple<char const *, std::function<int(Family &)>, int, char const *, std::wstring> const rows[] = {
        {"append", [](Family & f) { return f.parent.AddChild(&f.p, -1); }, 2, "ABp", L""},
        {"insert first", [](Family & f) { return f.parent.AddChild(&f.p, 0); }, 0, "pAB", L""},
        {"insert before last", [](Family & f) { return f.parent.AddChild(&f.p, 1); }, 1, "ApB", L""},
        {"kept: the index asked for, at the end", [](Family & f) { return f.parent.AddChild(&f.p, 2); }, 2, "ABp", L""},
        {"kept: the index asked for, beyond", [](Family & f) { return f.parent.AddChild(&f.p, 7); }, 7, "ABp", L""},
        {"kept: the index asked for, negative", [](Family & f) { return f.parent.AddChild(&f.p, -5); }, -5, "ABp", L""},
        {"kept: added again", [](Family & f) { return f.parent.AddChild(&f.a, -1); }, 2, "ABA", owned},
        {"null entry", [](Family & f) { return f.parent.AddChild(nullptr, 0); }, 0, "0AB", L""},
        {"remove by index", [](Family & f) -> int { return f.parent.RemoveChild(0); }, 1, "B", L""},
        {"kept: message of another name", [](Family & f) -> int { return f.parent.RemoveChild(2); }, 0, "AB",
         std::wstring(bad) + L"2"},
        {"remove at -1", [](Family & f) -> int { return f.parent.RemoveChild(-1); }, 0, "AB",
         std::wstring(bad) + L"-1"},
        {"remove by pointer", [](Family & f) -> int { return f.parent.RemoveChild(&f.a); }, 1, "B", L""},
        {"remove what is not there", [](Family & f) -> int { return f.parent.RemoveChild(&f.p); }, 0, "AB", L""},
        {"remove of nothing", [](Family & f) -> int { return f.a.RemoveChild(&f.p); }, 0, "AB", L""},
        {"remove a null entry",
         [](Family & f) -> int { return f.parent.AddChild(nullptr, 1), f.parent.RemoveChild(nullptr); }, 1, "AB", L""},
        {"kept: RemoveAllChildren removes none", [](Family & f) { return f.parent.RemoveAllChildren(), 0; }, 0, "AB",
         L""},
        {"get below", [](Family & f) -> int { return f.parent.GetChild(-1) != nullptr; }, 0, "AB",
         std::wstring(get) + L"-1"},
        {"get beyond", [](Family & f) -> int { return std::as_const(f.parent).GetChild(INT_MAX) != nullptr; }, 0, "AB",
         std::wstring(get) + L"2147483647"},
    };
    for (auto const & [name, work, result, children, message] : rows)
    {
        SCOPED_TRACE(name);
        Family family;
        EXPECT_EQ(work(family), result);
        EXPECT_EQ(family.Children(), children);
        EXPECT_EQ(family.log.Take(), message);
        EXPECT_EQ(family.log.Oddities(), L"");
        for (Packet const * packet : {&family.a, &family.b, &family.p})
        {
            std::string const list = children;
            auto const entries = std::count(list.begin(), list.end(), family.NameOf(packet));
            EXPECT_EQ(packet->GetRefCount(), 1u + static_cast<unsigned int>(entries)) << "one reference per entry";
        }
    }
}

TEST(ResourceFilePacket, ParentsStay)
{
    Family family;
    Packet other(nullptr);
    constexpr wchar_t const * owned =
        L"CVekResourceFilePacket::SetParent --> This packet still belongs to other packet";
    EXPECT_EQ(other.AddChild(&family.a, -1), 0) << "kept: both packets hold the child";
    EXPECT_EQ(family.log.Take(), owned);
    EXPECT_EQ(family.a.GetRefCount(), 3u);
    EXPECT_TRUE(family.parent.RemoveChild(0));
    EXPECT_EQ(family.a.GetParent(), &family.parent) << "kept: removal leaves the parent";
    family.a.SetParent(nullptr);
    EXPECT_EQ(family.log.Take(), owned) << "kept: a parent is never cleared";
    EXPECT_EQ(std::as_const(family.a).GetParent(), &family.parent);
    family.p.SetParent(nullptr);
    EXPECT_EQ(family.log.Take(), L"");
    EXPECT_EQ(family.p.GetParent(), nullptr);
}

TEST(ResourceFilePacket, CopiesAreShallow)
{
    int anything = 0;
    auto * const manager = reinterpret_cast<IVekResourceFileManager *>(&anything);
    Packet source(manager), child(nullptr), target(nullptr), above(nullptr);
    source.AddChild(&child, -1);
    source.SetParent(&above);
    source.AddRef();
    Packet const copy(source);
    target = source;
    target = *&target;
    for (Packet const * packet : {&copy, static_cast<Packet const *>(&target)})
    {
        EXPECT_EQ(packet->GetRefCount(), 2u) << "kept: the count is copied";
        EXPECT_TRUE(packet->GetParent() == &above && packet->GetManager() == manager);
        ASSERT_EQ(packet->GetNumChildren(), 1);
        EXPECT_EQ(packet->GetChild(0), &child);
    }
    EXPECT_EQ(child.GetRefCount(), 2u) << "kept: no references added, and none given back at the end";
    target.AddChild(&above, 0);
    EXPECT_EQ(source.GetNumChildren() + copy.GetNumChildren(), 2) << "each has an array of its own";
}

TEST(ResourceFilePacket, Slots)
{
    for (bool const isFolder : {false, true})
    {
        SCOPED_TRACE(isFolder);
        Packet plain(nullptr), first(nullptr);
        FolderPacket folder(nullptr);
        CVekResourceFilePacket * const packet = isFolder ? static_cast<CVekResourceFilePacket *>(&folder) : &plain;
        EXPECT_EQ(CallSlot<unsigned int>(packet, 0), 2u);
        EXPECT_EQ(CallSlot<unsigned int>(packet, 2), 2u);
        EXPECT_EQ(CallSlot<unsigned int>(packet, 1), 1u);
        // 3 and 4 are the destructor's.
        CVekResourceFilePacket * const child = &first;
        EXPECT_EQ(CallSlot<int>(packet, 5, child, 9), 9);
        EXPECT_EQ(CallSlot<int>(packet, 5, child, -1), 1);
        EXPECT_TRUE(CallSlot<bool>(packet, 6, 1));
        EXPECT_TRUE(CallSlot<bool>(packet, 7, child));
        EXPECT_EQ(packet->GetNumChildren(), 0);
        CallSlot(packet, 8);
        TestStream stream;
        stream.bytes = "r";
        EXPECT_TRUE(CallSlot<bool>(packet, 9, static_cast<IVekIOStream *>(&stream)));
        EXPECT_TRUE(CallSlot<bool>(packet, 10, static_cast<IVekIOStream *>(&stream)));
        EXPECT_EQ(stream.bytes, "rw");
    }
}

TEST(ResourceFilePacket, WithoutMemory)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    Family family;
    family.parent.AddChild(&family.a, -1); // the next one needs a larger block
    family.parent.AddChild(&family.a, -1);
    family.log.Clear();
    std::pair<int, wchar_t const *> const rows[] = {
        {0, L"CVekResourceFilePacket::AddPacket --> Add pckat failed"}, // kept: so spelt
        {9, L"CVekResourceFilePacket::AddPacket --> Add pckat failed"},
        {-1, L"CVekResourceFilePacket::AddPacket --> Add packet failed"},
    };
    for (auto const & [index, message] : rows)
    {
        SCOPED_TRACE(index);
        VekGuard::FailAllocation(1);
        int const result = family.parent.AddChild(&family.p, index);
        EXPECT_TRUE(VekGuard::FailReset());
        EXPECT_EQ(result, -1);
        EXPECT_EQ(family.log.Take(), message);
        EXPECT_EQ(family.Children(), "ABAA");
        EXPECT_TRUE(family.p.GetParent() == nullptr && family.p.GetRefCount() == 1);
    }
    family.p.AddChild(&family.b, -1);
    VekGuard::FailAllocation(1);
    family.p = family.parent;
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_TRUE(family.p.GetRefCount() == 1 && family.p.GetChild(0) == &family.b) << "nothing has changed";
}
