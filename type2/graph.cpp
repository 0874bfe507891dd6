#include "type2/graph.h"

#include "gfx/saturate.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace av::type2 {
namespace {

/// The level as the graph shows it; no number is as low as nothing.
double shownLevel(double levelDb) noexcept { return levelDb > -levelRangeDb ? std::min(levelDb, 0.0) : -levelRangeDb; }

/// Slope in a point between two chords of equal length: 0 at peaks and valleys, otherwise the harmonic mean of the
/// chords' slopes, which keeps the cubics on both sides monotone.
double slopeBetween(double left, double right) noexcept {
  return left * right > 0 ? 2 * left * right / (left + right) : 0.0;
}

/// The cubic from `from` to `to` with these slopes, at `t` from 0 to 1.
double cubic(double from, double to, double fromSlope, double toSlope, double t) noexcept {
  const double chord = to - from;
  const double c2 = 3 * chord - 2 * fromSlope - toSlope;
  const double c3 = fromSlope + toSlope - 2 * chord;
  // Its own rounding must not carry it past the neighbours either.
  return std::clamp(from + t * (fromSlope + t * (c2 + t * c3)), std::min(from, to), std::max(from, to));
}

/// The levels of one polyline and the points between them.
template <class LevelOf>
class Curve {
 public:
  Curve(LevelOf levelOf, std::size_t count) noexcept : m_levelOf(levelOf), m_count(count) {}

  double level(std::size_t i) const noexcept { return shownLevel(m_levelOf(i)); }

  /// The level at `t` (0 to 1) of the way from point i to the next one.
  double between(std::size_t i, double t) const noexcept {
    return cubic(level(i), level(i + 1), slope(i), slope(i + 1), t);
  }

 private:
  double chord(std::size_t i) const noexcept { return level(i + 1) - level(i); }
  double slope(std::size_t i) const noexcept {
    if (i == 0) return chord(0);
    if (i + 1 == m_count) return chord(i - 1);
    return slopeBetween(chord(i - 1), chord(i));
  }

  LevelOf m_levelOf;
  std::size_t m_count;
};

/// Where levels stand in the picture.
struct Scale {
  double left;
  double step;
  double baseline;
  double height;  ///< negative downward

  Point at(double position, double levelDb) const noexcept {
    return {truncToInt(position * step + left),
            truncToInt(baseline - (levelDb + levelRangeDb) * height / levelRangeDb)};
  }
};

/// Points between two lines of the smoothed graph: as many as pixels, none for fewer than three.
std::size_t insertedPoints(const MeterGeometry& geometry) noexcept {
  // Gaps that leave no room for lines give a step that is no distance in the picture.
  const int stepPx = std::min(geometry.lineStepPx, truncToInt(geometry.graphStepPx()));
  return stepPx >= 3 ? static_cast<std::size_t>(stepPx) : 0;
}

/// Of points one above the other in a row, only the first, the highest, the lowest and the last one leave something that
/// the others do not: a graph costs no more than its pixels, however many lines there are. Returns how many are left.
std::size_t dropHiddenPoints(std::span<Point> points) noexcept {
  std::size_t kept = 0;
  for (std::size_t begin = 0, end = 0; begin < points.size(); begin = end) {
    while (end < points.size() && points[end].x == points[begin].x) ++end;
    const std::span<const Point> column = points.subspan(begin, end - begin);
    if (column.size() > 4) {
      const auto [highest, lowest] = std::ranges::minmax(column, {}, &Point::y);
      for (const Point point : {column.front(), highest, lowest, column.back()}) points[kept++] = point;
    } else {
      for (const Point point : column) points[kept++] = point;
    }
  }
  return kept;
}

/// One polyline through `count` levels, with `inserted` points between any two.
template <class LevelOf>
void addPolyline(Polylines& graphs, Argb colour, int widthPx, const Scale& scale, std::size_t count,
                 std::size_t inserted, LevelOf levelOf) {
  const Curve curve(levelOf, count);
  const std::span<Point> points = graphs.add(colour, count + (count - 1) * inserted, widthPx);
  auto point = points.begin();
  for (std::size_t i = 0; i < count; ++i) {
    *point++ = scale.at(static_cast<double>(i), curve.level(i));
    if (i + 1 == count) break;
    for (std::size_t k = 1; k <= inserted; ++k) {
      const double t = static_cast<double>(k) / static_cast<double>(inserted + 1);
      *point++ = scale.at(static_cast<double>(i) + t, curve.between(i, t));
    }
  }
  Polyline& line = graphs.lines.back();
  line.pointCount = dropHiddenPoints(points);
  graphs.points.resize(line.firstPoint + line.pointCount);
}

}  // namespace

void addGraph(Polylines& graphs, const MeterSettings& settings, const DrawMode& mode, const MeterGeometry& geometry,
              std::span<const LineInfo> lines) {
  const std::size_t count = std::min(lines.size(), static_cast<std::size_t>(geometry.lineCount));
  if (geometry.inner.isEmpty() || count < 2) return;
  const std::size_t inserted = mode.kind == DrawMode::Kind::smoothedGraph ? insertedPoints(geometry) : 0;
  // Wider pens cover the client rectangle from any point in it, at a cost that grows with their width.
  const int widestPenPx = 2 * (geometry.client.width() + geometry.client.height());
  const int widthPx = std::clamp(settings.spotHeightPx, 1, std::max(widestPenPx, 1));

  const double height = geometry.barHeightPx();
  const auto add = [&](double baseline, double signedHeight) {
    const Scale scale{static_cast<double>(geometry.inner.left), geometry.graphStepPx(), baseline, signedHeight};
    if (settings.tickVisible != 0)
      addPolyline(graphs, settings.lineHighColor, widthPx, scale, count, inserted,
                  [lines](std::size_t i) { return lines[i].peak; });
    addPolyline(graphs, settings.lineLowColor, widthPx, scale, count, inserted,
                [lines](std::size_t i) { return lines[i].value; });
  };
  if (mode.mirrored) {
    const double centre = geometry.inner.top + height / 2;
    add(centre, height / 2);
    add(centre, -height / 2);
  } else {
    add(geometry.inner.bottom, height);
  }
}

}  // namespace av::type2
