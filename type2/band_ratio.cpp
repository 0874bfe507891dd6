#include "type2/band_ratio.h"

#include <cmath>

namespace av::type2 {

void BandRatio::compute(int lastBin, int lineCount, int sides) noexcept {
  m_lastBin = lastBin;
  m_lineCount = lineCount;
  m_sides = sides;
  m_ratio = std::pow(static_cast<double>(lastBin), sides / (lineCount - 1.0));
}

}  // namespace av::type2
