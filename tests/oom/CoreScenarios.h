#pragma once

#include "oom/Scenarios.h"

#include <vector>

// Kernel, tracked memory, strings, paths, variants, matrices, events, progress and workers.
extern std::vector<Scenario> const coreScenarios;
