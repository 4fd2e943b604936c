#pragma once

#include "VekIO.h"

namespace vek
{

/// The library's own stream behind an interface pointer; null for any other implementation.
CVekMemoryIOStream * ToMemoryStream(IVekIOStream & stream) noexcept;
CVekFileIOStream * ToFileStream(IVekIOStream & stream) noexcept;

} // namespace vek
