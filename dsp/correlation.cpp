#include "dsp/correlation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace av::dsp {

double correlation(std::span<const double> a, std::span<const double> b) noexcept {
  double product = 0;
  double energyOfA = 0;
  double energyOfB = 0;
  const std::size_t count = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < count; ++i) {
    product += a[i] * b[i];
    energyOfA += a[i] * a[i];
    energyOfB += b[i] * b[i];
  }
  const double energy = std::sqrt(energyOfA * energyOfB);
  if (!(energy > 0) || !std::isfinite(energy) || !std::isfinite(product)) return 0;
  return std::clamp(product / energy, -1.0, 1.0);  // rounding may pass the limits
}

}  // namespace av::dsp
