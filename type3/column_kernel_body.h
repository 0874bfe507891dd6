#pragma once

#include "simd/decibels.h"
#include "simd/roundings.h"
#include "type3/column_kernel.h"

namespace av::type3 {

/// 20·log10(2·amplitude ÷ length) dB, argument and logarithm rounded to single precision. Lengths are powers of two, or 0:
/// products are the quotients.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> columnLevel(Vector<lanes> amplitude, double perSample) noexcept {
  const Vector<lanes> relative = roundedToSingle<lanes>(amplitude * perSample * 2.0);
  return 20.0 * roundedToSingle<lanes>(decibels<lanes>(relative) / 10.0);
}

/// Up to the end of a segment that has begun. All of these are whole numbers below 2^53: the quotient has the right whole
/// part, which is in the range of int as the heights are.
template <int lanes>
AV_ALWAYS_INLINE Vector<lanes> wholeSegments(Vector<lanes> heightPx, const HeightScale& scale) noexcept {
  constexpr double tallest = 2147483647.0;
  const Vector<lanes> segments = truncated<lanes>((heightPx + (scale.pitchPx - 1.0)) / scale.pitchPx);
  const Vector<lanes> whole = segments * scale.pitchPx - scale.intervalPx;
  return segments > 0.0 ? (whole < tallest ? whole : tallest) : 0.0;
}

template <int lanes, bool segmented>
AV_ALWAYS_INLINE Vector<lanes> columnHeight(Vector<lanes> amplitude, const HeightScale& scale) noexcept {
  Vector<lanes> level = amplitude > 0.0 ? columnLevel<lanes>(amplitude, scale.perSample) : scale.bottomDb;
  level = level > scale.bottomDb ? level : scale.bottomDb;
  level = level < scale.topDb ? level : scale.topDb;
  const Vector<lanes> wholeDb = truncated<lanes>((level - scale.bottomDb) * scale.part);
  const double rangeDb = scale.topDb - scale.bottomDb;
  const Vector<lanes> heightPx = truncated<lanes>(wholeDb / rangeDb * scale.areaHeightPx);
  if constexpr (segmented) return wholeSegments<lanes>(heightPx, scale);
  return heightPx;
}

/// A kernel's functions; see ColumnKernel.
template <int lanes>
struct ColumnKernelBody {
  static_assert(columnsAtATime % lanes == 0);

  static void amplitudes(double* sums, const double* bins, std::size_t count, double fullScale) noexcept {
    for (std::size_t i = 0; i < count; i += lanes) {
      const Vector<lanes> mean = roundedToSingle<lanes>(load<lanes>(sums + i) / load<lanes>(bins + i));
      store<lanes>(sums + i, roundedToSingle<lanes>(squareRoot<lanes>(mean)) / fullScale);
    }
  }

  static void heights(double* amplitudes, std::size_t count, const HeightScale& scale) noexcept {
    if (scale.intervalPx > 0.0) {
      fillHeights<true>(amplitudes, count, scale);
    } else {
      fillHeights<false>(amplitudes, count, scale);
    }
  }

  static constexpr ColumnKernel kernel(const char* name) noexcept { return {name, amplitudes, heights}; }

 private:
  template <bool segmented>
  AV_ALWAYS_INLINE static void fillHeights(double* values, std::size_t count, HeightScale scale) noexcept {
    for (std::size_t i = 0; i < count; i += lanes)
      store<lanes>(values + i, columnHeight<lanes, segmented>(load<lanes>(values + i), scale));
  }
};

}  // namespace av::type3
