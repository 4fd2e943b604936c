#pragma once

#include "oom/Scenarios.h"

#include <vector>

// Streams, typed data, packets, lexer and tokenizer.
extern std::vector<Scenario> const dataScenarios;
