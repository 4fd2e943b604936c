#pragma once

#include "VekCore.h"

namespace vek
{

/// Hands a finished message to every registered catcher under the catcher lock, in the order of registration; nothing
/// once the kernel is gone. The door from log output up to the kernel, which implements it.
void DispatchToCatchers(VEK_LOG_CATEGORY category, int level, wchar_t const * text);

} // namespace vek
