#include "type3/column_heights.h"

#include "dsp/level_kernel.h"
#include "gfx/saturate.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace av::type3 {
namespace {

/// Writes the levels in dB of amplitudes; anything where an amplitude is not above zero. `kernel` does the logarithms.
void fillLevels(std::span<double> levels, std::span<const double> bands, std::int32_t fftLength,
                const dsp::LevelKernel& kernel) noexcept {
  const double perSample = 1.0 / fftLength;  // lengths are powers of two, or 0: products are the quotients
  for (std::size_t i = 0; i < bands.size(); ++i) levels[i] = static_cast<float>(bands[i] * perSample * 2.0);
  kernel.decibels(levels.data(), bands.size());
  for (double& level : levels.first(bands.size())) {
    const auto logarithm = static_cast<float>(level / 10.0);
    level = 20.0 * static_cast<double>(logarithm);
  }
}

/// Up to the end of a segment that has begun.
int wholeSegments(int heightPx, const AnalyserSettings& settings) noexcept {
  if (settings.spotIntervalPx <= 0) return heightPx;
  const std::int64_t pitch = std::int64_t{settings.spotHeightPx} + settings.spotIntervalPx;
  // Whole numbers below 2^53: the quotient in double precision has the right whole part, and is quicker.
  const auto segments =
      static_cast<std::int64_t>(static_cast<double>(heightPx + pitch - 1) / static_cast<double>(pitch));
  return segments > 0 ? clampToInt(segments * pitch - settings.spotIntervalPx) : 0;
}

/// From levels to heights; see columnHeightPx.
class Heights {
 public:
  Heights(const AnalyserSettings& settings, int areaHeightPx) noexcept
      : m_settings(settings),
        m_bottomDb(-static_cast<double>(settings.scaleYMax)),
        m_topDb(-static_cast<double>(settings.scaleYMin)),
        m_rangeDb(static_cast<double>(settings.scaleYMax) - settings.scaleYMin),
        m_part(settings.alignmentY != 0 ? 0.5 : 1.0),
        m_areaHeightPx(areaHeightPx) {}

  /// Of the band `band`, whose level is `levelDb`; see fillLevels.
  int of(double band, double levelDb) const noexcept {
    if (!(m_rangeDb > 0)) return 0;
    const double level = band > 0 ? levelDb : m_bottomDb;
    const int q = truncToInt((std::clamp(level, m_bottomDb, m_topDb) - m_bottomDb) * m_part);
    return wholeSegments(truncToInt(q / m_rangeDb * m_areaHeightPx), m_settings);
  }

 private:
  const AnalyserSettings& m_settings;
  double m_bottomDb;
  double m_topDb;
  double m_rangeDb;
  double m_part;  ///< of the area's height that a column may take
  int m_areaHeightPx;
};

}  // namespace

int columnHeightPx(double band, const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx) noexcept {
  double level = 0;
  fillLevels({&level, 1}, {&band, 1}, fftLength, *dsp::levelKernels().front());
  return Heights(settings, areaHeightPx).of(band, level);
}

void writeColumnHeights(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                        std::int32_t fftLength, int areaHeightPx, std::uint32_t nowMs) noexcept {
  const Heights heights(settings, areaHeightPx);
  const dsp::LevelKernel& kernel = *dsp::levelKernels().front();
  std::array<double, 64> levels{};
  const std::size_t count = std::min(columns.size(), bands.size());
  for (std::size_t first = 0; first < count; first += levels.size()) {
    const std::span<const double> some = bands.subspan(first, std::min(count - first, levels.size()));
    fillLevels(levels, some, fftLength, kernel);
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
