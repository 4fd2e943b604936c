// veklib_fuzz TARGET SECONDS GROWN-FOLDER FROM...: runs a target with inputs made of those in the folders, files and
// packs, keeps in the first folder what shows a new way through the library, and stops at the first fault. veklib_fuzz
// --replay TARGET FROM...: runs them on both heaps. veklib_fuzz --minimise TARGET BYTES PACK FROM...: packs the
// smallest inputs that show all known ways. veklib_fuzz --pack PACK FROM...: packs all inputs. veklib_fuzz --unpack
// FOLDER FROM...: stores each input in a file, named by its content.

#include "VekLib.h"

#include "fuzz/Pack.h"
#include "fuzz/Target.h"
#include "fuzz/engine/Coverage.h"
#include "fuzz/engine/Mutator.h"
#include "fuzz/engine/Runner.h"
#include "support/FaultReport.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

using fuzz::LONGEST_INPUT;
constexpr unsigned int RUNS_BETWEEN_LOOKS = 64; // at the clock

void Store(fs::path const & folder, std::string const & input)
{
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (char const byte : input)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
    char name[20];
    std::snprintf(name, sizeof name, "%08x%08x", static_cast<unsigned>(hash >> 32), static_cast<unsigned>(hash));
    StoreBytes((folder / name).wstring(), input);
}

// What is in folders, in packs and in files that are one input each; the smallest first.
std::vector<std::string> LoadAll(wchar_t ** from, int count)
{
    std::vector<std::string> inputs;
    for (int i = 0; i < count; ++i)
    {
        if (fs::path(from[i]).extension() == ".pack")
            std::ranges::copy(fuzz::LoadPack(from[i]), std::back_inserter(inputs));
        else if (fs::is_directory(from[i]))
            for (auto const & entry : fs::directory_iterator(from[i]))
                inputs.push_back(entry.path().filename() == "current" ? "" : FileBytes(entry.path().wstring()));
        else
            inputs.push_back(FileBytes(from[i]));
    }
    fuzz::SortInputs(inputs);
    return inputs;
}

std::vector<std::string> LoadFor(fuzz::Target const & target, wchar_t ** from, int count)
{
    std::vector<std::string> inputs = LoadAll(from, count);
    for (char const * const * seed = target.seeds; seed && *seed; ++seed)
        inputs.push_back(*seed);
    for (std::string & input : inputs)
        input.resize(std::min({input.size(), target.longest, LONGEST_INPUT}));
    if (inputs.empty())
        inputs.push_back("seed");
    fuzz::SortInputs(inputs);
    return inputs;
}

// Half of them from the latest quarter, which shows what is least known.
std::size_t Choose(fuzz::Mutator & mutator, std::vector<std::string> const & corpus)
{
    std::size_t index = 0;
    for (int tries = 3; tries > 0; --tries)
    {
        std::size_t const recent = mutator.Below(2) ? corpus.size() - corpus.size() / 4 : 0;
        index = std::min(recent + mutator.Below(corpus.size() - recent), corpus.size() - 1);
        if (corpus[index].size() <= fuzz::SHORT_INPUT)
            break;
    }
    return index;
}

int Fuzz(fuzz::Target const & target, int seconds, wchar_t ** folders, int count)
{
    fuzz::Runner runner(target);
    runner.KeepInput(folders[0]);
    std::vector<std::string> corpus;
    for (std::string const & input : LoadFor(target, folders, count))
    {
        runner.Run(input);
        if (fuzz::NewCoverage() || corpus.empty())
            corpus.push_back(input);
    }
    using Clock = std::chrono::steady_clock;
    auto const begin = Clock::now();
    char const * const given = std::getenv("VEK_FUZZ_SEED");
    unsigned const seed = given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                : static_cast<unsigned>(begin.time_since_epoch().count());
    fuzz::Mutator mutator(target, seed);
    std::printf("fuzz %s: seed %u, %u inputs at the start, %u edges\n", target.name, seed,
                static_cast<unsigned>(corpus.size()), static_cast<unsigned>(fuzz::KnownEdges()));
    for (unsigned run = 0; run % RUNS_BETWEEN_LOOKS || Clock::now() - begin < std::chrono::seconds(seconds); ++run)
    {
        std::string input =
            mutator.Change(corpus[Choose(mutator, corpus)], corpus, std::min(target.longest, LONGEST_INPUT));
        runner.Run(input);
        if (!fuzz::NewCoverage())
            continue;
        runner.RunGuarded(input);
        Store(folders[0], input);
        corpus.push_back(std::move(input));
    }
    std::printf("fuzz %s: %u executions in %d s (%u a second), corpus %u, %u edges, no fault\n", target.name,
                fuzz::Executions(), seconds, fuzz::Executions() / static_cast<unsigned>(std::max(seconds, 1)),
                static_cast<unsigned>(corpus.size()), static_cast<unsigned>(fuzz::KnownEdges()));
    return 0;
}

int Replay(fuzz::Target const & target, wchar_t ** from, int count)
{
    fuzz::Runner runner(target);
    std::vector<std::string> const inputs = LoadAll(from, count);
    for (std::string const & input : inputs)
    {
        runner.RunGuarded(input);
        runner.Run(input);
    }
    std::printf("fuzz %s: %u inputs on both heaps, no fault\n", target.name, static_cast<unsigned>(inputs.size()));
    return 0;
}

int Minimise(fuzz::Target const & target, std::size_t bytes, wchar_t ** folders, int count)
{
    fuzz::Runner runner(target);
    std::vector<std::string> inputs = LoadFor(target, folders + 1, count - 1), kept;
    // Once without looking: the ways that are made at first use are gone through. Then those come first that show
    // new edges, before those that only take known ones more often.
    for (std::string const & input : inputs)
        runner.Run(input);
    fuzz::ForgetCoverage();
    auto const showsEdges = [&](std::string const & input)
    {
        std::size_t const before = fuzz::KnownEdges();
        runner.Run(input);
        return fuzz::NewCoverage() != 0 && fuzz::KnownEdges() > before;
    };
    std::stable_partition(inputs.begin(), inputs.end(), showsEdges);
    fuzz::ForgetCoverage();
    for (std::string const & input : inputs)
    {
        if (input.size() > bytes)
            continue;
        runner.Run(input);
        if (!fuzz::NewCoverage())
            continue;
        bytes -= input.size();
        kept.push_back(input);
    }
    fuzz::StorePack(folders[0], kept);
    std::printf("fuzz %s: %u of %u inputs kept, %u edges\n", target.name, static_cast<unsigned>(kept.size()),
                static_cast<unsigned>(inputs.size()), static_cast<unsigned>(fuzz::KnownEdges()));
    return 0;
}

int Repack(bool pack, wchar_t ** arguments, int count)
{
    std::vector<std::string> const inputs = LoadAll(arguments + 1, count - 1);
    if (pack)
        fuzz::StorePack(arguments[0], inputs);
    for (std::string const & input : inputs)
        if (!pack)
            Store(arguments[0], input);
    std::printf("fuzz: %u inputs\n", static_cast<unsigned>(inputs.size()));
    return 0;
}

fuzz::Target const * Find(wchar_t const * name)
{
    for (fuzz::Target const & target : fuzz::targets)
        if (std::wstring(target.name, target.name + std::strlen(target.name)) == name)
            return &target;
    std::fprintf(stderr, "fuzz: no such target; there are");
    for (fuzz::Target const & target : fuzz::targets)
        std::fprintf(stderr, " %s", target.name);
    std::fprintf(stderr, "\n");
    return nullptr;
}

} // namespace

void fuzz::Check(bool holds, char const * what)
{
    if (holds)
        return;
    std::fprintf(stderr, "fuzz: does not hold: %s\n", what);
    __builtin_trap();
}

int wmain(int count, wchar_t ** arguments)
{
    VekTest::ReportFaults("the fuzzer's target");
    setvbuf(stdout, nullptr, _IONBF, 0);
    std::wstring_view const option = count > 3 ? arguments[1] : L"";
    if (option == L"--pack" || option == L"--unpack")
        return Repack(option == L"--pack", arguments + 2, count - 2);
    bool const minimise = option == L"--minimise", replay = option == L"--replay";
    int const first = minimise || replay ? 2 : 1;
    fuzz::Target const * const target = count > first + 1 ? Find(arguments[first]) : nullptr;
    if (!target || !VekLibInit())
        return 2;
    // Messages of what is refused would only cost time.
    getVekLibKernel()->SetDebugOutputLevel(-1);
    wchar_t ** const rest = arguments + first + 1;
    count -= first + 1;
    if (replay)
        return Replay(*target, rest, count);
    int const number = static_cast<int>(std::wcstol(rest[0], nullptr, 10));
    if (count < 2)
        return 2;
    return minimise ? Minimise(*target, static_cast<std::size_t>(number), rest + 1, count - 1)
                    : Fuzz(*target, number, rest + 1, count - 1);
}
