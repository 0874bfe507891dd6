#include "type3/column_heights.h"

#include "dsp/level_kernel.h"
#include "gfx/saturate.h"
#include "simd/decibels.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace av::type3 {
namespace {

/// What a level is the logarithm of.
double relativeAmplitude(double band, std::int32_t fftLength) noexcept {
  return static_cast<float>(band / fftLength * 2.0);
}

/// The level of a relative amplitude that is so many decibels of power.
double levelDb(double decibels) noexcept {
  const auto logarithm = static_cast<float>(decibels / 10.0);
  return 20.0 * static_cast<double>(logarithm);
}

/// Up to the end of a segment that has begun.
int wholeSegments(int heightPx, const AnalyserSettings& settings) noexcept {
  if (settings.spotIntervalPx <= 0) return heightPx;
  const std::int64_t pitch = std::int64_t{settings.spotHeightPx} + settings.spotIntervalPx;
  const std::int64_t segments = (heightPx + pitch - 1) / pitch;
  return segments > 0 ? clampToInt(segments * pitch - settings.spotIntervalPx) : 0;
}

/// The height of a level on the way from amplitudes to heights; see columnHeightPx.
class Heights {
 public:
  Heights(const AnalyserSettings& settings, int areaHeightPx) noexcept
      : m_settings(settings),
        m_bottomDb(-static_cast<double>(settings.scaleYMax)),
        m_topDb(-static_cast<double>(settings.scaleYMin)),
        m_rangeDb(static_cast<double>(settings.scaleYMax) - settings.scaleYMin),
        m_areaHeightPx(areaHeightPx) {}

  /// `decibels`: of the band's relative amplitude, or anything where the band is not above zero.
  int of(double band, double decibels) const noexcept {
    if (!(m_rangeDb > 0)) return 0;
    const double level = band > 0 ? levelDb(decibels) : m_bottomDb;
    const int halves = m_settings.alignmentY != 0 ? 2 : 1;
    const int q = truncToInt((std::clamp(level, m_bottomDb, m_topDb) - m_bottomDb) / halves);
    return wholeSegments(truncToInt(q / m_rangeDb * m_areaHeightPx), m_settings);
  }

 private:
  const AnalyserSettings& m_settings;
  double m_bottomDb;
  double m_topDb;
  double m_rangeDb;
  int m_areaHeightPx;
};

}  // namespace

int columnHeightPx(double band, const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx) noexcept {
  return Heights(settings, areaHeightPx).of(band, decibels(relativeAmplitude(band, fftLength)));
}

void writeColumnHeights(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                        std::int32_t fftLength, int areaHeightPx, std::uint32_t nowMs) noexcept {
  const Heights heights(settings, areaHeightPx);
  const dsp::LevelKernel& kernel = *dsp::levelKernels().front();
  std::array<double, 64> levels;
  const std::size_t count = std::min(columns.size(), bands.size());
  for (std::size_t first = 0; first < count; first += levels.size()) {
    const std::span<const double> some = bands.subspan(first, std::min(count - first, levels.size()));
    for (std::size_t i = 0; i < some.size(); ++i) levels[i] = relativeAmplitude(some[i], fftLength);
    kernel.decibels(levels.data(), some.size());
    for (std::size_t i = 0; i < some.size(); ++i) writeLine(columns[first + i], heights.of(some[i], levels[i]), nowMs);
  }
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
