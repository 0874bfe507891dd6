#include "type3/spoken_value.h"

#include "common/spoken_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace av::type3 {
namespace {

/// The middle of the band that each column shows, in Hz.
std::vector<double> columnCentres(std::size_t columns, const BandAxis& axis, std::span<const BinRange> plan) {
  const double rateHz = axis.sampleRateHz != 0 ? axis.sampleRateHz : 44100;
  std::vector<double> centres(columns);
  for (std::size_t band = 0; band < std::min(columns, plan.size()); ++band) {
    const double middleBin = plan[band].first + (plan[band].count - 1) / 2.0;
    centres[band] = middleBin * rateHz / axis.fftLength;
  }
  if (axis.mirrored) mirrorBands(centres);
  return centres;
}

}  // namespace

std::u16string spokenValue(std::span<const double> bands, const BandAxis& axis, std::span<const BinRange> plan) {
  double loudest = 0;
  for (const double band : bands) loudest = std::max(loudest, band);
  const double levelDb = 20 * std::log10(2 * loudest / axis.fftLength);
  if (!isAudible(levelDb)) return std::u16string(spokenSilence);
  double lowestHz = std::numeric_limits<double>::infinity();
  const std::vector<double> centres = columnCentres(bands.size(), axis, plan);
  for (std::size_t column = 0; column < bands.size(); ++column)
    if (bands[column] == loudest) lowestHz = std::min(lowestHz, centres[column]);
  return u"loudest band " + spokenLevel(levelDb) + u" at " + spokenFrequency(lowestHz);
}

}  // namespace av::type3
