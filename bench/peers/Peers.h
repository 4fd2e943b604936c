// The library beside others that do the same work, a subject each. The library must be initialised.
#pragma once

#include "Duels.h"

#include <string>

namespace bench
{

/// Products, inverses and linear systems: Eigen, glm.
void AddMath(Duels & duels);

/// Strings: std::wstring, the system's comparison.
void AddText(Duels & duels);

/// Trees of documents: expat, pugixml, tinyxml2. Before everything else: later on the library and the heap have memory
/// in reserve.
void AddXml(Duels & duels, std::wstring const & database);

/// Typed data: msgpack.
void AddData(Duels & duels);

/// Lexer and tokenizer: lexers by hand.
void AddLexing(Duels & duels);

/// Tracked memory, events and workers: malloc, std::function, a thread with a queue.
void AddServices(Duels & duels);

/// Loading the DLL, and vek with several jobs: an empty DLL, and one job.
void AddStart(Duels & duels);

/// Paths: the shell's functions.
void AddPaths(Duels & duels);

} // namespace bench
