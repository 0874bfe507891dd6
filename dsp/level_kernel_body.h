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

/// Of no more bins than a vector has lanes, which is filled up with empty bins.
template <int lanes, bool withFloor>
AV_ALWAYS_INLINE void fillFewLevels(double* hartley, std::size_t length, const LevelScale& scale) noexcept {
  const std::size_t bins = length / 2;
  Vector<lanes> lower{};
  Vector<lanes> upper{};
  for (std::size_t k = 1; k < bins; ++k) {
    lower[k - 1] = hartley[k];
    upper[k - 1] = hartley[length - k];
  }
  const Vector<lanes> levels = levelsOf<lanes, withFloor>(lower, upper, scale);
  for (std::size_t k = 1; k < bins; ++k) hartley[k] = levels[k - 1];
}

template <int lanes, bool withFloor>
AV_ALWAYS_INLINE void fillLevels(double* hartley, std::size_t length, const LevelScale& scale) noexcept {
  constexpr std::size_t chains = 3;  // a logarithm is a chain of operations: so many of them side by side
  const std::size_t bins = length / 2;
  if (bins <= lanes) return fillFewLevels<lanes, withFloor>(hartley, length, scale);
  const auto lower = [=](std::size_t k) AV_INLINED { return load<lanes>(hartley + k); };
  const auto upper = [=](std::size_t k)
                         AV_INLINED { return reversed<lanes>(load<lanes>(hartley + length - k - (lanes - 1))); };
  // The last vector may share bins with the one before, and is read before anything is written.
  const std::size_t lastBins = bins - lanes;
  const Vector<lanes> last = levelsOf<lanes, withFloor>(lower(lastBins), upper(lastBins), scale);
  std::size_t k = 1;
  for (; k + chains * lanes <= bins; k += chains * lanes) {
    Vector<lanes> values[chains];
    Vector<lanes> mirrors[chains];
    const auto place = [=](int chain) AV_INLINED { return k + static_cast<std::size_t>(chain) * lanes; };
    unrolled<chains>([&]<int n>() AV_INLINED {
      values[n] = lower(place(n));
      mirrors[n] = upper(place(n));
    });
    unrolled<chains>([&]<int n>() AV_INLINED { values[n] = levelsOf<lanes, withFloor>(values[n], mirrors[n], scale); });
    unrolled<chains>([&]<int n>() AV_INLINED { store<lanes>(hartley + place(n), values[n]); });
  }
  for (; k < lastBins; k += lanes) store<lanes>(hartley + k, levelsOf<lanes, withFloor>(lower(k), upper(k), scale));
  store<lanes>(hartley + lastBins, last);
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

  static constexpr LevelKernel kernel(const char* name) noexcept { return {name, levels}; }
};

}  // namespace av::dsp
