#include "type1/xy_view.h"

#include "gfx/saturate.h"
#include "type1/balance_colour.h"
#include "type1/channel_pairs.h"
#include "type1/xy_grid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace av::type1 {
namespace {

/// A pair of samples on the axes of the view: side to the right, middle downwards; full scale is 1.
struct XyPoint {
  double u;
  double v;

  XyPoint(double left, double right, double fullScale)
      : u((right - left) / (2 * fullScale)), v(-(left + right) / (2 * fullScale)) {}
};

/// Where the curves lie in the plot. Halves are whole numbers, cut toward zero also where the plot is lower than the frame
/// under it.
class XyPlane {
 public:
  explicit XyPlane(const ViewLayout& layout) {
    const int halfWidth = layout.plotWidth / 2;
    const int halfHeight = (layout.plotHeight - xyFrameRoomPx) / 2;
    m_centre = {layout.plotLeft + halfWidth, layout.plotTop + halfHeight};
    m_radius = std::max(halfWidth, halfHeight) - 10;
  }

  Point centre() const { return m_centre; }
  Point at(const XyPoint& point) const {
    return {clampToInt(std::int64_t{m_centre.x} + truncToInt(point.u * m_radius + 0.5)),
            clampToInt(std::int64_t{m_centre.y} + truncToInt(point.v * m_radius + 0.5))};
  }

 private:
  Point m_centre;
  double m_radius;
};

/// From −1 (the channels are opposite) to 1 (they are equal); 0 in silence.
double balanceOf(const XyPoint& point, double fullScale) {
  const double side = 2 * point.u * point.u * fullScale;
  const double middle = 2 * point.v * point.v * fullScale;
  return side + middle == 0 ? 0 : (middle - side) / (side + middle);
}

}  // namespace

void addXyCurves(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout) {
  if (!(signal.fullScale > 0)) return;
  const XyPlane plane(layout);
  for (std::size_t pair = 0; pair < pairCount(signal); ++pair) {
    const PairSamples samples(signal, pair);
    if (samples.isEmpty()) continue;
    const std::span<Point> points = curves.add(pairColour(settings, pair), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
      points[i] = plane.at(XyPoint(samples.left[i], samples.right[i], signal.fullScale));
    }
  }
}

void addBalanceCurves(std::vector<LineSegment>& segments, const ViewSignal& signal, const ViewLayout& layout) {
  if (!(signal.fullScale > 0)) return;
  const XyPlane plane(layout);
  for (std::size_t pair = 0; pair < pairCount(signal); ++pair) {
    const PairSamples samples(signal, pair);
    const std::size_t first = segments.size();
    segments.resize(first + samples.size());
    Point from = plane.centre();
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const XyPoint point(samples.left[i], samples.right[i], signal.fullScale);
      const Point to = plane.at(point);
      segments[first + i] = {from, to, balanceColour(balanceOf(point, signal.fullScale))};
      from = to;
    }
  }
}

}  // namespace av::type1
