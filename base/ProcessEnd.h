#pragma once

namespace vek
{

/// Whether the process is ending: its other threads are gone then, and what they had locked stays so.
bool IsProcessEnding() noexcept;

} // namespace vek
