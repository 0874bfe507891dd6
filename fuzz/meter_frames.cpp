// The level meter's geometry, segment colours and frame: any settings, size and lines; small frames are painted too.

#include "fuzz/check.h"
#include "fuzz/frame_input.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "gfx/pixels.h"
#include "type2/frame.h"
#include "type2/segments.h"

#include <cmath>
#include <vector>

namespace av::fuzz {
namespace {

using type2::MeterFrame;
using type2::MeterGeometry;
using type2::MeterSettings;

std::vector<LineInfo> anyLines(Input& input, int count) {
  static constexpr double oddities[] = {-91, 0, NAN, INFINITY, -INFINITY, 6, -90.999, -1e300, 1e300};
  std::vector<LineInfo> lines(static_cast<std::size_t>(count));
  std::uint32_t state = input.ConsumeIntegral<std::uint32_t>();
  const bool odd = input.ConsumeIntegralInRange<int>(0, 3) == 0;
  for (LineInfo& line : lines) {
    state = state * 1664525u + 1013904223u;
    line.value = odd ? oddities[(state >> 16) % std::size(oddities)] : -static_cast<double>(state >> 16) / 600;
    line.peak = odd ? oddities[(state >> 20) % std::size(oddities)] : line.value + static_cast<double>(state % 10);
  }
  return lines;
}

void checkGeometry(const MeterGeometry& geometry, const MeterSettings& settings, int lineCount) {
  require(geometry.lineCount == std::max(lineCount, 3), "there are three lines at least");
  require(geometry.pitchPx >= 1, "segments step by a pixel at least");
  if (!geometry.hasBars()) return;
  require(geometry.imageHeightPx <= geometry.inner.height(), "bars are no higher than the inner area");
  const std::int64_t width =
      std::int64_t{geometry.lineCount} * geometry.lineStepPx - std::int64_t{settings.lineInterval};
  require(width <= geometry.inner.width(), "all bars together are no wider than the inner area");
  require(geometry.barsOrigin.x >= geometry.inner.left && geometry.barsOrigin.y >= geometry.inner.top &&
              geometry.barsOrigin.x + width <= geometry.inner.right &&
              geometry.barsOrigin.y + geometry.imageHeightPx <= geometry.inner.bottom,
          "the bars stand in the inner area");
}

void checkFrame(const MeterFrame& frame, const MeterGeometry& geometry, const type2::SegmentColumns& columns) {
  for (const Point& point : frame.border.points) require(isOn(point, geometry.client), "the border lies on the edge");
  for (const ColumnFill& fill : frame.segments) {
    const auto rows = static_cast<int>(columns[fill.column].size());
    require(fill.firstRow >= 0 && fill.firstRow + fill.rect.height() <= rows, "fills stay in their column");
    require(fill.rect.height() >= 0 && fill.rect.width() == geometry.lineWidthPx, "a fill is as wide as its line");
    require(isInside(fill.rect, geometry.inner), "bars stay in the inner area");
    require(fill.rect.top - fill.firstRow == geometry.barsOrigin.y, "segments keep the colour of their height");
  }
  for (const Point& point : frame.graphs.points) require(isOn(point, geometry.inner), "graphs stay in the inner area");
  std::size_t points = 0;
  for (const Polyline& line : frame.graphs.lines) {
    require(line.firstPoint == points && line.pointCount >= 2, "graphs share the points out");
    require(line.widthPx >= 1, "a pen is a pixel wide at least");
    points += line.pointCount;
  }
  require(points == frame.graphs.points.size(), "every point belongs to a graph");
}

/// Fills go where their rectangles are, and nowhere else.
void paint(const MeterFrame& frame, const type2::SegmentColumns& columns, Size size) {
  constexpr Argb untouched = 0x12345678;
  std::vector<Argb> all(static_cast<std::size_t>(size.widthPx) * static_cast<std::size_t>(size.heightPx), untouched);
  const Pixels pixels{all, size};
  for (const ColumnFill& fill : frame.segments) fillFromColumn(pixels, fill, columns[fill.column]);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const int x = static_cast<int>(i) % size.widthPx;
    const int y = static_cast<int>(i) / size.widthPx;
    Argb expected = untouched;
    for (const ColumnFill& fill : frame.segments) {
      const bool hit = x >= fill.rect.left && x < fill.rect.right && y >= fill.rect.top && y < fill.rect.bottom;
      if (hit) expected = columns[fill.column][static_cast<std::size_t>(fill.firstRow + y - fill.rect.top)];
    }
    require(all[i] == expected, "a pixel has the colour of the last fill over it");
  }
}

}  // namespace

void meterFrames(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  MeterSettings settings;
  if (input.ConsumeBool()) settings.lineType = input.ConsumeIntegralInRange<int>(0, 7);
  if (input.ConsumeBool()) settings.alignmentX = input.ConsumeIntegralInRange<int>(0, 1);
  putAnyProperties(input, settings, meterRows, 10);
  const int lineCount = input.ConsumeIntegralInRange<int>(0, 30) == 0 ? input.ConsumeIntegralInRange<int>(0, 48000)
                                                                      : input.ConsumeIntegralInRange<int>(0, 60);
  const Size size{anySide(input), anySide(input)};
  const Rect client{0, 0, size.widthPx, size.heightPx};
  const MeterGeometry geometry = type2::computeGeometry(settings, lineCount, client);
  checkGeometry(geometry, settings, lineCount);
  const Size snapped = type2::snappedSize(settings, lineCount, size);
  const bool isASize = snapped.widthPx >= 0 && snapped.heightPx >= 0 && snapped.widthPx <= longestSidePx &&
                       snapped.heightPx <= longestSidePx;
  if (isASize) require(type2::snappedSize(settings, lineCount, snapped) == snapped, "a snapped size snaps to itself");

  type2::SegmentColumns columns;
  type2::fillSegmentColumns(columns, settings, geometry);
  require(columns.unlit.size() == columns.lit.size(), "lit and unlit bars are equally high");
  const auto lines = anyLines(input, std::max(lineCount + input.ConsumeIntegralInRange<int>(-1, 1), 0));
  const bool hasData = input.ConsumeIntegralInRange<int>(0, 9) != 0;
  MeterFrame frame;
  type2::buildFrame(frame, settings, geometry, lines, hasData);
  require(hasData || (frame.segments.empty() && frame.graphs.lines.empty()), "without data there are no lines");
  checkFrame(frame, geometry, columns);
  const MeterFrame first = frame;
  type2::buildFrame(frame, settings, geometry, lines, hasData);
  require(first.border == frame.border && first.segments == frame.segments && first.graphs == frame.graphs,
          "the same values make the same frame");
  if (size.widthPx * size.heightPx <= 1600 && frame.segments.size() <= 40) paint(frame, columns, size);
}

}  // namespace av::fuzz
