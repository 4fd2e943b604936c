#pragma once

#include "fuzz/Target.h"

namespace fuzz
{

void RunXml(Bytes input);
void RunPaths(Bytes input);
void RunLexer(Bytes input);
void RunData(Bytes input);
void RunPackets(Bytes input);

} // namespace fuzz
