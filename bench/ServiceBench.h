#pragma once

namespace bench
{

/// Event dispatch, log messages and progress calls. The library must be initialised.
void MeasureServices(bool quick);

} // namespace bench
