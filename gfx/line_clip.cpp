#include "gfx/line_clip.h"

#include <algorithm>
#include <cmath>

namespace av {
namespace {

/// The part of a line on one axis, as fractions of its way, that lies from `low` to `high`; empty when begin > end.
struct Stretch {
  double begin = 0;
  double end = 1;

  void keep(double from, double to, double low, double high) noexcept {
    const double way = to - from;
    if (way == 0) {
      if (from < low || from > high) end = -1;
      return;
    }
    const double first = (low - from) / way;
    const double second = (high - from) / way;
    begin = std::max(begin, std::min(first, second));
    end = std::min(end, std::max(first, second));
  }
};

Point pointAt(const LineEnds& line, double fraction) noexcept {
  const double x = line.from.x + (static_cast<double>(line.to.x) - line.from.x) * fraction;
  const double y = line.from.y + (static_cast<double>(line.to.y) - line.from.y) * fraction;
  return {static_cast<int>(std::floor(x + 0.5)), static_cast<int>(std::floor(y + 0.5))};
}

bool liesIn(const Rect& bounds, Point point) noexcept {
  return point.x >= bounds.left && point.x < bounds.right && point.y >= bounds.top && point.y < bounds.bottom;
}

}  // namespace

std::optional<LineEnds> clipLine(const LineEnds& line, const Rect& bounds) noexcept {
  if (bounds.isEmpty()) return std::nullopt;
  const bool fromInside = liesIn(bounds, line.from);
  const bool toInside = liesIn(bounds, line.to);
  if (fromInside && toInside) return line;
  Stretch stretch;
  stretch.keep(line.from.x, line.to.x, bounds.left, bounds.right - 1.0);
  stretch.keep(line.from.y, line.to.y, bounds.top, bounds.bottom - 1.0);
  if (stretch.begin > stretch.end) return std::nullopt;
  return LineEnds{fromInside ? line.from : pointAt(line, stretch.begin),
                  toInside ? line.to : pointAt(line, stretch.end)};
}

bool liesIn(const Rect& bounds, std::span<const Point> points) noexcept {
  return std::ranges::all_of(points, [&](Point point) { return liesIn(bounds, point); });
}

}  // namespace av
