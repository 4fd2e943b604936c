// The targets of the fuzzer on what it has found so far, and on long random sequences.

#include "VekLib.h"

#include "fuzz/Target.h"
#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace
{

char g_input[300]; // the one that runs

class Fuzz : public testing::TestWithParam<fuzz::Target>
{
protected:
    Fuzz()
    {
        VekLibInit();
        getVekLibKernel()->SetDebugOutputLevel(-1);
    }
    ~Fuzz() override
    {
        getVekLibKernel()->SetDebugOutputLevel(0);
        VekLibDeinit();
    }
    static void Run(std::string const & name, std::string const & input)
    {
        g_input[name.copy(g_input, sizeof g_input - 1)] = 0;
        GetParam().run(fuzz::Bytes(reinterpret_cast<std::uint8_t const *>(input.data()), input.size()));
    }
};

} // namespace

// In the fuzzer a fault ends the process; here too, as nothing after it could be trusted.
void fuzz::Check(bool holds, char const * what)
{
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: does not hold: %s, input %s\n", what, g_input);
    __builtin_trap();
}

TEST_P(Fuzz, CorpusHolds)
{
    auto const folder = std::filesystem::path(VEK_TEST_SOURCE "/fuzz/corpus") / GetParam().name;
    for (char const * const * seed = GetParam().seeds; seed && *seed; ++seed)
        Run(*seed, *seed);
    for (auto const & entry : std::filesystem::directory_iterator(folder))
    {
        std::ifstream file(entry.path(), std::ios::binary);
        Run(entry.path().string(), {std::istreambuf_iterator<char>(file), {}});
    }
}

TEST_P(Fuzz, LongRandomSequencesHold)
{
    if (!GetParam().isModel)
        return;
    std::mt19937 random(7);
    // More than 100,000 operations, or as many as the guard heap's speed allows.
    for (int part = 0; part < (VekGuard::Active ? 20 : 1000); ++part)
    {
        std::string input(2000, '\0');
        for (char & byte : input)
            byte = static_cast<char>(random());
        Run("random " + std::to_string(part), input);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Fuzz, testing::ValuesIn(fuzz::targets.begin(), fuzz::targets.end()),
                         [](auto const & target) { return std::string(target.param.name); });
