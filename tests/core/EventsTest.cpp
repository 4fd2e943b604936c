#include "VekLib.h"

#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>

namespace
{

constexpr GUID EVENT = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID OTHER = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 9}};
constexpr GUID NONE = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

// Writes down its calls: its name for an event, '-' and its name for an unsubscription.
class Handler : public CVekEventHandler
{
public:
    Handler(char name, std::string & calls) : m_name(name), m_calls(calls) {}
    void OnUnsubscribed() override
    {
        m_calls += {'-', m_name};
        CVekEventHandler::OnUnsubscribed();
        if (onUnsubscribed)
            onUnsubscribed();
    }
    bool OnEvent(CVekEventData * data) override
    {
        m_calls += m_name;
        lastData = data;
        if (auto const action = std::exchange(onEvent, nullptr)) // once
            action();
        return result;
    }
    bool IsUnsubscribed() const { return IsEqualGUID(GetEvent(), NONE); }

    std::function<void()> onEvent;
    std::function<void()> onUnsubscribed;
    bool result = false;
    CVekEventData * lastData = nullptr;

private:
    char m_name;
    std::string & m_calls;
};

class Events : public testing::Test
{
protected:
    Events() : a('A', calls), b('B', calls), c('C', calls) { Kernel().RegisterEvent(EVENT); }
    bool Add(Handler & handler) { return Kernel().AddEventHandler(EVENT, &handler); }
    void Remove(Handler & handler) { Kernel().RemoveEventHandler(EVENT, &handler); }
    std::string Fire()
    {
        calls.clear();
        Kernel().FireEvent(EVENT, nullptr);
        return calls;
    }

    std::string calls;
    Handler a, b, c;
    CVekLibrary m_library; // stops before they end
};

} // namespace

TEST_F(Events, ReachTheLastAddedFirst)
{
    CVekEventData data;
    EXPECT_FALSE(Kernel().FireEvent(EVENT, &data)) << "no handlers";
    EXPECT_TRUE(Add(a) && Add(b) && Add(c));
    EXPECT_FALSE(Kernel().FireEvent(EVENT, &data)) << "none dealt with it";
    EXPECT_EQ(calls, "CBA");
    EXPECT_EQ(a.lastData, &data);
    b.result = true;
    EXPECT_TRUE(Kernel().FireEvent(EVENT, nullptr));
    EXPECT_EQ(calls, "CBACBA") << "all are called whatever one returns";
    EXPECT_FALSE(Kernel().FireEvent(OTHER, &data));
    EXPECT_FALSE(Kernel().AddEventHandler(OTHER, &a));
    EXPECT_FALSE(Kernel().AddEventHandler(EVENT, nullptr));
    Kernel().RemoveEventHandler(OTHER, &a);
    EXPECT_EQ(a.GetRefCount(), 2u);

    calls.clear();
    Kernel().UnregisterEvent(EVENT);
    EXPECT_EQ(calls, "-A-B-C") << "the first added first";
    EXPECT_TRUE(a.IsUnsubscribed());
    EXPECT_EQ(a.GetRefCount(), 1u);
}

// Many registrations and removals, checked against a set.
TEST_F(Events, AreRegisteredOnce)
{
    std::set<std::string> model;
    std::mt19937 random(20);
    for (int turn = 0; turn < 20000; ++turn)
    {
        // Identifiers that differ in one byte of two, at either end and in the middle, with bytes above 127 among them.
        std::string key(sizeof(GUID), '\0');
        key[random() % 3 * 7] = static_cast<char>(random() % 5 * 60);
        key[15] = static_cast<char>(random() % 4 * 80);
        GUID id;
        std::memcpy(&id, key.data(), sizeof id);
        ASSERT_EQ(Kernel().IsEventRegistered(id), model.count(key) == 1) << turn;
        ASSERT_EQ(Kernel().RegisterEvent(id), model.insert(key).second) << turn;
        if (random() % 2)
        {
            Kernel().UnregisterEvent(id);
            model.erase(key);
        }
    }
}

TEST_F(Events, KeptAHandlerAddedTwiceIsReleasedOnce)
{
    EXPECT_TRUE(Add(a) && Add(b) && Add(a));
    EXPECT_EQ(a.GetRefCount(), 3u);
    EXPECT_EQ(Fire(), "ABA");
    calls.clear();
    Remove(a);
    EXPECT_EQ(calls, "-A");
    EXPECT_EQ(a.GetRefCount(), 2u) << "kept: one Release for both subscriptions";
    EXPECT_EQ(Fire(), "B");
    calls.clear();
    Remove(a);
    EXPECT_EQ(calls, "") << "not subscribed any more";
    a.Release();
}

TEST_F(Events, HandlersMayChangeEverythingWhileTheyAreCalled)
{
    struct Row
    {
        char const * name;
        std::function<void()> action; // of B
        char const * calls;
        char const * next; // the calls of the next event
    };
    Handler d('D', calls);
    CVekEventHandlerContainer * container = nullptr; // of B and A
    auto const fire = [] { Kernel().FireEvent(EVENT, nullptr); };
    Row const rows[] = {
        {"nothing", [] {}, "CBA", "CBA"},
        {"unsubscribes itself", [&] { Remove(b); }, "CB-BA", "CA"},
        {"unsubscribes the next", [&] { Remove(a); }, "CB-A", "CB"},
        {"unsubscribes an earlier one", [&] { Remove(c); }, "CB-CA", "BA"},
        {"unsubscribes all", [&] { Remove(a), Remove(b), Remove(c); }, "CB-A-B-C", ""},
        {"moves itself to the end", [&] { Remove(b), Add(b); }, "CB-BA", "BCA"},
        {"moves the next to the end", [&] { Remove(a), Add(a); }, "CB-A", "ACB"},
        {"adds another", [&] { Add(d); }, "CBA", "DCBA"},
        {"unregisters the event", [] { Kernel().UnregisterEvent(EVENT); }, "CB-A-B-C", ""},
        {"registers it anew", [&] { Kernel().UnregisterEvent(EVENT), Kernel().RegisterEvent(EVENT), Add(c); },
         "CB-A-B-C", "C"},
        {"releases the map", [] { Kernel().ReleaseEventMap(); }, "CB-A-B-C", ""},
        {"ends its container", [&] { std::exchange(container, nullptr)->Release(); }, "CB-B-A", "C"},
        {"empties its container", [&] { container->RemoveAll(); }, "CB-B-A", "C"},
        {"empties its container, which ends meanwhile",
         [&] { a.onUnsubscribed = [&] { std::exchange(container, nullptr)->Release(); }, container->RemoveAll(); },
         "CB-B-A", "C"},
        {"fires again", fire, "CBCBAA", "CBA"},
        {"fires again and ends the event there", [&] { b.onEvent = [] { Kernel().UnregisterEvent(EVENT); }, fire(); },
         "CBCB-A-B-C", ""},
        {"fires again and unsubscribes the next there", [&] { b.onEvent = [&] { Remove(a); }, fire(); }, "CBCB-A",
         "CB"},
        {"the next ends the event when it is unsubscribed",
         [&] { a.onUnsubscribed = [] { Kernel().UnregisterEvent(EVENT); }, Remove(a); }, "CB-A-B-C", ""},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        VekLibDeinit();
        VekLibInit();
        Kernel().RegisterEvent(EVENT);
        container = new CVekEventHandlerContainer;
        for (Handler * const handler : {&b, &a})
        {
            handler->AddRef();
            EXPECT_EQ(container->Add(handler), handler);
        }
        Add(a), Add(b), Add(c);
        b.onEvent = row.action;
        EXPECT_EQ(Fire(), row.calls);
        EXPECT_EQ(Fire(), row.next);
        Kernel().UnregisterEvent(EVENT);
        if (container)
            container->Release();
        a.onUnsubscribed = b.onEvent = nullptr;
        for (Handler const * const handler : {&a, &b, &c, &d})
        {
            EXPECT_EQ(handler->GetRefCount(), 1u);
            EXPECT_TRUE(handler->IsUnsubscribed());
            EXPECT_EQ(handler->GetContainer(), nullptr);
        }
    }
}

TEST_F(Events, EndWithTheMapWhileHandlersCallBack)
{
    Add(a), Add(b);
    bool added = true;
    a.onUnsubscribed = [&]
    {
        added = Add(c);
        Kernel().UnregisterEvent(EVENT);
        Remove(b);
        Kernel().FireEvent(EVENT, nullptr);
        Kernel().ReleaseEventMap();
    };
    Kernel().ReleaseEventMap();
    EXPECT_FALSE(added) << "the map is gone before its handlers are told";
    EXPECT_EQ(calls, "-A-B");
}

TEST_F(Events, ContainersUnsubscribeTheirHandlers)
{
    auto * const container = new CVekEventHandlerContainer;
    for (Handler * const handler : {&a, &b, &c})
    {
        handler->AddRef();
        container->Add(handler);
        EXPECT_EQ(handler->GetContainer(), container);
    }
    EXPECT_EQ(container->Add(nullptr), nullptr);
    Add(a), Add(b), Add(c);
    container->Remove(&a);
    container->Remove(&a); // not one of its handlers any more
    Remove(b);
    EXPECT_EQ(calls, "-A-B");
    EXPECT_EQ(b.GetContainer(), nullptr) << "an unsubscribed handler leaves its container";
    EXPECT_EQ(Fire(), "C");
    EXPECT_EQ(container->Release(), 0u);
    EXPECT_TRUE(c.IsUnsubscribed());
    EXPECT_EQ(Fire(), "");
    for (Handler const * const handler : {&a, &b, &c})
        EXPECT_EQ(handler->GetRefCount(), 1u);
}

TEST_F(Events, HandlerSlotsCopiesAndCounts)
{
    CallSlot(&a, Behind(4), &EVENT);
    EXPECT_FALSE(CallSlot<bool>(&a, Behind(6), static_cast<CVekEventData *>(nullptr)));
    a.AddRef();
    Handler const copy(a);
    EXPECT_EQ(copy.GetRefCount(), 2u) << "kept: a copy carries the count";
    EXPECT_TRUE(IsEqualGUID(copy.GetEvent(), EVENT));
    CallSlot(&a, Behind(5));
    EXPECT_EQ(calls, "A-A");
    EXPECT_TRUE(a.IsUnsubscribed());
    ExpectRefCountContract("handler", new Handler('H', calls));
    ExpectRefCountContract("container", new CVekEventHandlerContainer);
}
