#include "type2/segments.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace av::type2 {
namespace {

/// Each channel as far on the way from `from` to `to` as `part` of `whole`, rounded to the nearest number.
Argb mixed(Argb from, Argb to, int part, int whole) noexcept {
  Argb result = opaqueBlack;
  for (const int shift : {0, 8, 16}) {
    const std::int64_t a = from >> shift & 0xFF;
    const std::int64_t b = to >> shift & 0xFF;
    result |= static_cast<Argb>((a * (whole - part) + b * part + whole / 2) / whole) << shift;
  }
  return result;
}

/// From row `from` up to row `to`, which lies above it.
struct Gradient {
  int from;
  int to;
  Argb fromColour;
  Argb toColour;

  Argb at(int row) const noexcept {
    const int whole = from - to;
    if (whole <= 0) return toColour;  // no way to go: equal ends have no gradient
    return mixed(fromColour, toColour, std::clamp(from - row, 0, whole), whole);
  }
};

/// Which colour a row has in the segment whose bottom edge is at y.
class Zones {
 public:
  Zones(const MeterSettings& settings, const ZoneColours& colours, int heightPx, bool gradients) noexcept
      : m_colours(colours) {
    const int mid = settings.midPointPercent;
    const int high = settings.highPointPercent;
    const auto limit = [heightPx](int percent) { return static_cast<int>(std::int64_t{percent} * heightPx / 100); };
    if (gradients) {
      m_limits[0] = limit(100 - mid / 3);
      m_limits[1] = limit(100 - mid - (high - mid) / 3);
      m_limits[2] = limit(100 - mid - 2 * (high - mid) / 3);
      m_limits[3] = limit(100 - high - 2 * (100 - high) / 3);
    } else {
      m_limits[0] = m_limits[1] = limit(100 - mid);
      m_limits[2] = m_limits[3] = limit(100 - high);
    }
  }

  Argb at(int y, int row) const noexcept {
    if (y > m_limits[0]) return m_colours.low;
    if (y > m_limits[1]) return Gradient{m_limits[0] + 1, m_limits[1] - 1, m_colours.low, m_colours.mid}.at(row);
    if (y > m_limits[2]) return m_colours.mid;
    if (y > m_limits[3]) return Gradient{m_limits[2] + 1, m_limits[3], m_colours.mid, m_colours.high}.at(row);
    return m_colours.high;
  }

 private:
  ZoneColours m_colours;
  int m_limits[4] = {};
};

}  // namespace

void fillSegmentColumn(SegmentColumn& column, const MeterSettings& settings, const MeterGeometry& geometry,
                       const ZoneColours& zones) {
  column.clear();
  const auto mode = drawMode(settings);
  if (!mode || mode->isGraph() || !geometry.hasBars()) return;
  const int height = geometry.imageHeightPx;
  column.resize(static_cast<std::size_t>(height), settings.backColor);
  const Zones colours(settings, zones, height, mode->gradients);
  for (int y = mode->mirrored ? upperHalfPx(geometry) : height; y > 0; y -= geometry.pitchPx) {
    for (int row = y - geometry.segmentPx; row < y; ++row) {
      column[static_cast<std::size_t>(row)] = colours.at(y, row);
      if (mode->mirrored) column[static_cast<std::size_t>(height - 1 - row)] = colours.at(y, row);
    }
  }
}

void fillSegmentColumns(SegmentColumns& columns, const MeterSettings& settings, const MeterGeometry& geometry) {
  fillSegmentColumn(columns.unlit, settings, geometry,
                    {settings.backLineLowColor, settings.backLineMidColor, settings.backLineHighColor});
  fillSegmentColumn(columns.lit, settings, geometry,
                    {settings.lineLowColor, settings.lineMidColor, settings.lineHighColor});
}

}  // namespace av::type2
