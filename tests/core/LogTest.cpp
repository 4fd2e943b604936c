#include "VekLib.h"

#include "support/DebuggerOutput.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <map>
#include <thread>
#include <tuple>

namespace
{

// Writes its name into a common text at each message.
class NamedCatcher final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    NamedCatcher(char name, std::string & calls) : m_name(name), m_calls(calls) {}
    unsigned int Release() override { return --m_common.refCount; } // it lives on the stack
    void OnLogOutput(int, wchar_t const *) override { m_calls += m_name; }

private:
    char m_name;
    std::string & m_calls;
};

std::wstring const g_tooLong(100000, L'x');

} // namespace

TEST(Log, FormatsTheMessageAndEndsItsLine)
{
    std::wstring const longest(4094, L'x');
    std::tuple<char const *, void (*)(), wchar_t const *> const cases[] = {
        {"empty", [] { VekLogOutput(0, L""); }, L""},
        {"number", [] { VekLogOutput(0, L"A::B --> %d bytes", 7); }, L"A::B --> 7 bytes"},
        {"wide and narrow text", [] { VekLogOutput(0, L"%s %S %hs", L"wide", "narrow", "too"); }, L"wide narrow too"},
        {"float", [] { VekLogOutput(0, L"%.4g Mhz", 3579545 * 9.5367431640625e-7); }, L"3.414 Mhz"},
        {"own newlines stay", [] { VekLogOutput(0, L"\na\n"); }, L"\na\n"},
        {"a zero character ends it", [] { VekLogOutput(0, L"a%cb", 0); }, L"a"},
        {"longest", [] { VekLogOutput(0, L"%.4094s", g_tooLong.c_str()); }, longest.c_str()},
        {"one too long is cut", [] { VekLogOutput(0, L"%.4094sy", g_tooLong.c_str()); }, longest.c_str()},
        {"far too long is cut", [] { VekLogOutput(0, L"%s", g_tooLong.c_str()); }, longest.c_str()},
        {"refused by some runtimes", [] { VekLogOutput(0, L"%n", std::make_unique<int>().get()); }, L""},
        {"no format", [] { VekLogOutput(0, nullptr); }, L""},
    };
    LogCapture log;
    for (auto const & [name, send, message] : cases)
    {
        SCOPED_TRACE(name);
        DebuggerOutput debugger;
        send();
        std::wstring const caught = log.Take();
        EXPECT_TRUE(caught == message) << caught.size() << testing::PrintToString(caught.substr(0, 80));
        EXPECT_TRUE(debugger.Take() == caught + L'\n');
    }
    EXPECT_EQ(log.Oddities(), L"");
}

TEST(Log, ShowsMessagesUpToTheLevel)
{
    std::tuple<int, int, bool> const rows[] = {
        {0, 0, true}, {0, 1, false}, {0, -1, true},        {-1, 0, false},           {-1, -1, true}, {5, 0, true},
        {5, 5, true}, {5, 6, false}, {INT_MIN, -7, false}, {INT_MAX, INT_MAX, true}, {-2, -1, false}};
    EXPECT_EQ(getVekLibKernel()->GetDebugOutputLevel(), 0);
    for (auto const & [current, message, shown] : rows)
    {
        SCOPED_TRACE(testing::Message() << "level " << current << ", message " << message);
        LogCapture log;
        DebuggerOutput debugger;
        CVekSetDebugOutputLevel const level(current);
        // Formatting it would read through a wild pointer: what is not shown is not
        // formatted.
        auto const * const argument = shown ? L"x" : reinterpret_cast<wchar_t const *>(std::size_t{1});
        VekLogOutput(message, L"%s", argument);
        EXPECT_EQ(log.Take(), shown ? L"x" : L"");
        EXPECT_EQ(debugger.Take(), shown ? L"x\n" : L"");
    }
    EXPECT_EQ(getVekLibKernel()->GetDebugOutputLevel(), 0);
}

TEST(Log, CatchersTellFailuresFromBannersAndNotes)
{
    // Writes down the category of each message; at its first one it logs a note itself.
    struct Sorter final : CVekRefCounted<IVekCatchLogOutput>
    {
        unsigned int Release() override { return --m_common.refCount; }
        void OnLogOutput(int, wchar_t const *) override
        {
            seen += "-FNB"[VekGetLogCategory()];
            if (seen.size() == 1)
                VekLogOutputAs(VEK_LOG_NOTE, 0, L"%d", 1);
            seen += "-FNB"[VekGetLogCategory()];
        }
        std::string seen;
    } sorter;
    IVekKernel & kernel = *getVekLibKernel();
    kernel.AddCatchLogOutput(&sorter);
    VekLogOutput(0, L"x");
    EXPECT_EQ(std::exchange(sorter.seen, "x"), "FNNF");
    ASSERT_TRUE(VekLibInit());
    VekLogOutputAs(VEK_LOG_NOTE, 1, L"not shown");
    EXPECT_EQ(sorter.seen, "xBBBBBBBB");
    EXPECT_EQ(VekGetLogCategory(), VEK_LOG_NONE);
    VekLibDeinit();
}

TEST(Log, TheLastDeinitListsLiveObjectsWhenAsked)
{
    using Make = IVekObject * (*)(IVekKernel &);
    std::pair<wchar_t const *, Make> const rows[] = {
        {L"CPUUsage", [](IVekKernel & k) -> IVekObject * { return k.CreateCPUUsage(); }},
        {L"CameraUIController", [](IVekKernel & k) -> IVekObject * { return k.CreateCameraUIController(); }},
        {L"FileIOStream", [](IVekKernel & k) -> IVekObject * { return k.CreateFileIOStream(); }},
        {L"Lexer", [](IVekKernel & k) -> IVekObject * { return k.CreateLexer(); }},
        {L"MemoryIOStream", [](IVekKernel & k) -> IVekObject * { return k.CreateMemoryIOStream(); }},
        {L"ProgressController", [](IVekKernel & k) -> IVekObject * { return k.CreateProgressController(); }},
        {L"Randomizer", [](IVekKernel & k) -> IVekObject * { return k.CreateRandomizer(); }},
        {L"Thread", [](IVekKernel & k) -> IVekObject * { return k.CreateThread(L"t", nullptr, false, 0, 0); }},
        {L"Timer", [](IVekKernel & k) -> IVekObject * { return k.CreateTimer(); }},
        {L"Tokenizer", [](IVekKernel & k) -> IVekObject * { return k.CreateTokenizer(); }},
        {L"XMLDocument", [](IVekKernel & k) -> IVekObject * { return k.GetXMLManager()->CreateXMLDocument(); }},
        {L"XMLElement", [](IVekKernel & k) -> IVekObject * { return k.GetXMLManager()->CreateXMLElement(); }},
        {L"XMLParser", [](IVekKernel & k) -> IVekObject * { return k.GetXMLManager()->CreateXMLParser(); }},
        {L"XMLWriter", [](IVekKernel & k) -> IVekObject * { return k.GetXMLManager()->CreateXMLWriter(); }},
    };
    IVekKernel & kernel = *getVekLibKernel();
    for (bool const counts : {true, false})
    {
        VekReportLiveObjects(counts);
        std::wstring expected;
        std::vector<IVekObject *> lost;
        ASSERT_TRUE(VekLibInit());
        for (auto const & [name, make] : rows)
        {
            lost.insert(lost.end(), {make(kernel), make(kernel)});
            make(kernel)->Release();
            expected += L"\nCVekKernel::Deinit --> Still alive: 2 of CVek" + std::wstring(name);
        }
        LogCapture log;
        VekLibDeinit();
        EXPECT_EQ(log.Text(), counts ? expected.substr(1) : L"");
        for (IVekObject * const object : lost)
            object->Release();
    }
    VekReportLiveObjects(true);
    ASSERT_TRUE(VekLibInit());
    LogCapture log;
    VekLibDeinit();
    VekReportLiveObjects(false);
    EXPECT_EQ(log.Text(), L"");
}

TEST(Log, LevelGuardsNest)
{
    IVekKernel & kernel = *getVekLibKernel();
    EXPECT_EQ(kernel.SetDebugOutputLevel(2), 2);
    {
        CVekSetDebugOutputLevel const outer(-1);
        {
            CVekSetDebugOutputLevel inner(3);
            EXPECT_EQ(kernel.GetDebugOutputLevel(), 3);
            {
                CVekSetDebugOutputLevel assigned(8);
                assigned = inner; // copies the saved level
            }
            EXPECT_EQ(kernel.GetDebugOutputLevel(), -1);
        }
        EXPECT_EQ(kernel.GetDebugOutputLevel(), -1);
    }
    EXPECT_EQ(kernel.GetDebugOutputLevel(), 2);
    kernel.SetDebugOutputLevel(0);
}

TEST(Log, CatchersAreCalledInOrderAndCounted)
{
    std::string calls;
    // upper case adds, lower case removes; the counts are those over the
    // catcher's own reference
    std::tuple<char const *, char const *, char const *, unsigned int, unsigned int> const rows[] = {
        // clang-format off
        {"in the order of registration", "AB", "ab", 1, 1}, {"the other way round", "BA", "ba", 1, 1},
        {"twice added, twice called", "ABA", "aba", 2, 1},
        {"kept: removing takes every entry and releases once", "ABAa", "b", 1, 1},
        {"four times, four references", "ABbAAA", "aaaa", 4, 0}, {"removed and added again", "ABaA", "ba", 1, 1},
        // clang-format on
    };
    IVekKernel & kernel = *getVekLibKernel();
    for (auto const & [name, operations, expected, countA, countB] : rows)
    {
        SCOPED_TRACE(name);
        NamedCatcher a('a', calls), b('b', calls);
        NamedCatcher * const all[] = {&a, &b};
        for (char const * operation = operations; *operation; ++operation)
            *operation < 'a' ? kernel.AddCatchLogOutput(all[*operation - 'A'])
                             : kernel.RemoveCatchLogOutput(all[*operation - 'a']);
        calls.clear();
        VekLogOutput(0, L"x");
        EXPECT_EQ(calls, expected);
        EXPECT_TRUE(a.GetRefCount() == 1 + countA && b.GetRefCount() == 1 + countB);
        for (NamedCatcher * const catcher : all)
        {
            kernel.RemoveCatchLogOutput(catcher);
            unsigned int const before = catcher->AddRef();
            kernel.RemoveCatchLogOutput(catcher);
            EXPECT_EQ(catcher->GetRefCount(), before - 1) << "kept: released though it had no entry";
        }
    }
    calls.clear();
    kernel.AddCatchLogOutput(nullptr);
    kernel.RemoveCatchLogOutput(nullptr);
    VekLogOutput(0, L"x");
    EXPECT_EQ(calls, "");
}

TEST(Log, TheLastDeinitReleasesEveryEntry)
{
    std::string calls;
    NamedCatcher a('a', calls), b('b', calls);
    IVekKernel & kernel = *getVekLibKernel();
    ASSERT_TRUE(VekLibInit());
    for (NamedCatcher * const catcher : {&a, &b, &a})
        kernel.AddCatchLogOutput(catcher);
    EXPECT_EQ(a.GetRefCount(), 3u);
    VekLibDeinit();
    EXPECT_TRUE(a.GetRefCount() == 1 && b.GetRefCount() == 1 && calls.empty());

    VekGuard::FailFrom(1);
    kernel.AddCatchLogOutput(&a);
    EXPECT_EQ(VekGuard::FailReset(), VekGuard::Active);
    EXPECT_EQ(a.GetRefCount(), VekGuard::Active ? 1u : 2u) << "one that can't be stored is not held";
    VekLogOutput(0, L"x");
    EXPECT_EQ(calls, VekGuard::Active ? "" : "a");
    if (!VekGuard::Active)
        kernel.RemoveCatchLogOutput(&a);
}

// A catcher that takes others or itself out while it is called, reports
// something then, or stops the library is against the rules. It may not bring
// the process down, and those that are left are called.
TEST(Log, SurvivesCatchersThatBreakTheRules)
{
    static std::string calls;
    // At its first call it takes out those that it is told, logs (!) and stops
    // the library (.); it reports its end.
    struct Rude final : CVekRefCounted<IVekCatchLogOutput>
    {
        ~Rude() override { VekLogOutput(0, L"gone"); }
        void OnLogOutput(int, wchar_t const *) override
        {
            calls += 'r';
            auto const catchers = all; // it may end meanwhile
            for (char const c : std::exchange(operations, ""))
                c == '!'   ? VekLogOutput(0, L"within")
                : c == '.' ? VekLibDeinit()
                           : getVekLibKernel()->RemoveCatchLogOutput(catchers.at(c));
        }
        std::string operations;
        std::map<char, IVekCatchLogOutput *> all;
    };
    std::tuple<char const *, char const *, char const *, char const *> const rows[] = {
        {"removes itself", "arbc", "r", "arabcbc"},
        {"removes itself alone", "r", "r", "r"},
        {"removes the next", "arbc", "b", "arc"},
        {"removes all that follow", "arbc", "bc", "ar"},
        {"removes the one before", "arbc", "a", "arbc"},
        {"removes every entry of the next", "rbbac", "b", "rac"},
        {"reports, then removes the next", "rbc", "!b", "rrbcc"},
        {"removes within a message within", "rbc", "!rb", "rrbcbcc"},
        {"stops the library", "arbc", ".", "arbc"},
    };
    IVekKernel & kernel = *getVekLibKernel();
    for (auto const & [name, order, operations, expected] : rows)
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(VekLibInit());
        calls.clear();
        NamedCatcher a('a', calls), b('b', calls), c('c', calls);
        CVekRef<Rude> rude(new Rude);
        rude->operations = operations;
        rude->all = {{'a', &a}, {'b', &b}, {'c', &c}, {'r', rude.Get()}};
        for (char const catcher : std::string(order))
            kernel.AddCatchLogOutput(rude->all[catcher]);
        rude.Reset();
        VekLogOutput(0, L"x");
        EXPECT_EQ(calls, expected);
        calls.clear();
        VekLibDeinit();
        EXPECT_EQ(calls.find('r'), std::string::npos) << "it is out of the list when it ends";
    }
}

TEST(Log, ThreadsReachTheCatchersOneAtATime)
{
    constexpr int THREADS = 4, MESSAGES = 300;
    LogCapture first, second;
    std::vector<std::thread> threads;
    for (int id = 0; id < THREADS; ++id)
        threads.emplace_back(
            [id]
            {
                for (int i = 0; i < MESSAGES; ++i)
                    VekLogOutput(0, L"%d:%d", id, i);
            });
    for (int i = 0; i < 50; ++i)
        LogCapture const passing;
    for (std::thread & thread : threads)
        thread.join();

    std::vector<std::wstring> const lines = first.Lines();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(THREADS * MESSAGES));
    EXPECT_EQ(second.Lines(), lines) << "every catcher sees the same order";
    EXPECT_EQ(first.Oddities(), L"");
    int next[THREADS] = {};
    for (std::wstring const & line : lines)
    {
        int const id = line[0] - L'0';
        ASSERT_TRUE(id >= 0 && id < THREADS) << id;
        EXPECT_EQ(line, std::to_wstring(id) + L":" + std::to_wstring(next[id]++));
    }
}

TEST(Log, WindowsErrorGoesToTheDebuggerOnly)
{
    std::pair<DWORD, bool> const rows[] = {
        {ERROR_FILE_NOT_FOUND, true}, {ERROR_ACCESS_DENIED, true}, {0x2FFFFFFF, false}}; // no such code
    LogCapture log;
    CVekSetDebugOutputLevel const silent(-100);
    for (auto const & [code, hasText] : rows)
    {
        SCOPED_TRACE(code);
        wchar_t expected[512] = L"";
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, expected, 512,
                       nullptr);
        DebuggerOutput debugger;
        SetLastError(code);
        VekWindowsError();
        std::wstring const shown = debugger.Take();
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(!shown.empty(), hasText);
    }
    EXPECT_EQ(log.Text(), L"");
}

TEST(Exception, ReportsThroughItsTable)
{
    struct Derived : CVekException
    {
        int * reports = nullptr;
        void ReportError() override { ++*reports; }
    };
    int reports = 0;
    Derived thrown;
    thrown.reports = &reports;
    try
    {
        throw thrown;
    }
    catch (CVekException & exception)
    {
        CallSlot(&exception, Behind(1));
    }
    EXPECT_EQ(reports, 1);
    CVekException().ReportError();
}
