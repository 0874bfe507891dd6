#pragma once

#include "gfx/saturate.h"
#include "type1/layout.h"
#include "type1/settings.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace av::type1 {

/// The plot and its vertical scale as the formulas use them: samples and levels become rows of the plot.
struct PlotScale {
  int top;
  int bottom;  ///< top + height; curves reach it, bars end above it
  double height;
  double span;    ///< percent of the dynamic range that the plot's height shows
  double offset;  ///< rows that the scale's lower limit cuts off, a whole number
  double dynamicRangeDb;

  PlotScale(const ViewSettings& settings, const ViewLayout& layout)
      : top(layout.plotTop),
        bottom(clampToInt(std::int64_t{layout.plotTop} + layout.plotHeight)),
        height(layout.plotHeight),
        span(static_cast<double>(settings.scaleYMax) - settings.scaleYMin),
        offset(static_cast<double>(std::int64_t{layout.plotHeight} * settings.scaleYMin / 100)),
        dynamicRangeDb(settings.dynamicRangeDb) {}

  /// Whether there is a scale to draw samples on.
  bool showsSamples() const { return span > 0; }
  /// Whether there is a scale to draw levels on.
  bool showsLevels() const { return span > 0 && dynamicRangeDb > 0; }

  /// The row of a point of a curve, from the plot's top to its bottom.
  int clampToPlot(double y) const { return std::clamp(truncToInt(y), top, bottom); }

  /// A level on the linear frequency axis: 0 dB at the top, rows cut.
  int ofLinearLevel(double levelDb) const {
    return clampToPlot((std::fabs(levelDb) * height / dynamicRangeDb - offset) * 100 / span + top);
  }

  /// On the octave axis. Another order of operations and a rounding term: the two axes may differ by a row, and hosts see
  /// them so.
  int ofOctaveLevel(double levelDb) const {
    return clampToPlot((std::fabs(levelDb) / dynamicRangeDb * height - offset) * 100 / span + top + 0.5);
  }

  /// Rows of the plot above the bar of a level, from 0 to the plot's height. No bar starts below row 499, however high
  /// the plot is: hosts know bars so.
  int aboveBar(double levelDb) const {
    constexpr double lowestTop = 499;
    const double rows = (std::fabs(levelDb) / dynamicRangeDb * height - offset) * 100 / span;
    return std::min(truncToInt(std::clamp(rows, 0.0, lowestTop)), bottom - top);
  }
};

}  // namespace av::type1
