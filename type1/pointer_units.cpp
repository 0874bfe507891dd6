#include "type1/pointer_units.h"

#include "gfx/saturate.h"

#include <cmath>

namespace av::type1 {

int xValueAt(const ViewSettings& settings, std::uint32_t sampleRateHz, const ViewLayout& layout, int x) {
  const double plotWidth = settings.scaleYVisible ? static_cast<double>(layout.client.width()) - layout.yScaleWidthPx
                                                  : layout.client.width();
  if (!readsAsSpectrum(settings.visualizationType)) {
    return truncToInt(static_cast<double>(settings.fftWindowSize) * x / plotWidth + 0.5);
  }
  const double nyquistHz = static_cast<double>(sampleRateHz) / 1000 * 500;
  if (settings.fftViewType == 1) return truncToInt(nyquistHz * x / plotWidth + 0.5);
  // log2(N), one octave more than the curve has: hosts know the reading so.
  const double octavesBelowNyquist = (plotWidth - x) * std::log2(int{settings.fftWindowSize}) / plotWidth;
  return truncToInt(nyquistHz / std::pow(2.0, octavesBelowNyquist) + 0.5);
}

int yValueAt(const ViewSettings& settings, const ViewLayout& layout, double y) {
  const double plotHeight = settings.scaleXVisible ? static_cast<double>(layout.client.height()) - layout.xScaleHeightPx
                                                   : layout.client.height();
  const double rangeDb = settings.dynamicRangeDb;  // once: a block may be replacing it
  const double topDb = settings.scaleYMax * rangeDb / 100;
  const double span = (static_cast<double>(settings.scaleYMax) - settings.scaleYMin) / 100;
  if (readsAsSpectrum(settings.visualizationType)) {
    return truncToInt(span * rangeDb * (plotHeight - y) / plotHeight - topDb + 0.5);
  }
  // The halves of the plot read alike: 0 at both edges, the floor at the centre line.
  return truncToInt(2 * span * rangeDb * std::fabs(plotHeight * 0.5 - y) / plotHeight - topDb + 0.5);
}

PointerValue pointerValueAt(const ViewSettings& settings, std::uint32_t sampleRateHz, const ViewLayout& layout,
                            Point position) {
  return {xValueAt(settings, sampleRateHz, layout, position.x), yValueAt(settings, layout, position.y)};
}

}  // namespace av::type1
