// The targets of the fuzzer on what it has found so far, and on random sequences.

#include "VekLib.h"

#include "fuzz/Pack.h"
#include "fuzz/Target.h"
#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace
{

char g_input[300]; // the one that runs

class Fuzz : public testing::TestWithParam<fuzz::Target>
{
protected:
    static void Run(std::string const & name, std::string const & input)
    {
        g_input[name.copy(g_input, sizeof g_input - 1)] = 0;
        GetParam().run(fuzz::Bytes(reinterpret_cast<std::uint8_t const *>(input.data()), input.size()));
    }

    CVekLibrary m_library;
    CVekSetDebugOutputLevel m_silence{-1};
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
    for (char const * const * seed = GetParam().seeds; seed && *seed; ++seed)
        Run(*seed, *seed);
    std::filesystem::path const folder = VEK_TEST_SOURCE "/fuzz", name = GetParam().name;
    auto const corpus = fuzz::LoadPack(folder / "corpus" / (name.wstring() + L".pack"));
    EXPECT_FALSE(corpus.empty()) << "tools/fuzz.sh --keep makes a corpus";
    for (std::size_t i = 0; i < corpus.size(); ++i)
        Run(std::to_string(i) + " of the pack", corpus[i]);
    // What has shown a fault once stands in files of its own.
    std::error_code isMissing;
    for (auto const & entry : std::filesystem::directory_iterator(folder / "found" / name, isMissing))
        Run(entry.path().string(), FileBytes(entry.path().wstring()));
}

TEST_P(Fuzz, RandomSequencesHold)
{
    if (!GetParam().isModel)
        return;
    std::mt19937 random(7);
    // As the library is released; the fuzzer has them by the million.
    for (int part = 0; part < (VekGuard::Active ? 2 : 100); ++part)
    {
        std::string input(2000, '\0');
        for (char & byte : input)
            byte = static_cast<char>(random());
        Run("random " + std::to_string(part), input);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Fuzz, testing::ValuesIn(fuzz::targets.begin(), fuzz::targets.end()),
                         [](auto const & target) { return std::string(target.param.name); });
