#include "VekThread.h"

#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <new>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>

#if defined(__i386__)
static_assert(sizeof(CVekCriticalSection) == 28 && sizeof(CVekMutex) == 8 && sizeof(CVekSemaphore) == 8 &&
              sizeof(CVekSignal) == 8 && sizeof(CVekSingleLock) == 8 && sizeof(CVekMultiLock) == 156);
#endif
static_assert(std::is_copy_constructible_v<CVekMultiLock> && std::is_copy_assignable_v<CVekCriticalSection>);

namespace
{

bool IsFree(CVekSyncObject const & object)
{
    return WaitForSingleObject(object.GetHandle(), 0) == WAIT_OBJECT_0;
}

// Takes it and gives it back, if another thread can.
bool IsFreeForOthers(CVekSyncObject & object)
{
    bool taken = false;
    std::thread([&] { taken = IsFree(object) && object.Unlock(); }).join();
    return taken;
}

// Writes down what is called.
class Recorder : public CVekSyncObject
{
public:
    explicit Recorder(std::string & calls, char name = ' ') : m_calls(calls), m_name(name) {}
    bool Lock() override { return Note('L'); }
    bool Unlock() override { return Note('U'); }
    void * GetHandle() const override { return m_signal.GetHandle(); }
    void Set() { m_signal.SetSignal(); }

private:
    bool Note(char what)
    {
        m_calls += {what, m_name, ';'};
        return false; // the holders don't look
    }
    std::string & m_calls;
    char m_name;
    CVekSignal m_signal;
};

} // namespace

TEST(SyncObjects, MutexExcludesOthersAndCountsItsOwner)
{
    CVekMutex mutex;
    EXPECT_TRUE(mutex.Lock() && mutex.Lock()) << "its owner may take it again";
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_FALSE(IsFreeForOthers(mutex));
    EXPECT_TRUE(mutex.Unlock());
    EXPECT_TRUE(IsFreeForOthers(mutex));
    EXPECT_TRUE(mutex.Unlock()) << "true always, taken or not";

    std::thread([&] { mutex.Lock(); }).join();
    EXPECT_TRUE(mutex.Lock()) << "an abandoned mutex counts as taken";
    EXPECT_FALSE(IsFreeForOthers(mutex));
    mutex.Unlock();
}

TEST(SyncObjects, CriticalSectionExcludesOthersAndCountsItsOwner)
{
    CVekCriticalSection section;
    EXPECT_EQ(section.GetHandle(), nullptr);
    EXPECT_TRUE(section.Lock() && section.Lock());
    std::atomic<int> stage{0};
    std::thread other(
        [&]
        {
            stage = 1;
            section.Lock();
            stage = 2;
            section.Unlock();
        });
    while (stage == 0)
        Sleep(1);
    EXPECT_TRUE(section.Unlock());
    Sleep(20);
    EXPECT_EQ(stage, 1) << "taken twice, given back once";
    EXPECT_TRUE(section.Unlock());
    other.join();
    EXPECT_EQ(stage, 2);
}

TEST(SyncObjects, SemaphoreTakesItsMaximumFirst)
{
    CVekSemaphore semaphore(5, 2);
    EXPECT_TRUE(semaphore.Lock() && semaphore.Lock());
    EXPECT_FALSE(IsFree(semaphore)) << "the initial count is the second argument";
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(semaphore.Unlock()) << "true above the maximum too";
    int places = 0;
    while (IsFree(semaphore))
        ++places;
    EXPECT_EQ(places, 5) << "the maximum is the first argument";

    CVekSemaphore const impossible(1, 2);
    EXPECT_EQ(impossible.GetHandle(), nullptr);
    EXPECT_TRUE(CVekSemaphore(impossible).Lock()) << "a wait that fails answers true";
}

TEST(SyncObjects, SignalIsConsumedByLockOnly)
{
    CVekSignal signal;
    EXPECT_FALSE(IsFree(signal)) << "clear at the start";
    EXPECT_TRUE(CallSlot<bool>(&signal, Behind(4))); // SetSignal
    EXPECT_TRUE(IsFree(signal) && IsFree(signal)) << "a wait of the system's leaves it set";
    EXPECT_TRUE(signal.Unlock() && IsFree(signal)) << "Unlock does nothing";
    EXPECT_TRUE(signal.Lock());
    EXPECT_FALSE(IsFree(signal)) << "Lock clears it";
    EXPECT_TRUE(signal.SetSignal() && signal.PulseSignal() && !IsFree(signal)) << "a pulse leaves it clear";
    EXPECT_TRUE(signal.SetSignal() && signal.ResetSignal() && !IsFree(signal));

    alignas(CVekSignal) unsigned char place[sizeof(CVekSignal)];
    CVekSignal * const copy = new (place) CVekSignal(signal); // never destroyed: it would close the shared handle
    EXPECT_EQ(copy->GetHandle(), signal.GetHandle());
}

TEST(SingleLock, CallsItsObject)
{
    std::tuple<char const *, bool, char const *, bool, char const *> const rows[] = {
        // clang-format off
        {"nothing asked", false, "", false, ""}, {"locked at once", true, "", true, "L ;U ;"},
        {"locked later", false, "L", true, "L ;U ;"}, {"unlocked again", true, "U", false, "L ;U ;"},
        {"kept: unlocks what it never locked", false, "U", false, "U ;"},
        {"kept: unlocks as often as asked", true, "UU", false, "L ;U ;U ;"},
        {"locks twice, gives back once", true, "L", true, "L ;L ;U ;"},
        // clang-format on
    };
    for (auto const & [name, initialLock, operations, lockedAtEnd, expected] : rows)
    {
        SCOPED_TRACE(name);
        std::string calls;
        Recorder object(calls);
        {
            CVekSingleLock lock(&object, initialLock);
            EXPECT_EQ(lock.IsLocked(), initialLock);
            for (char const * operation = operations; *operation; ++operation)
                EXPECT_TRUE(*operation == 'L' ? lock.Lock() : lock.Unlock());
            EXPECT_EQ(lock.IsLocked(), lockedAtEnd);
        }
        EXPECT_EQ(calls, expected);
    }
    CVekSingleLock nothing(nullptr, true);
    EXPECT_TRUE(nothing.IsLocked() && nothing.Unlock());
}

TEST(MultiLock, WaitingForAnyGivesBackTheOneThatEndedTheWait)
{
    for (unsigned int winner = 0; winner < 3; ++winner)
    {
        SCOPED_TRACE(winner);
        std::string calls;
        Recorder a(calls, 'a'), b(calls, 'b'), c(calls, 'c');
        Recorder * const all[] = {&a, &b, &c};
        all[winner]->Set();
        CVekSyncObject * objects[] = {&a, &b, &c};
        auto const given = std::string("U") + static_cast<char>('a' + winner) + ";";
        {
            CVekMultiLock lock(3, objects, false, false);
            EXPECT_FALSE(lock.IsLocked());
            EXPECT_TRUE(lock.Lock() && lock.IsLocked());
            EXPECT_EQ(calls, "") << "the wait is the system's";
            EXPECT_TRUE(lock.Unlock() && !lock.IsLocked());
        }
        EXPECT_EQ(calls, given);
        CVekMultiLock(3, objects, false, true);
        EXPECT_EQ(calls, given + given) << "the destructor gives back";
    }
}

TEST(MultiLock, KeptWaitingForAllGivesNothingBack)
{
    CVekMutex first, second;
    CVekSyncObject * objects[] = {&first, &second};
    {
        CVekMultiLock lock(2, objects, true, true);
        EXPECT_TRUE(lock.IsLocked() && lock.Unlock());
        EXPECT_FALSE(IsFreeForOthers(first));
        lock.Lock();
    }
    for (CVekMutex * mutex : {&first, &second})
    {
        EXPECT_FALSE(IsFreeForOthers(*mutex)) << "still owned";
        EXPECT_TRUE(mutex->Unlock() && mutex->Unlock() && IsFreeForOthers(*mutex)) << "twice";
    }
}

TEST(MultiLock, WaitsThatFailAnswerTrueAndHoldNothing)
{
    std::string calls;
    Recorder set(calls, 's');
    set.Set();
    CVekCriticalSection section; // has no handle
    CVekSyncObject *withSection[] = {&set, &section}, *withNull[] = {&set, nullptr};
    std::tuple<char const *, unsigned int, CVekSyncObject **> const rows[] = {{"no objects", 0, withNull},
                                                                              {"a critical section", 2, withSection},
                                                                              {"a null object", 2, withNull},
                                                                              {"only null", 1, withNull + 1},
                                                                              {"no array", 3, nullptr}};
    for (auto const & [name, count, objects] : rows)
        for (bool const waitAll : {false, true})
        {
            SCOPED_TRACE(testing::Message() << name << (waitAll ? ", all" : ", any"));
            CVekMultiLock lock(count, objects, waitAll, true);
            EXPECT_TRUE(lock.IsLocked() && lock.Unlock());
            EXPECT_EQ(calls, "");
        }
}

TEST(MultiLock, KeepsSixteenObjectsAtMost)
{
    std::string calls;
    Recorder last(calls, 'p'), beyond(calls, 'q');
    CVekSyncObject * objects[40];
    for (CVekSyncObject *& object : objects)
        object = &beyond;
    CVekSignal clear[15];
    for (int i = 0; i < 15; ++i)
        objects[i] = &clear[i];
    objects[15] = &last;
    last.Set();
    beyond.Set();
    struct
    {
        alignas(CVekMultiLock) unsigned char place[sizeof(CVekMultiLock)] = {};
        unsigned char after[256] = {};
    } memory;
    auto * const lock = new (memory.place) CVekMultiLock(40, objects, false, true);
    EXPECT_TRUE(lock->Unlock());
    EXPECT_EQ(calls, "Up;");
    lock->~CVekMultiLock();
    for (unsigned char const behind : memory.after)
        ASSERT_EQ(behind, 0);
}
