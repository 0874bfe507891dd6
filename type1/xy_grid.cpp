#include "type1/xy_grid.h"

#include <algorithm>
#include <cmath>

namespace av::type1 {
namespace {

constexpr int divisionCount = 10;
constexpr int marginPx = 5;
constexpr int heightPx = 10;
constexpr int tickTopPx = 7;  // below the frame's top

}  // namespace

XyFrame::XyFrame(const ViewLayout& layout)
    : left(layout.plotLeft + marginPx),
      top(layout.plotTop + layout.plotHeight - xyFrameRoomPx),
      right(layout.plotLeft + layout.plotWidth - marginPx),
      bottom(top + heightPx),
      divisionPx((layout.plotWidth - 2 * marginPx) / divisionCount) {}

int XyFrame::columnOf(double value) const {
  const double place = (std::clamp(value, -1.0, 1.0) + 1) * (divisionCount / 2);
  const int division = std::min(static_cast<int>(place), divisionCount - 1);
  const int from = left + division * divisionPx;
  const int to = division == divisionCount - 1 ? right : from + divisionPx;
  return from + static_cast<int>(std::lround((place - division) * (to - from)));
}

void addXyGrid(std::vector<LineSegment>& grid, Argb colour, const ViewLayout& layout) {
  // Cut toward zero as whole numbers, also where the plot is lower than the frame.
  const int halfWidth = layout.plotWidth / 2;
  const int halfHeight = (layout.plotHeight - xyFrameRoomPx) / 2;
  const int radius = std::min(halfWidth, halfHeight) - 10;
  const Point centre{layout.plotLeft + halfWidth, layout.plotTop + halfHeight};
  const auto addSpoke = [&](int x, int y) {
    grid.push_back({{centre.x - x, centre.y - y}, {centre.x + x, centre.y + y}, colour});
  };
  addSpoke(radius, 0);
  addSpoke(0, radius);
  addSpoke(radius, -radius);
  addSpoke(-radius, -radius);

  const XyFrame frame(layout);
  if (!frame.hasWidth()) return;
  const Point corners[] = {
      {frame.left, frame.top}, {frame.right, frame.top}, {frame.right, frame.bottom}, {frame.left, frame.bottom}};
  for (int i = 0; i < 4; ++i) grid.push_back({corners[i], corners[(i + 1) % 4], colour});
  for (int k = 1; k < divisionCount; ++k) {
    const int x = frame.tickColumn(k);
    grid.push_back({{x, frame.top + tickTopPx}, {x, frame.bottom}, colour});
  }
}

}  // namespace av::type1
