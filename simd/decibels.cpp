#include "simd/decibels.h"

namespace av {

double decibels(double x) noexcept { return decibels<2>(Vector<2>{x, x})[0]; }

}  // namespace av
