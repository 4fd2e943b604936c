#pragma once

#include "fuzz/Target.h"

namespace fuzz
{

void RunXml(Bytes input);
void RunElementPath(Bytes input);
void RunPaths(Bytes input);
void RunStrings(Bytes input);
void RunPointers(Bytes input);
void RunMemoryStream(Bytes input);
void RunVariants(Bytes input);
void RunElement(Bytes input);
void RunLexer(Bytes input);
void RunData(Bytes input);
void RunPackets(Bytes input);

} // namespace fuzz
