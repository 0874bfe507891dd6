#include "type3/bands.h"

#include <algorithm>
#include <cmath>

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
               std::span<const double> power, double fullScale) noexcept {
  const auto binCount = static_cast<std::size_t>(std::max(axis.binCount(), 0));
  const std::span<const double> bins = power.first(std::min(power.size(), binCount));
  for (std::size_t band = 0; band < std::min(bands.size(), plan.size()); ++band) {
    const double sum = sumOf(bins, plan[band], axis.logarithmic);
    const auto mean = static_cast<float>(sum / plan[band].count);
    bands[band] = static_cast<double>(std::sqrt(mean)) / fullScale;
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
