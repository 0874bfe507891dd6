#include "type1/curves.h"

#include "gfx/saturate.h"
#include "type1/octave_axis.h"
#include "type1/plot_scale.h"

#include <cstdint>

namespace av::type1 {
namespace {

int column(const ViewLayout& layout, std::int64_t index, std::int64_t lastIndex) {
  return clampToInt(layout.plotLeft + layout.plotWidth * index / lastIndex);
}

Argb lineColour(const ViewSettings& settings, std::size_t channel) { return settings.textAndLineColors[channel + 1]; }

/// Runs the curve flat from its first computed point to the plot's left edge and from its last one to the right edge.
void runFlatToTheEdges(std::span<Point> points, const ViewLayout& layout) {
  points.front() = {layout.plotLeft, points[1].y};
  points.back() = {clampToInt(std::int64_t{layout.plotLeft} + layout.plotWidth), points[points.size() - 2].y};
}

}  // namespace

void addWaveforms(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout) {
  const PlotScale scale(settings, layout);
  if (!scale.showsSamples() || signal.windowSize < 2) return;
  const auto sampleCount = static_cast<std::size_t>(signal.windowSize);
  const double centre = (50.0 - settings.scaleYMin) * scale.height / 100;
  const double halfHeight = scale.height * 0.5;
  for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
    const std::span<const double> samples = signal.analysis[channel];
    if (samples.size() < sampleCount) continue;
    const std::span<Point> points = curves.add(lineColour(settings, channel), sampleCount + 1);
    for (std::size_t i = 0; i < sampleCount; ++i) {
      const double y = (centre - samples[i] * halfHeight / signal.fullScale) * 100 / scale.span + scale.top + 0.5;
      points[i + 1] = {column(layout, static_cast<std::int64_t>(i), signal.windowSize - 1), scale.clampToPlot(y)};
    }
    // The flat end takes the place of the last sample, not the place after it: the picture has always lost that sample.
    runFlatToTheEdges(points, layout);
  }
}

void addLinearSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout) {
  const PlotScale scale(settings, layout);
  const std::int64_t lastBin = std::int64_t{signal.windowSize} / 2 - 1;
  if (!scale.showsLevels() || lastBin < 2) return;
  for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
    const std::span<const double> levels = signal.spectrum(channel, settings);
    if (levels.size() < static_cast<std::size_t>(lastBin)) continue;
    // Bins 1 to lastBin − 1, and a point at either edge.
    const std::span<Point> points = curves.add(lineColour(settings, channel), static_cast<std::size_t>(lastBin) + 1);
    for (std::int64_t k = 1; k < lastBin; ++k) {
      const auto at = static_cast<std::size_t>(k);
      points[at] = {column(layout, k, lastBin), scale.ofLinearLevel(levels[at])};
    }
    runFlatToTheEdges(points, layout);
  }
}

void addOctaveSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout) {
  const PlotScale scale(settings, layout);
  if (!scale.showsLevels() || signal.windowSize < 4) return;
  const OctaveAxis axis(signal.windowSize, layout);
  for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel) {
    const std::span<const double> levels = signal.spectrum(channel, settings);
    if (levels.size() < axis.binEnd()) continue;
    const std::span<Point> points = curves.add(lineColour(settings, channel), axis.binEnd() + 1);
    axis.forEachBin([&](std::size_t bin, int x) { points[bin] = {x, scale.ofOctaveLevel(levels[bin])}; });
    runFlatToTheEdges(points, layout);
  }
}

}  // namespace av::type1
