#pragma once

#include "oom/Scenarios.h"

#include <vector>

// Everything that writes to or reads from a stream of the host's.
extern std::vector<StreamScenario> const streamScenarios;
