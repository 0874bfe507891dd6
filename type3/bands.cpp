#include "type3/bands.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cmath>

namespace av::type3 {
namespace {

/// The first `binCount` bins, and zeroes beyond them.
class Bins {
 public:
  Bins(std::span<const double> power, std::int32_t binCount) noexcept
      : m_power(power.first(std::min(power.size(), static_cast<std::size_t>(std::max(binCount, 0))))) {}

  double operator[](std::int32_t bin) const noexcept {
    const auto index = static_cast<std::size_t>(bin);
    return index < m_power.size() ? m_power[index] : 0.0;
  }

 private:
  std::span<const double> m_power;
};

void planLinear(std::vector<BinRange>& bands, const BandAxis& axis) {
  const double rate = axis.sampleRateHz != 0 ? axis.sampleRateHz : 44100;
  const double nyquist = rate * 0.5;
  const std::int32_t half = axis.binCount();
  const double sides = axis.mirrored ? 2 : 1;
  // The rate cancels out but for the last bits, and these decide where a band ends on a half.
  const double step = half == 0 ? 0.0 : (nyquist / axis.lineCount) / (nyquist / half) * sides;
  std::int32_t bin = 0;
  for (std::int32_t band = 0; band < axis.bandCount(); ++band) {
    const std::int32_t end = std::min(truncToInt(std::nearbyint((band + 1) * step)), half);
    const std::int32_t count = std::max(end - bin, 0);
    bands.push_back({bin, count});
    bin += count;
  }
}

void planLogarithmic(std::vector<BinRange>& bands, const BandAxis& axis) {
  const float sides = axis.mirrored ? 2 : 1;
  const float exponent = sides / static_cast<float>(axis.lineCount - 1);
  // In double precision and then rounded: a float's power differs between libraries.
  const double r = static_cast<float>(std::pow(axis.binCount() - 1, static_cast<double>(exponent)));
  double below = 1.0;  // r^(i − 1)
  bands.push_back({0, 1});
  for (std::int32_t i = 1; i < axis.bandCount(); ++i) {
    const std::int32_t top = std::max(truncToInt(std::pow(r, i)), i);
    const double here = below * r;
    const std::int32_t width = std::max(truncToInt(here - below), 1);
    bands.push_back({top + 2 - width, width});
    below = here;
  }
}

}  // namespace

BandAxis bandAxis(const AnalyserSettings& settings, std::int32_t fftLength, std::uint32_t sampleRateHz) noexcept {
  return {settings.xScaleType == 1, settings.alignmentX != 0, settings.lineCount, fftLength, sampleRateHz};
}

void planBands(std::vector<BinRange>& bands, const BandAxis& axis) {
  bands.clear();
  if (axis.logarithmic) {
    planLogarithmic(bands, axis);
  } else {
    planLinear(bands, axis);
  }
}

void foldBands(std::span<double> bands, const BandAxis& axis, std::span<const BinRange> plan,
               std::span<const double> power, double fullScale) noexcept {
  const Bins bins(power, axis.binCount());
  for (std::size_t band = 0; band < std::min(bands.size(), plan.size()); ++band) {
    const auto [first, count] = plan[band];
    double sum = 0.0;
    // Linear bands are added up from the lowest bin, logarithmic ones from the highest: the last bits follow.
    if (axis.logarithmic) {
      for (std::int32_t bin = first + count - 1; bin >= first; --bin) sum += bins[bin];
    } else {
      for (std::int32_t bin = first; bin < first + count; ++bin) sum += bins[bin];
    }
    const auto mean = static_cast<float>(sum / count);
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
