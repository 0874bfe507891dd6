#include "type2/spoken_value.h"

#include "common/spoken_numbers.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace av::type2 {
namespace {

/// The middle of each line's band in Hz. The fold that spreads levels over the lines does the same with the bins'
/// frequencies, so that lines and frequencies belong together whatever the layout.
std::vector<LineInfo> bandCentres(std::size_t lineCount, const MeterAxis& axis) {
  std::vector<double> frequencies(static_cast<std::size_t>(std::max(axis.analysisLength / 2, 1)));
  for (std::size_t bin = 0; bin < frequencies.size(); ++bin)
    frequencies[bin] = static_cast<double>(bin) * axis.sampleRateHz / axis.analysisLength;
  std::vector<LineInfo> centres(lineCount);
  BandRatio ratio;
  foldBands(axis.layout, frequencies, centres, 0, ratio);
  return centres;
}

}  // namespace

std::u16string spokenValue(std::span<const double> valuesDb, const MeterAxis& axis) {
  double loudest = -std::numeric_limits<double>::infinity();
  for (const double value : valuesDb) loudest = std::max(loudest, value);
  if (!isAudible(loudest)) return std::u16string(spokenSilence);
  double lowestHz = std::numeric_limits<double>::infinity();
  const std::vector<LineInfo> centres = bandCentres(valuesDb.size(), axis);
  for (std::size_t line = 0; line < valuesDb.size(); ++line)
    if (valuesDb[line] == loudest) lowestHz = std::min(lowestHz, centres[line].value);
  return u"loudest band " + spokenLevel(loudest) + u" at " + spokenFrequency(lowestHz);
}

}  // namespace av::type2
