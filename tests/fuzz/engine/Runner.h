// Runs a target with one input after the other, fast or on the guard heap.
#pragma once

#include "fuzz/Target.h"
#include "fuzz/engine/ArenaHeap.h"

#include <filesystem>

namespace fuzz
{

constexpr std::size_t LONGEST_INPUT = 4096;

class Runner
{
public:
    explicit Runner(Target const & target);

    // From now on the input that runs stands in FOLDER/current, behind its length and the number of executions,
    // whatever happens to the process; and a run that takes too long ends it.
    void KeepInput(std::filesystem::path const & folder);
    // On the heap of zones. An input that looks odd, and one of a thousand, runs on the guard heap, too.
    void Run(std::string const & input);
    // Where an access outside of a block stops at the instruction.
    void RunGuarded(std::string const & input);

private:
    struct Current;

    Target const & m_target;
    ArenaHeap & m_heap;   // for good: what the library keeps lies in it
    std::uint8_t * m_end; // of a page that has none behind it
    Current * m_current = nullptr;
};

unsigned int Executions();

} // namespace fuzz
