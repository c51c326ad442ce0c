// Comparison of floating point numbers.
#pragma once

#include "qmt/export.h"

namespace QMT {

// 0 when the two count as equal, -1 when left is less, 1 when it is greater. Equal are values that differ by
// no more than 1e-9 of the larger magnitude, or by no more than 1e-9. An infinity equals itself only; a NaN
// equals a NaN and is less than every number.
QMT_GENU_API int compare(double left, double right) noexcept;

} // namespace QMT
