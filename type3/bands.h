#pragma once

#include "type3/column_kernel.h"
#include "type3/settings.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace av::type3 {

/// What decides which bins of the spectrum a column shows.
struct BandAxis {
  bool logarithmic = false;
  bool mirrored = false;  ///< the lowest band in the centre, the highest at both edges
  std::int32_t lineCount = 60;
  std::int32_t fftLength = 512;
  std::uint32_t sampleRateHz = 44100;  ///< 0 counts as 44100

  /// The bins that the spectrum has; all others read as zero.
  constexpr std::int32_t binCount() const noexcept { return fftLength / 2; }
  /// The bands that are computed: one a column, or a column of a half and the centre one.
  constexpr std::int32_t bandCount() const noexcept { return mirrored ? (lineCount + 1) / 2 : lineCount; }

  friend bool operator==(const BandAxis&, const BandAxis&) = default;
};

/// The axis of these settings.
BandAxis bandAxis(const AnalyserSettings& settings, std::int32_t fftLength, std::uint32_t sampleRateHz) noexcept;

/// The bins `first` to `first` + `count` − 1. They may lie beyond the spectrum.
struct BinRange {
  std::int32_t first = 0;
  std::int32_t count = 0;

  friend bool operator==(const BinRange&, const BinRange&) = default;
};

/// Fills in the bins of each computed band, from the lowest band up.
///
/// Linear: bands of the same width that share no bin. Band b ends before bin (b + 1)·step, rounded to the nearest whole
/// number (halves to even); with more bands than bins some are empty.
/// Logarithmic: band 0 is bin 0; band i ends r^i bins up, r = (bins − 1)^(sides ÷ (columns − 1)), but at least i, and has
/// r^i − r^(i − 1) bins, but at least one. All of them lie one bin too high, on purpose: hosts know the pictures.
void planBands(std::vector<BinRange>& bands, const BandAxis& axis);

/// Writes the amplitude of every column: the square root of the mean of the band's powers, divided by `fullScale`; mean
/// and root are rounded to single precision. A band without bins is no number. `power` has the axis's bins, `plan` is
/// that of planBands(), `bands` has one element a column.
void foldBands(std::span<double> bands, const BandAxis& axis, std::span<const BinRange> plan,
               std::span<const double> power, double fullScale,
               const ColumnKernel& kernel = *columnKernels().front()) noexcept;

/// Spreads bands 0 to (columns + 1)/2 − 1 to both sides: the lowest into the centre (once, where the number of columns is
/// odd), the highest to both edges.
void mirrorBands(std::span<double> bands) noexcept;

}  // namespace av::type3
