#include "type1/smoothing.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace av::type1 {

bool smoothToward(std::span<const double> analysis, std::span<double> display) noexcept {
  const std::size_t count = std::min(analysis.size(), display.size()) / 2;
  bool converged = true;
  for (std::size_t i = 0; i < count; ++i) {
    const double a = analysis[i];
    double d = display[i];
    if (!std::isfinite(d)) d = a;
    if (d < a) d = d + (a - d) * 0.5;
    if (d > a) d = d - (d - a) * 0.25;
    display[i] = d;
    if (truncToInt(d) != truncToInt(a)) converged = false;
  }
  return converged;
}

}  // namespace av::type1
