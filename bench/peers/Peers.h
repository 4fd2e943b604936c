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

} // namespace bench
