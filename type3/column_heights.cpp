#include "type3/column_heights.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace av::type3 {
namespace {

double levelDb(double band, std::int32_t fftLength) noexcept {
  const auto relative = static_cast<float>(band / fftLength * 2.0);
  const auto logarithm = static_cast<float>(std::log10(static_cast<double>(relative)));
  return 20.0 * static_cast<double>(logarithm);
}

/// Up to the end of a segment that has begun.
int wholeSegments(int heightPx, const AnalyserSettings& settings) noexcept {
  if (settings.spotIntervalPx <= 0) return heightPx;
  const std::int64_t pitch = std::int64_t{settings.spotHeightPx} + settings.spotIntervalPx;
  const std::int64_t segments = (heightPx + pitch - 1) / pitch;
  return segments > 0 ? clampToInt(segments * pitch - settings.spotIntervalPx) : 0;
}

}  // namespace

int columnHeightPx(double band, const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx) noexcept {
  const double topDb = -static_cast<double>(settings.scaleYMin);
  const double bottomDb = -static_cast<double>(settings.scaleYMax);
  const double rangeDb = static_cast<double>(settings.scaleYMax) - settings.scaleYMin;
  if (!(rangeDb > 0)) return 0;
  const double level = band > 0 ? levelDb(band, fftLength) : bottomDb;
  const int halves = settings.alignmentY != 0 ? 2 : 1;
  const int q = truncToInt((std::clamp(level, bottomDb, topDb) - bottomDb) / halves);
  return wholeSegments(truncToInt(q / rangeDb * areaHeightPx), settings);
}

void writeColumnHeights(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                        std::int32_t fftLength, int areaHeightPx, std::uint32_t nowMs) noexcept {
  for (std::size_t i = 0; i < std::min(columns.size(), bands.size()); ++i)
    writeLine(columns[i], columnHeightPx(bands[i], settings, fftLength, areaHeightPx), nowMs);
}

void moveColumns(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                 std::int32_t fftLength, int fromHeightPx, int toHeightPx) noexcept {
  scaleColumns(columns, fromHeightPx, toHeightPx);
  for (std::size_t i = 0; i < std::min(columns.size(), bands.size()); ++i) {
    LineInfo& column = columns[i];
    const bool peakStandsOnColumn = column.peak <= column.value;
    column.value = columnHeightPx(bands[i], settings, fftLength, toHeightPx);
    // Whole segments are not in proportion to the area: a scaled peak would leave its column by up to one.
    column.peak = peakStandsOnColumn ? column.value : std::max(column.peak, column.value);
  }
}

void scaleColumns(std::span<LineInfo> columns, int fromHeightPx, int toHeightPx) noexcept {
  if (fromHeightPx <= 0) return;
  for (LineInfo& column : columns) {
    column.value = column.value * toHeightPx / fromHeightPx;
    column.peak = column.peak * toHeightPx / fromHeightPx;
  }
}

}  // namespace av::type3
