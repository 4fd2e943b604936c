#include "VekPackets.h"

#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#if defined(__i386__)
static_assert(sizeof(CVekResourceFilePacket) == 4 + 4 + 4 + 4 * 4 + 4);
static_assert(sizeof(CVekResourceFileFolderPacket) == sizeof(CVekResourceFilePacket));
#endif

namespace
{

constexpr wchar_t const * STILL_BELONGS =
    L"CVekResourceFilePacket::SetParent --> This packet still belongs to other packet";

template <class Base>
struct PacketOf : Base
{
    using Base::Base;
    bool Read(IVekIOStream *) override { return true; }
    bool Write(IVekIOStream *) override { return false; }
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
    int Do(char operation, char name, int index)
    {
        Packet * const packet = name == 'A' ? &a : name == 'p' ? &p : nullptr;
        return operation == 'A'   ? parent.AddChild(packet, index)
               : operation == 'R' ? parent.RemoveChild(index)
               : operation == '*' ? parent.RemoveChild(packet)
               : operation == 'G' ? parent.GetChild(index) != nullptr
                                  : (parent.RemoveAllChildren(), 0);
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
    Packet packet(nullptr);
    IVekIOStream * const noStream = nullptr;
    EXPECT_TRUE(CallSlot<bool>(&packet, Behind(8), noStream) && !CallSlot<bool>(&packet, Behind(9), noStream))
        << "what a packet supplies";
}

TEST(ResourceFilePacket, ListOperations)
{
    constexpr wchar_t const * removed = L"CVekResourceFilePacket::RemovePacket --> Invalid index 2";
    constexpr wchar_t const * got = L"CVekResourceFilePacket::GetChild --> Invalid index -1";
    constexpr wchar_t const * got2 = L"CVekResourceFilePacket::GetChild --> Invalid index 2";
    // Add, Remove (by index, or '*' with a packet), Get; the packet; the index; the result.
    std::tuple<char const *, char, char, int, int, char const *, wchar_t const *> const rows[] = {
        {"append", 'A', 'p', -1, 2, "ABp", L""},
        {"insert first", 'A', 'p', 0, 0, "pAB", L""},
        {"insert before last", 'A', 'p', 1, 1, "ApB", L""},
        {"kept: the index asked for, at the end", 'A', 'p', 2, 2, "ABp", L""},
        {"kept: the index asked for, beyond", 'A', 'p', 7, 7, "ABp", L""},
        {"kept: the index asked for, negative", 'A', 'p', -5, -5, "ABp", L""},
        {"kept: added again", 'A', 'A', -1, 2, "ABA", STILL_BELONGS},
        {"null entry", 'A', '0', 0, 0, "0AB", L""},
        {"remove by index", 'R', ' ', 0, 1, "B", L""},
        {"kept: message of another name", 'R', ' ', 2, 0, "AB", removed},
        {"remove by pointer", '*', 'A', 0, 1, "B", L""},
        {"remove what is not there", '*', 'p', 0, 0, "AB", L""},
        {"remove null that is not there", '*', '0', 0, 0, "AB", L""},
        {"kept: RemoveAllChildren removes none", 'N', ' ', 0, 0, "AB", L""},
        {"get below", 'G', ' ', -1, 0, "AB", got},
        {"get beyond", 'G', ' ', 2, 0, "AB", got2},
    };
    for (auto const & [name, operation, packet, index, result, children, message] : rows)
    {
        SCOPED_TRACE(name);
        Family family;
        EXPECT_EQ(family.Do(operation, packet, index), result);
        EXPECT_EQ(family.Children(), children);
        EXPECT_EQ(family.log.Take(), message);
        EXPECT_EQ(family.log.Oddities(), L"");
        for (Packet const * each : {&family.a, &family.b, &family.p})
        {
            std::string const list = children;
            auto const entries = std::count(list.begin(), list.end(), family.NameOf(each));
            EXPECT_EQ(each->GetRefCount(), 1u + static_cast<unsigned int>(entries)) << "one reference per entry";
        }
    }
}

TEST(ResourceFilePacket, ParentsStay)
{
    Family family;
    Packet other(nullptr);
    EXPECT_EQ(other.AddChild(&family.a, -1), 0) << "kept: both packets hold the child";
    EXPECT_EQ(family.log.Take(), STILL_BELONGS);
    EXPECT_EQ(family.a.GetRefCount(), 3u);
    EXPECT_TRUE(family.parent.RemoveChild(0));
    EXPECT_EQ(family.a.GetParent(), &family.parent) << "kept: removal leaves the parent";
    family.a.SetParent(nullptr);
    EXPECT_EQ(family.log.Take(), STILL_BELONGS) << "kept: a parent is never cleared";
    EXPECT_EQ(std::as_const(family.a).GetParent(), &family.parent);
    family.p.SetParent(nullptr);
    EXPECT_EQ(family.log.Take(), L"");
    EXPECT_EQ(family.p.GetParent(), nullptr);
}

TEST(ResourceFilePacket, CopiesAreShallow)
{
    int anything = 0;
    auto * const manager = reinterpret_cast<IVekResourceFileManager *>(&anything);
    LogCapture const log;
    Packet source(manager), child(nullptr), target(nullptr), above(nullptr);
    for (int i = 0; i < 3; ++i)
        source.AddChild(&child, -1);
    source.SetParent(&above);
    source.AddRef();
    Packet copy(source);
    target = source;
    target = *&target;
    for (Packet const * packet : {&copy, &target})
    {
        EXPECT_EQ(packet->GetRefCount(), 2u) << "kept: the count is copied";
        EXPECT_TRUE(packet->GetParent() == &above && packet->GetManager() == manager);
        ASSERT_EQ(packet->GetNumChildren(), 3);
        EXPECT_EQ(packet->GetChild(2), &child);
    }
    EXPECT_EQ(child.GetRefCount(), 4u) << "kept: no references added, and none given back at the end";
    target.AddChild(&above, 0);
    copy.AddChild(&target, 0);
    EXPECT_TRUE(source.GetNumChildren() == 3 && source.GetChild(0) == &child && target.GetChild(0) == &above)
        << "each has an array of its own";
}

// By index a child is released before its place goes: what its end does to the parent must not harm the list.
TEST(ResourceFilePacket, ChildrenMayLookBackAtTheirEnd)
{
    struct Ending final : Packet
    {
        using Packet::Packet;
        std::function<void()> atEnd;
        ~Ending() override { atEnd(); }
    };
    std::tuple<char const *, void (*)(Family &), char const *> const rows[] = {
        {"kept: its place goes last", [](Family &) {}, "A0B AB"},
        {"adds before its place", [](Family & f) { f.parent.AddChild(&f.p, 0); }, "A0B pAB"},
        {"removes before its place", [](Family & f) { f.parent.RemoveChild(0); }, "A0B B"},
        {"removes its place", [](Family & f) { f.parent.RemoveChild(1); }, "A0B AB"},
        {"kept: by pointer its place goes first", nullptr, "AB AB"},
    };
    for (auto const & [name, work, children] : rows)
    {
        Family family;
        std::string seen;
        auto * const child = new Ending(nullptr);
        child->atEnd = [&, work = work] { seen = family.Children(), work ? work(family) : void(); };
        family.parent.AddChild(child, 1);
        child->Release();
        EXPECT_TRUE(work ? family.parent.RemoveChild(1) : family.parent.RemoveChild(child)) << name;
        EXPECT_EQ(seen + " " + family.Children(), children) << name;
    }
    bool ended = false;
    auto * const parent = new Ending(nullptr);
    auto * const child = new Ending(nullptr);
    parent->atEnd = [&] { ended = true; };
    child->atEnd = [&] { EXPECT_TRUE(parent->Release() > 0 && !ended) << "the parent is still at work"; };
    parent->AddChild(child, -1);
    child->Release();
    EXPECT_TRUE(parent->RemoveChild(0) && ended);
}
