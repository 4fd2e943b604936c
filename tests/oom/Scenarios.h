// Work to be repeated with every single allocation of it, or every transfer of a stream, failing in turn. A scenario
// allocates nothing by itself beside what it calls the library for.
#pragma once

#include "VekLib.h"
#include "VekRef.h"

#include <ostream>
#include <string>
#include <vector>

struct Scenario
{
    char const * name;
    // Does the work and releases it all. True when every step succeeded; a step that failed must have left its object
    // sound, which the scenario uses on.
    bool (*run)();
    // Texts with which the messages that may tell of the failure begin, a null behind the last.
    wchar_t const * messages[8];
};

// Cleared by a scenario in which a failed step has not left what it must leave.
inline bool isSound = true;

// Work with a stream that fails from its n-th transfer on.
struct StreamScenario
{
    char const * name;
    bool (*run)(IVekIOStream & stream);
    std::string (*content)(); // of the stream at the beginning; null for none
    bool tells;               // whether every failure is seen: single values of a host's stream are 0 without a word
};

inline void PrintTo(Scenario const & scenario, std::ostream * out)
{
    *out << scenario.name;
}
inline void PrintTo(StreamScenario const & scenario, std::ostream * out)
{
    *out << scenario.name;
}

extern std::vector<Scenario> const coreScenarios; // kernel, memory, text, matrices, events, progress and workers
extern std::vector<Scenario> const dataScenarios; // streams, typed data, packets, curves, lexer
extern std::vector<Scenario> const xmlScenarios;
extern std::vector<StreamScenario> const streamScenarios;
