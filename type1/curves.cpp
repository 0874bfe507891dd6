#include "type1/curves.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace av::type1 {
namespace {

/// The plot and the scale as the formulas use them: levels and samples become rows between the plot's top and bottom.
struct Rows {
  int top;
  int bottom;
  double height;
  double scaleSpan;    ///< percent of the dynamic range that the plot's height shows
  double scaleOffset;  ///< rows that the scale's lower limit cuts off, a whole number
  double dynamicRangeDb;

  Rows(const ViewSettings& settings, const ViewLayout& layout)
      : top(layout.plotTop),
        bottom(clampToInt(std::int64_t{layout.plotTop} + layout.plotHeight)),
        height(layout.plotHeight),
        scaleSpan(static_cast<double>(settings.scaleYMax) - settings.scaleYMin),
        scaleOffset(static_cast<double>(std::int64_t{layout.plotHeight} * settings.scaleYMin / 100)),
        dynamicRangeDb(settings.dynamicRangeDb) {}

  int clampToPlot(double y) const { return std::clamp(truncToInt(y), top, bottom); }

  int ofLinearLevel(double levelDb) const {
    return clampToPlot((std::fabs(levelDb) * height / dynamicRangeDb - scaleOffset) * 100 / scaleSpan + top);
  }

  // Another order of operations and a rounding term: the two axes may differ by a row, and hosts see them so.
  int ofOctaveLevel(double levelDb) const {
    return clampToPlot((std::fabs(levelDb) / dynamicRangeDb * height - scaleOffset) * 100 / scaleSpan + top + 0.5);
  }
};

int column(const ViewLayout& layout, std::int64_t index, std::int64_t lastIndex) {
  return clampToInt(layout.plotLeft + layout.plotWidth * index / lastIndex);
}

int channelsInUse(const ViewSignal& signal) { return std::clamp(signal.channelCount, 0, maxChannels); }

std::span<const double> spectrumOf(const ViewSettings& settings, const ViewSignal& signal, std::size_t channel) {
  return settings.visualizationSmooth ? signal.display[channel] : signal.analysis[channel];
}

Argb lineColour(const ViewSettings& settings, std::size_t channel) { return settings.textAndLineColors[channel + 1]; }

/// Runs the curve flat from its first computed point to the plot's left edge and from its last one to the right edge.
void runFlatToTheEdges(std::span<Point> points, const ViewLayout& layout) {
  points.front() = {layout.plotLeft, points[1].y};
  points.back() = {clampToInt(std::int64_t{layout.plotLeft} + layout.plotWidth), points[points.size() - 2].y};
}

}  // namespace

void addWaveforms(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout) {
  const Rows rows(settings, layout);
  if (rows.scaleSpan <= 0 || signal.windowSize < 2) return;
  const auto sampleCount = static_cast<std::size_t>(signal.windowSize);
  const double centre = (50.0 - settings.scaleYMin) * rows.height / 100;
  const double halfHeight = rows.height * 0.5;
  for (std::size_t channel = 0; channel < static_cast<std::size_t>(channelsInUse(signal)); ++channel) {
    const std::span<const double> samples = signal.analysis[channel];
    if (samples.size() < sampleCount) continue;
    const std::span<Point> points = curves.add(lineColour(settings, channel), sampleCount + 1);
    for (std::size_t i = 0; i < sampleCount; ++i) {
      const double y = (centre - samples[i] * halfHeight / signal.fullScale) * 100 / rows.scaleSpan + rows.top + 0.5;
      points[i + 1] = {column(layout, static_cast<std::int64_t>(i), signal.windowSize - 1), rows.clampToPlot(y)};
    }
    // The flat end takes the place of the last sample, not the place after it: the picture has always lost that sample.
    runFlatToTheEdges(points, layout);
  }
}

void addLinearSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout) {
  const Rows rows(settings, layout);
  const std::int64_t lastBin = std::int64_t{signal.windowSize} / 2 - 1;
  if (rows.scaleSpan <= 0 || !(rows.dynamicRangeDb > 0) || lastBin < 2) return;
  for (std::size_t channel = 0; channel < static_cast<std::size_t>(channelsInUse(signal)); ++channel) {
    const std::span<const double> levels = spectrumOf(settings, signal, channel);
    if (levels.size() < static_cast<std::size_t>(lastBin)) continue;
    // Bins 1 to lastBin − 1, and a point at either edge.
    const std::span<Point> points = curves.add(lineColour(settings, channel), static_cast<std::size_t>(lastBin) + 1);
    for (std::int64_t k = 1; k < lastBin; ++k) {
      const auto at = static_cast<std::size_t>(k);
      points[at] = {column(layout, k, lastBin), rows.ofLinearLevel(levels[at])};
    }
    runFlatToTheEdges(points, layout);
  }
}

void addOctaveSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout) {
  const Rows rows(settings, layout);
  if (rows.scaleSpan <= 0 || !(rows.dynamicRangeDb > 0) || signal.windowSize < 4) return;
  const int octaveCount = truncToInt(std::log2(signal.windowSize / 2) + 0.5);
  const double octaveWidth = (layout.plotWidth + 2.0) / (octaveCount + 1);
  // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): the logarithm of an int is below 31
  const std::size_t binEnd = std::size_t{1} << octaveCount;  // half the window: windows are powers of two
  for (std::size_t channel = 0; channel < static_cast<std::size_t>(channelsInUse(signal)); ++channel) {
    const std::span<const double> levels = spectrumOf(settings, signal, channel);
    if (levels.size() < binEnd) continue;
    const std::span<Point> points = curves.add(lineColour(settings, channel), binEnd + 1);
    for (int octave = 0; octave < octaveCount; ++octave) {
      const std::size_t firstBin = std::size_t{1} << octave;
      for (std::size_t k = firstBin; k < 2 * firstBin; ++k) {
        const double x = layout.plotLeft + octave * octaveWidth +
                         static_cast<double>(k) * octaveWidth / static_cast<double>(firstBin) + 0.5;
        points[k] = {truncToInt(x), rows.ofOctaveLevel(levels[k])};
      }
    }
    runFlatToTheEdges(points, layout);
  }
}

}  // namespace av::type1
