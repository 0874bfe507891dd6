#include "gfx/saturate.h"
#include "type3/bands.h"

#include <algorithm>
#include <cmath>

namespace av::type3 {
namespace {

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

void planBands(std::vector<BinRange>& bands, const BandAxis& axis) {
  bands.clear();
  if (axis.logarithmic) {
    planLogarithmic(bands, axis);
  } else {
    planLinear(bands, axis);
  }
}

}  // namespace av::type3
