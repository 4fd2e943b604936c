// Every subsystem with its n-th allocation failing, for n = 1, 2, 3, ... until nothing fails any more; then with the
// n-th and all later ones failing. In builds without the guard heap nothing can be made to fail: each scenario runs
// once.

#include "oom/Scenarios.h"
#include "support/GuardHeap.h"
#include "support/TestStream.h"
#include "support/WarmUp.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cwchar>
#include <utility>

namespace
{

// Keeps the first message that the scenario does not expect, without allocating.
class MessageCheck final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    explicit MessageCheck(Scenario const & scenario) : m_scenario(scenario)
    {
        getVekLibKernel()->AddCatchLogOutput(this);
    }
    ~MessageCheck() { getVekLibKernel()->RemoveCatchLogOutput(this); }
    MessageCheck(MessageCheck const &) = delete;
    MessageCheck & operator=(MessageCheck const &) = delete;

    void OnLogOutput(int, wchar_t const * text) override
    {
        for (auto const * const * expected = m_scenario.messages; *expected; ++expected)
            if (std::wcsncmp(text, *expected, std::wcslen(*expected)) == 0)
                return;
        if (!m_unexpected[0])
            std::wcsncpy(m_unexpected, text, std::size(m_unexpected) - 1);
    }
    wchar_t const * Unexpected() const { return m_unexpected; }

private:
    Scenario const & m_scenario;
    wchar_t m_unexpected[200] = L"";
};

// What the library and the runtime keep from their first use on.
void WarmScenariosUp()
{
    CVekLibrary const library;
    for (auto const & scenarios : {coreScenarios, dataScenarios, xmlScenarios})
        for (Scenario const & scenario : scenarios)
            scenario.run();
}
VekTest::WarmUp const warmUp(WarmScenariosUp);

class OutOfMemory : public testing::TestWithParam<Scenario>
{
protected:
    static void TearDownTestSuite() { std::printf("%d allocations failed in turn\n", total); }
    static inline int total = 0;
};

// The number of allocations that failed in turn.
void FailEach(Scenario const & scenario, void (*fail)(std::size_t), int & failures)
{
    scenario.run(); // makes what the library keeps until it stops
    for (std::size_t n = 1;; ++n)
    {
        SCOPED_TRACE(testing::Message() << "allocation " << n);
        std::size_t const blocks = VekGuard::LiveBlocks();
        bool succeeded, failed;
        {
            MessageCheck const messages(scenario);
            fail(n);
            succeeded = scenario.run();
            failed = VekGuard::FailReset();
            EXPECT_STREQ(messages.Unexpected(), L"");
        }
        EXPECT_TRUE(succeeded || failed);
        EXPECT_TRUE(std::exchange(isSound, true)) << "a failed step has left its object unsound";
        ASSERT_TRUE(scenario.run()) << "not usable afterwards";
        ASSERT_EQ(VekGuard::LiveBlocks(), blocks) << "leak";
        if (!failed)
            return;
        ++failures;
    }
}

TEST_P(OutOfMemory, IsReportedAndLeavesTheLibraryUsable)
{
    CVekLibrary const library;
    int failures = 0;
    FailEach(GetParam(), VekGuard::FailAllocation, failures);
    FailEach(GetParam(), VekGuard::FailFrom, failures);
    EXPECT_EQ(failures > 0, VekGuard::Active);
    total += failures;
}

std::string NameOf(testing::TestParamInfo<Scenario> const & info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Core, OutOfMemory, testing::ValuesIn(coreScenarios), NameOf);
INSTANTIATE_TEST_SUITE_P(Data, OutOfMemory, testing::ValuesIn(dataScenarios), NameOf);
INSTANTIATE_TEST_SUITE_P(XML, OutOfMemory, testing::ValuesIn(xmlScenarios), NameOf);

class FailingStream : public testing::TestWithParam<StreamScenario>
{
};

TEST_P(FailingStream, IsReported)
{
    CVekLibrary const library;
    for (unsigned int n = 1;; ++n)
    {
        SCOPED_TRACE(testing::Message() << "transfer " << n);
        TestStream stream;
        if (GetParam().content)
            stream.bytes = GetParam().content();
        stream.failFrom = n;
        bool const succeeded = GetParam().run(stream);
        bool const failed = stream.transfers >= n;
        ASSERT_TRUE(succeeded != failed || (succeeded && !GetParam().tells));
        if (!failed)
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(All, FailingStream, testing::ValuesIn(streamScenarios),
                         [](auto const & scenario) { return std::string(scenario.param.name); });

} // namespace
