#pragma once

#include "dsp/level_kernel.h"
#include "simd/decibels.h"

#include <limits>

namespace av::dsp {

/// The levels of a vector of bins from the transform's elements k and N − k. `withFloor`: whether there is a floor.
template <int lanes, bool withFloor>
AV_ALWAYS_INLINE Vector<lanes> levelsOf(Vector<lanes> lower, Vector<lanes> upper, const LevelScale& scale) noexcept {
  using V = Vector<lanes>;
  const V squares = lower * lower + upper * upper;
  const V level = decibels<lanes, LogarithmOf::normal>(squares * scale.gain) + scale.offsetDb;
  // An empty bin is below any floor.
  if constexpr (withFloor) return level >= scale.floorDb ? level : V{} + scale.floorDb;
  return squares == 0.0 ? V{} + scale.emptyDb : level;
}

template <int lanes, bool withFloor>
AV_ALWAYS_INLINE void fillLevels(double* hartley, std::size_t length, const LevelScale& scale) noexcept {
  const std::size_t bins = length / 2;
  std::size_t k = 1;
  for (; k + lanes <= bins; k += lanes) {
    const Vector<lanes> upper = reversed<lanes>(load<lanes>(hartley + length - k - (lanes - 1)));
    store<lanes>(hartley + k, levelsOf<lanes, withFloor>(load<lanes>(hartley + k), upper, scale));
  }
  // Fewer than a vector is left: it is filled up with empty bins.
  Vector<lanes> lower{};
  Vector<lanes> upper{};
  for (std::size_t lane = 0; k + lane < bins; ++lane) {
    lower[lane] = hartley[k + lane];
    upper[lane] = hartley[length - k - lane];
  }
  const Vector<lanes> levels = levelsOf<lanes, withFloor>(lower, upper, scale);
  for (std::size_t lane = 0; k + lane < bins; ++lane) hartley[k + lane] = levels[lane];
}

template <int lanes>
AV_ALWAYS_INLINE void fillDecibels(double* values, std::size_t count) noexcept {
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) store<lanes>(values + i, decibels<lanes>(load<lanes>(values + i)));
  Vector<lanes> rest{};
  for (std::size_t lane = 0; i + lane < count; ++lane) rest[lane] = values[i + lane];
  rest = decibels<lanes>(rest);
  for (std::size_t lane = 0; i + lane < count; ++lane) values[i + lane] = rest[lane];
}

/// A kernel's functions; see LevelKernel.
template <int lanes>
struct LevelKernelBody {
  static void levels(double* hartley, std::size_t length, const LevelScale& scale) noexcept {
    if (scale.floorDb == -std::numeric_limits<double>::infinity()) {
      fillLevels<lanes, false>(hartley, length, scale);
    } else {
      fillLevels<lanes, true>(hartley, length, scale);
    }
  }

  static void decibelsOf(double* values, std::size_t count) noexcept { fillDecibels<lanes>(values, count); }

  static constexpr LevelKernel kernel(const char* name) noexcept { return {name, levels, decibelsOf}; }
};

}  // namespace av::dsp
