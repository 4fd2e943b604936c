#pragma once

#include "Harness.h"

namespace bench
{

/// How fast the lexer and the tokenizer read 10 MB of text like C, beside a lexer written by hand for that language.
bool MeasureLexing(bool quick, Aims & aims);

} // namespace bench
