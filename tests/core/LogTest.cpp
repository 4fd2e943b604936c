#include "VekLib.h"

#include "support/DebuggerOutput.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <thread>

namespace
{

// Writes its name into a common text at each message.
class NamedCatcher final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    NamedCatcher(char name, std::string & calls) : m_name(name), m_calls(calls) {}
    void OnLogOutput(int, wchar_t const *) override { m_calls += m_name; }

private:
    char m_name;
    std::string & m_calls;
};

// A long text as its length and its end, so that a failure can be read.
std::wstring Short(std::wstring const & text)
{
    if (text.size() < 100)
        return text;
    return std::to_wstring(text.size()) + L" characters, the last " + text.substr(text.size() - 3);
}

} // namespace

TEST(Log, FormatsTheMessageAndEndsItsLine)
{
    struct Case
    {
        char const * name;
        void (*send)();
        std::wstring expected;
    };
    std::wstring const longest(4094, L'x');
    Case const cases[] = {
        {"plain", [] { VekLogOutput(0, L"text"); }, L"text\n"},
        {"empty", [] { VekLogOutput(0, L""); }, L"\n"},
        {"number", [] { VekLogOutput(0, L"A::B --> %d bytes", 7); }, L"A::B --> 7 bytes\n"},
        {"wide and narrow text", [] { VekLogOutput(0, L"%s %S %hs", L"wide", "narrow", "too"); }, L"wide narrow too\n"},
        {"float", [] { VekLogOutput(0, L"%.4g Mhz", 3579545 * 9.5367431640625e-7); }, L"3.414 Mhz\n"},
        {"own newlines stay", [] { VekLogOutput(0, L"\na\n"); }, L"\na\n\n"},
        {"a zero character ends it", [] { VekLogOutput(0, L"a%cb", 0); }, L"a\n"},
        {"longest", [] { VekLogOutput(0, L"%s", std::wstring(4094, L'x').c_str()); }, longest + L"\n"},
        {"one too long is cut", [] { VekLogOutput(0, L"%sy", std::wstring(4094, L'x').c_str()); }, longest + L"\n"},
        {"far too long is cut", [] { VekLogOutput(0, L"%s", std::wstring(100000, L'x').c_str()); }, longest + L"\n"},
        {"no format", [] { VekLogOutput(0, nullptr); }, L"\n"},
    };
    struct Catcher final : CVekRefCounted<IVekCatchLogOutput>
    {
        std::wstring text;
        int level = -99;
        void OnLogOutput(int givenLevel, wchar_t const * givenText) override
        {
            level = givenLevel;
            text += givenText;
        }
    } catcher;
    getVekLibKernel()->AddCatchLogOutput(&catcher);
    for (Case const & test : cases)
    {
        SCOPED_TRACE(test.name);
        DebuggerOutput debugger;
        catcher.text.clear();
        test.send();
        EXPECT_EQ(Short(catcher.text), Short(test.expected));
        EXPECT_TRUE(catcher.text == test.expected);
        EXPECT_EQ(catcher.level, 0);
        EXPECT_TRUE(debugger.Take() == test.expected);
    }
    getVekLibKernel()->RemoveCatchLogOutput(&catcher);
}

TEST(Log, ShowsMessagesUpToTheLevel)
{
    struct Row
    {
        int current, message;
        bool shown;
    };
    Row const rows[] = {
        {0, 0, true},    {0, 1, false},     {0, -1, true}, {-1, 0, false},       {-1, -1, true},
        {5, 0, true},    {5, 5, true},      {5, 6, false}, {INT_MIN, -7, false}, {INT_MAX, INT_MAX, true},
        {-2, -1, false}, {INT_MAX, 0, true}};
    EXPECT_EQ(getVekLibKernel()->GetDebugOutputLevel(), 0);
    for (Row const & row : rows)
    {
        SCOPED_TRACE(testing::Message() << "level " << row.current << ", message " << row.message);
        LogCapture log;
        DebuggerOutput debugger;
        CVekSetDebugOutputLevel const level(row.current);
        // Formatting it would read through a wild pointer: what is not shown is not formatted.
        auto const * const argument = row.shown ? L"x" : reinterpret_cast<wchar_t const *>(std::size_t{1});
        VekLogOutput(row.message, L"%s", argument);
        EXPECT_EQ(log.Take(), row.shown ? L"x" : L"");
        EXPECT_EQ(debugger.Take(), row.shown ? L"x\n" : L"");
    }
    EXPECT_EQ(getVekLibKernel()->GetDebugOutputLevel(), 0);
}

TEST(Log, LevelGuardsNest)
{
    IVekKernel & kernel = *getVekLibKernel();
    EXPECT_EQ(kernel.SetDebugOutputLevel(2), 2);
    {
        CVekSetDebugOutputLevel const outer(-1);
        EXPECT_EQ(kernel.GetDebugOutputLevel(), -1);
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
    NamedCatcher a('a', calls), b('b', calls);
    IVekCatchLogOutput * const all[] = {&a, &b};
    struct Row
    {
        char const * name;
        char const * operations; // upper case adds, lower case removes
        char const * calls;
        unsigned int countA, countB; // over the catcher's own reference
    };
    Row const rows[] = {
        {"in the order of registration", "AB", "ab", 1, 1},
        {"the other way round", "BA", "ba", 1, 1},
        {"twice added, twice called", "ABA", "aba", 2, 1},
        {"kept: removing takes every entry and releases once", "ABAa", "b", 1, 1},
        {"four times, four references", "ABbAAA", "aaaa", 4, 0},
        {"removed and added again", "ABaA", "ba", 1, 1},
        {"none", "", "", 0, 0},
    };
    IVekKernel & kernel = *getVekLibKernel();
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        for (char const * operation = row.operations; *operation; ++operation)
        {
            if (*operation < 'a')
                kernel.AddCatchLogOutput(all[*operation - 'A']);
            else
                kernel.RemoveCatchLogOutput(all[*operation - 'a']);
        }
        calls.clear();
        VekLogOutput(0, L"x");
        EXPECT_EQ(calls, row.calls);
        EXPECT_EQ(a.GetRefCount(), 1 + row.countA);
        EXPECT_EQ(b.GetRefCount(), 1 + row.countB);
        for (IVekCatchLogOutput * const catcher : all)
        {
            catcher->AddRef(); // for the one Release of a removal that finds nothing
            kernel.RemoveCatchLogOutput(catcher);
            while (catcher->GetRefCount() > 1)
                catcher->Release();
        }
    }
    calls.clear();
    b.AddRef();
    kernel.RemoveCatchLogOutput(&b);
    EXPECT_EQ(b.GetRefCount(), 1u) << "kept: released though it had no entry";
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
    for (IVekCatchLogOutput * const catcher :
         {static_cast<IVekCatchLogOutput *>(&a), static_cast<IVekCatchLogOutput *>(&b),
          static_cast<IVekCatchLogOutput *>(&a)})
        kernel.AddCatchLogOutput(catcher);
    EXPECT_EQ(a.GetRefCount(), 3u);
    VekLibDeinit();
    EXPECT_EQ(a.GetRefCount(), 1u);
    EXPECT_EQ(b.GetRefCount(), 1u);
    EXPECT_EQ(calls, "");
}

// A catcher that ends with its last reference, reports that, and takes others out while it is called: all of that is
// against the rules, and none of it may bring the process down.
TEST(Log, SurvivesCatchersThatBreakTheRules)
{
    static std::string calls;
    calls.clear();
    static NamedCatcher * other;
    struct Rude final : CVekRefCounted<IVekCatchLogOutput>
    {
        ~Rude() override { VekLogOutput(0, L"gone"); }
        void OnLogOutput(int, wchar_t const * text) override
        {
            calls += text[0] == L'g' ? 'g' : 'r';
            getVekLibKernel()->RemoveCatchLogOutput(other);
            getVekLibKernel()->RemoveCatchLogOutput(this);
        }
    };
    IVekKernel & kernel = *getVekLibKernel();
    other = new NamedCatcher('o', calls);
    IVekCatchLogOutput * const rude = new Rude;
    kernel.AddCatchLogOutput(rude);
    rude->Release();
    kernel.AddCatchLogOutput(other);
    other->Release();
    VekLogOutput(0, L"x");
    EXPECT_EQ(calls, "r");

    ASSERT_TRUE(VekLibInit());
    IVekCatchLogOutput * const reportsItsEnd = new Rude;
    kernel.AddCatchLogOutput(reportsItsEnd);
    reportsItsEnd->Release();
    calls.clear();
    VekLibDeinit();
    EXPECT_EQ(calls, "") << "it is out of the list when it ends";
}

TEST(Log, DropsACatcherThatItCantStore)
{
    if (!VekGuard::Active)
        GTEST_SKIP() << "needs the guard heap";
    std::string calls;
    NamedCatcher a('a', calls);
    VekGuard::FailFrom(1);
    getVekLibKernel()->AddCatchLogOutput(&a);
    EXPECT_TRUE(VekGuard::FailReset());
    EXPECT_EQ(a.GetRefCount(), 1u);
    VekLogOutput(0, L"x");
    EXPECT_EQ(calls, "");
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
    struct Row
    {
        char const * name;
        DWORD code;
        bool hasText;
    };
    Row const rows[] = {{"file not found", ERROR_FILE_NOT_FOUND, true},
                        {"access denied", ERROR_ACCESS_DENIED, true},
                        {"no such code", 0x2FFFFFFF, false}};
    LogCapture log;
    CVekSetDebugOutputLevel const silent(-100);
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        wchar_t expected[512] = L"";
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, row.code, 0, expected, 512,
                       nullptr);
        DebuggerOutput debugger;
        SetLastError(row.code);
        VekWindowsError();
        std::wstring const shown = debugger.Take();
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(!shown.empty(), row.hasText);
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
    Derived const copy = thrown;
    try
    {
        throw copy;
    }
    catch (CVekException & exception)
    {
        exception.ReportError();
        CallSlot(&exception, 2); // behind the destructor's two places
    }
    EXPECT_EQ(reports, 2);
    CVekException base;
    base.ReportError();
}
