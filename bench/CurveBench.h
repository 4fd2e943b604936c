#pragma once

#include "Harness.h"

namespace bench
{

/// Points of a NURBS curve per second, beside a plain de Boor loop.
void MeasureCurve(bool quick);

} // namespace bench
