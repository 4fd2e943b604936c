#pragma once

namespace bench
{

/// The round trip of a command through a worker, beside the sleep of the worker's loop. The library must be
/// initialised.
void MeasureThreads(bool quick);

} // namespace bench
