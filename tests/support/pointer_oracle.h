#pragma once

// The view's pointer units again, from their formulas and in wider precision.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace av::test {

/// A view as its pointer units see it.
struct PointerOracle {
  int clientWidthPx = 0;
  int clientHeightPx = 0;
  int yScaleWidthPx = 0;
  int xScaleHeightPx = 0;
  int visualizationType = 1;
  int fftViewType = 1;
  bool scaleXVisible = true;
  bool scaleYVisible = true;
  long scaleYMin = 0;
  long scaleYMax = 100;
  int fftWindowSize = 1024;
  std::uint32_t sampleRateHz = 44100;
  double dynamicRangeDb = 20 * std::log10(32767.0);

  int plotWidthPx() const { return scaleYVisible ? clientWidthPx - yScaleWidthPx : clientWidthPx; }
  int plotHeightPx() const { return scaleXVisible ? clientHeightPx - xScaleHeightPx : clientHeightPx; }
  bool readsAsSpectrum() const { return visualizationType >= 2 && visualizationType <= 6; }

  // Both before they are truncated toward zero.

  long double xValue(long double x) const {
    const long double width = plotWidthPx();
    if (!readsAsSpectrum()) return fftWindowSize * x / width + 0.5L;
    const long double nyquistHz = sampleRateHz / 1000.0L * 500;
    if (fftViewType == 1) return nyquistHz * x / width + 0.5L;
    const long double octaves = std::log2(static_cast<long double>(fftWindowSize));
    return nyquistHz / std::pow(2.0L, (width - x) * octaves / width) + 0.5L;
  }

  long double yValue(long double y) const {
    const long double height = plotHeightPx();
    const long double rangeDb = dynamicRangeDb;
    const long double topDb = scaleYMax * rangeDb / 100;
    const long double span = (static_cast<long double>(scaleYMax) - scaleYMin) / 100;
    const long double level = readsAsSpectrum() ? span * rangeDb * (height - y) / height
                                                : 2 * span * rangeDb * std::fabs(height * 0.5L - y) / height;
    return level - topDb + 0.5L;
  }
};

/// Whether `actual` is `exact` truncated toward zero. Double precision decides on which side of a whole number a value
/// lies that is nearer to it than its rounding errors, so there both are right; what overflows saturates.
inline testing::AssertionResult truncatesTo(long double exact, int actual) {
  const long double slack = 1e-10L * std::fmax(1.0L, std::fabs(exact));
  const auto whole = [](long double value) {
    return std::fmin(std::fmax(std::trunc(value), -2147483648.0L), 2147483647.0L);
  };
  if (whole(exact - slack) <= actual && actual <= whole(exact + slack)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << actual << " is not " << static_cast<double>(exact) << " truncated";
}

}  // namespace av::test
