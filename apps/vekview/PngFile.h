#pragma once

#include "Canvas.h"

#include <string>

namespace tool
{

/// Writes the picture to a new PNG file. False when that can't be done; no file is left then.
bool WritePng(Canvas const & canvas, std::wstring const & path);

} // namespace tool
