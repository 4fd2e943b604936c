#pragma once

#include "oom/Scenarios.h"

#include <vector>

// The object model, parser and writer.
extern std::vector<Scenario> const xmlScenarios;
