#pragma once

#include "Harness.h"

namespace bench
{

/// Linear systems beside a plain row loop, products of 4 x 4 matrices and ray tests. Both precisions.
void MeasureMath(bool quick, Aims & aims);

} // namespace bench
