#include "type3/bands.h"

#include <algorithm>

namespace av::type3 {
namespace {

/// The sum of the bins of a band that the spectrum has; all others are zero, and none of them would change the sum.
/// Linear bands are added up from the lowest bin, logarithmic ones from the highest: the last bits follow.
double sumOf(std::span<const double> power, BinRange band, bool fromTheTop) noexcept {
  const auto bins = static_cast<std::int64_t>(power.size());
  const auto first = static_cast<std::size_t>(std::clamp<std::int64_t>(band.first, 0, bins));
  const auto end = static_cast<std::size_t>(std::clamp<std::int64_t>(std::int64_t{band.first} + band.count, 0, bins));
  double sum = 0.0;
  if (fromTheTop) {
    for (std::size_t bin = end; bin > first; --bin) sum += power[bin - 1];
  } else {
    for (std::size_t bin = first; bin < end; ++bin) sum += power[bin];
  }
  return sum;
}

}  // namespace

BandAxis bandAxis(const AnalyserSettings& settings, std::int32_t fftLength, std::uint32_t sampleRateHz) noexcept {
  return {settings.xScaleType == 1, settings.alignmentX != 0, settings.lineCount, fftLength, sampleRateHz};
}

void foldBands(std::span<double> bands, const BandAxis& axis, std::span<const BinRange> plan,
               std::span<const double> power, double fullScale, const ColumnKernel& kernel) noexcept {
  const auto binCount = static_cast<std::size_t>(std::max(axis.binCount(), 0));
  const std::span<const double> bins = power.first(std::min(power.size(), binCount));
  const std::size_t count = std::min(bands.size(), plan.size());
  ColumnValues values;
  ColumnValues widths;
  for (std::size_t first = 0; first < count; first += values.size()) {
    const std::size_t some = std::min(count - first, values.size());
    for (std::size_t i = 0; i < some; ++i) {
      values[i] = sumOf(bins, plan[first + i], axis.logarithmic);
      widths[i] = plan[first + i].count;
    }
    std::fill(values.begin() + static_cast<std::ptrdiff_t>(some), values.end(), 0.0);
    std::fill(widths.begin() + static_cast<std::ptrdiff_t>(some), widths.end(), 1.0);
    kernel.amplitudes(values.data(), widths.data(), some, fullScale);
    std::copy_n(values.begin(), some, bands.begin() + static_cast<std::ptrdiff_t>(first));
  }
  if (axis.mirrored) mirrorBands(bands);
}

void mirrorBands(std::span<double> bands) noexcept {
  // Right half first, lowest band in the centre; the left half is its mirror image.
  const std::size_t mid = bands.size() / 2;
  if (bands.size() % 2 != 0) bands.back() = bands[mid];
  std::ranges::copy(bands.first(mid), bands.begin() + static_cast<std::ptrdiff_t>(mid));
  for (std::size_t i = 0; i < mid; ++i) bands[i] = bands[bands.size() - 1 - i];
}

}  // namespace av::type3
