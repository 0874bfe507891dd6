#include "type2/bars.h"

#include "gfx/saturate.h"
#include "type2/segments.h"

#include <algorithm>
#include <cstddef>

namespace av::type2 {
namespace {

/// The bars of one frame: a line after the other.
class Bars {
 public:
  Bars(std::vector<ColumnFill>& segments, const DrawMode& mode, const MeterGeometry& geometry) noexcept
      : m_segments(segments),
        m_geometry(geometry),
        m_mode(mode),
        m_lowest(mode.mirrored ? upperHalfPx(geometry) : geometry.imageHeightPx),
        m_scalePx(mode.mirrored ? m_lowest : geometry.barHeightPx()) {}

  void add(int line, double levelDb, double peakDb, bool tick) {
    m_left = m_geometry.barsOrigin.x + line * m_geometry.lineStepPx;
    fill(unlitColumn, 0, m_geometry.imageHeightPx);
    addLevel(rowOf(levelDb));
    if (tick) addSegment(rowOf(peakDb));
  }

 private:
  /// The top row of the segment at a level; `m_lowest` or more where none is lit.
  int rowOf(double levelDb) const noexcept {
    if (!(levelDb > -levelRangeDb)) return m_lowest;
    const int y = truncToInt(m_scalePx - (levelDb + levelRangeDb) * m_scalePx / levelRangeDb);
    const std::int64_t row = (std::int64_t{y} + m_geometry.gapPx) / m_geometry.pitchPx * m_geometry.pitchPx;
    return clampToInt(std::max<std::int64_t>(row, 0));
  }

  void addLevel(int row) {
    if (m_mode.kind == DrawMode::Kind::dots) return addSegment(row);
    if (row >= m_lowest) return;
    const int end = m_mode.mirrored ? m_geometry.imageHeightPx - row : m_geometry.imageHeightPx;
    fill(litColumn, row, end);
  }

  void addSegment(int row) {
    if (row >= m_lowest) return;
    const int end = row + m_geometry.segmentPx;
    fill(litColumn, row, end);
    const int reflectedEnd = m_geometry.imageHeightPx - row;
    if (m_mode.mirrored && reflectedEnd != end) fill(litColumn, reflectedEnd - m_geometry.segmentPx, reflectedEnd);
  }

  void fill(SegmentColumnId column, int firstRow, int endRow) {
    const int top = m_geometry.barsOrigin.y;
    m_segments.push_back({column, firstRow, {m_left, top + firstRow, m_left + m_geometry.lineWidthPx, top + endRow}});
  }

  std::vector<ColumnFill>& m_segments;
  const MeterGeometry& m_geometry;
  const DrawMode m_mode;
  const int m_lowest;      // bottom edge of the lowest segment that a level can light
  const double m_scalePx;  // height of the scale
  int m_left = 0;
};

}  // namespace

void addBars(std::vector<ColumnFill>& segments, const MeterSettings& settings, const DrawMode& mode,
             const MeterGeometry& geometry, std::span<const LineInfo> lines) {
  if (!geometry.hasBars()) return;
  Bars bars(segments, mode, geometry);
  const auto count = std::min(lines.size(), static_cast<std::size_t>(geometry.lineCount));
  for (std::size_t i = 0; i < count; ++i)
    bars.add(static_cast<int>(i), lines[i].value, lines[i].peak, settings.tickVisible != 0);
}

}  // namespace av::type2
