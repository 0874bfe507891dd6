#include "gfx/border.h"

#include <algorithm>
#include <initializer_list>

namespace av {
namespace {

constexpr Argb bevelLight = 0xFF140000;
constexpr Argb bevelDark = 0xFF100000;

void addLine(Polylines& lines, Argb colour, std::initializer_list<Point> points) {
  std::copy(points.begin(), points.end(), lines.add(colour, points.size()).begin());
}

}  // namespace

void addBorder(Polylines& border, std::int32_t borderType, Argb colour, const Rect& client) {
  if (client.isEmpty()) return;
  const Point topLeft{client.left, client.top};
  const Point topRight{client.right - 1, client.top};
  const Point bottomRight{client.right - 1, client.bottom - 1};
  const Point bottomLeft{client.left, client.bottom - 1};
  switch (borderType) {
    case 1: addLine(border, colour, {topRight, bottomRight, bottomLeft, topLeft, topRight}); break;
    case 2:
    case 3: {
      const bool raised = borderType == 2;
      addLine(border, raised ? bevelLight : bevelDark, {topRight, bottomRight, bottomLeft});
      addLine(border, raised ? bevelDark : bevelLight, {bottomLeft, topLeft, topRight});
      break;
    }
    default: break;
  }
}

}  // namespace av
