#include "type3/column_heights.h"

#include <algorithm>
#include <cstddef>

namespace av::type3 {
namespace {

/// Heights of some amplitudes in place, `count` ones.
class Heights {
 public:
  Heights(const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx,
          const ColumnKernel& kernel) noexcept
      : m_kernel(kernel),
        m_scale{.perSample = 1.0 / fftLength,
                .bottomDb = -static_cast<double>(settings.scaleYMax),
                .topDb = -static_cast<double>(settings.scaleYMin),
                .part = settings.alignmentY != 0 ? 0.5 : 1.0,
                .areaHeightPx = static_cast<double>(areaHeightPx),
                .pitchPx = static_cast<double>(settings.spotHeightPx) + settings.spotIntervalPx,
                .intervalPx = static_cast<double>(settings.spotIntervalPx)} {}

  void of(ColumnValues& amplitudes, std::size_t count) const noexcept {
    if (m_scale.topDb > m_scale.bottomDb) {
      m_kernel.heights(amplitudes.data(), count, m_scale);
    } else {
      amplitudes.fill(0.0);
    }
  }

 private:
  const ColumnKernel& m_kernel;
  HeightScale m_scale;
};

}  // namespace

int columnHeightPx(double band, const AnalyserSettings& settings, std::int32_t fftLength, int areaHeightPx,
                   const ColumnKernel& kernel) noexcept {
  ColumnValues values{band};
  Heights(settings, fftLength, areaHeightPx, kernel).of(values, 1);
  return static_cast<int>(values[0]);
}

void writeColumnHeights(std::span<LineInfo> columns, std::span<const double> bands, const AnalyserSettings& settings,
                        std::int32_t fftLength, int areaHeightPx, std::uint32_t nowMs) noexcept {
  const Heights heights(settings, fftLength, areaHeightPx, *columnKernels().front());
  ColumnValues values;
  const std::size_t count = std::min(columns.size(), bands.size());
  for (std::size_t first = 0; first < count; first += values.size()) {
    const std::size_t some = std::min(count - first, values.size());
    std::copy_n(bands.begin() + static_cast<std::ptrdiff_t>(first), some, values.begin());
    std::fill(values.begin() + static_cast<std::ptrdiff_t>(some), values.end(), 0.0);
    heights.of(values, some);
    for (std::size_t i = 0; i < some; ++i) writeLine(columns[first + i], values[i], nowMs);
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
