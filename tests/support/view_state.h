#pragma once

#include "support/hartley_oracle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace av::test {

/// What the waveform and spectrum view knows after puts, blocks and ticks, and how it divides its window, in the plainest
/// words there are, slow and on its own.
struct ViewState {
  // The window and its font.
  int width = 0;
  int height = 0;
  int textHeightPx = 0;

  // Properties. Index 0 of the lines is the text colour.
  int type = 1;
  bool smooth = true;
  std::uint32_t back = 0x000000;
  std::uint32_t grid = 0xA9A9A9;
  std::uint32_t scale = 0x000000;
  std::uint32_t border = 0x000000;
  std::array<std::uint32_t, 19> lineColours = {0,        0xF08080, 0xFFFF00, 0x008000, 0x0000FF, 0x8A2BE2, 0x00FFFF,
                                               0xFF8C00, 0xFF00FF, 0x40E0D0, 0,        0,        0,        0,
                                               0,        0,        0,        0,        0};
  bool scaleX = true;
  bool scaleY = true;
  int scaleYMin = 0;
  int scaleYMax = 100;
  bool gridVisible = true;
  double dynamicRange = 20 * std::log10(32767.0);
  int borderType = 0;
  int windowSize = 1024;
  int windowType = 0;
  int viewType = 1;

  // What the blocks have left.
  int channels = 2;
  std::uint32_t sampleRate = 44100;
  double fullScale = 32767;
  bool received = false;
  bool animating = false;
  std::vector<std::vector<double>> analysis;
  std::vector<std::vector<double>> display;

  // What the last layout found.
  int yScaleWidth = 0;
  int xScaleHeight = 0;
  int plotWidth = 0;
  int plotHeight = 0;
  int xLabels = 0;
  int yDivisions = 0;

  void layout() {
    plotWidth = width;
    plotHeight = height;
    yScaleWidth = xScaleHeight = xLabels = yDivisions = 0;
    const int top = static_cast<int>(scaleYMax * dynamicRange / 100);
    const int bottom = static_cast<int>(scaleYMin * dynamicRange / 100);
    if (scaleX) xScaleHeight = textHeightPx + 10;
    if (scaleY) yScaleWidth = (characters(top) + 2) * textHeightPx;
    plotHeight = height - xScaleHeight;
    if (plotHeight < xScaleHeight) {
      plotHeight = height;
      xScaleHeight = 0;
    }
    plotWidth = width - yScaleWidth;
    if (plotWidth < yScaleWidth) {
      plotWidth = width;
      yScaleWidth = 0;
    }
    const int largest = type >= 2 ? static_cast<int>(sampleRate / 2) : windowSize;
    const int labelWidth = (characters(largest) + 1) * textHeightPx * 2 / 3;
    const int count = plotWidth / labelWidth;
    xLabels = count >= 20 ? 20 : count >= 10 ? 10 : count >= 5 ? 5 : count >= 2 ? 2 : count;

    const int range = top - bottom;
    int divisions = plotHeight / (textHeightPx + 8);
    if (divisions > range) divisions = range;
    if (divisions > 0) {
      int step = range / divisions;
      if (step >= 10) step = 10 * (step / 10);
      else if (step >= 5) step = 5;
      else if (step < 4) step = 2 * (step / 2);
      if (step < 1) step = 1;
      yDivisions = std::min(range / step, 100);
    }
  }

  /// Every value of both arrays of every channel in use.
  void reset() {
    const double value = type <= 5 ? type * -200.0 : 0.0;
    analysis.assign(static_cast<std::size_t>(channels),
                    std::vector<double>(static_cast<std::size_t>(windowSize), value));
    display = analysis;
  }

  void putType(int value) {
    type = value;
    reset();
    layout();
  }

  void putWindowSize(int value) {
    windowSize = value;
    reset();
  }

  /// One block: `bytes` are interleaved samples of `bits` each.
  void block(int bits, int blockChannels, std::uint32_t rate, const std::vector<std::uint8_t>& bytes) {
    const bool grew = blockChannels > channels || analysis.empty();
    channels = blockChannels;
    sampleRate = rate;
    fullScale = std::pow(2.0, bits - 1) - 1;
    dynamicRange = 20 * std::log10(fullScale);
    const int frames = static_cast<int>(bytes.size()) / channels / (bits / 8);
    if (frames < windowSize) return;
    if (grew) reset();
    analysis.resize(static_cast<std::size_t>(channels));
    display.resize(static_cast<std::size_t>(channels));
    received = true;
    for (int channel = 0; channel < channels; ++channel) {
      std::vector<double>& values = analysis[static_cast<std::size_t>(channel)];
      for (int i = 0; i < windowSize; ++i) {
        const auto at = static_cast<std::size_t>((i * channels + channel) * (bits / 8));
        values[static_cast<std::size_t>(i)] = sampleAt(bytes, at, bits);
      }
      if (type >= 2 && type <= 5) toLevels(values);
    }
    animating = true;
  }

  /// One step of the smoothing; nothing when it is at rest.
  void tick() {
    if (!animating || !smooth) return;
    bool converged = true;
    for (std::size_t channel = 0; channel < analysis.size(); ++channel) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(windowSize / 2); ++i) {
        const double a = analysis[channel][i];
        double& d = display[channel][i];
        if (d < a) d += (a - d) * 0.5;
        if (d > a) d -= (d - a) * 0.25;
        if (std::trunc(d) != std::trunc(a)) converged = false;
      }
    }
    animating = !converged;
  }

 private:
  static int characters(int value) { return static_cast<int>(std::to_string(value).size()); }

  double sampleAt(const std::vector<std::uint8_t>& bytes, std::size_t at, int bits) const {
    if (bits == 8) {
      return type == 1 ? 128 - static_cast<int>(bytes[at]) : static_cast<int>(static_cast<std::int8_t>(bytes[at]));
    }
    std::int64_t value = 0;
    for (int byte = 0; byte < bits / 8; ++byte)
      value += std::int64_t{bytes[at + static_cast<std::size_t>(byte)]} << (8 * byte);
    if (value >= std::int64_t{1} << (bits - 1)) value -= std::int64_t{1} << bits;
    return static_cast<double>(value);
  }

  void toLevels(std::vector<double>& values) const {
    const std::size_t count = values.size();
    std::vector<long double> weighted(count);
    for (std::size_t i = 0; i < count; ++i) weighted[i] = values[i] * exactWindow(windowType, i, count);
    const std::vector<long double> bins = exactHartley<long double>(weighted);
    values[0] = static_cast<double>(bins[0]);
    for (std::size_t k = 1; k < count / 2; ++k)
      values[k] = static_cast<double>(exactLevelDb(bins, k, static_cast<long double>(fullScale)));
  }
};

}  // namespace av::test
