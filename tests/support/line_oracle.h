#pragma once

#include "gfx/geometry.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <span>

namespace av::test {

/// The pixels of a connected one-pixel line without smoothing, as GDI+ of this test environment sets them: both end
/// points belong to it, one pixel a step of the longer axis (the vertical one when both are equal), the other
/// coordinate rounded half up. Found by comparison with 1,200 random lines.
inline void forEachLinePixel(std::span<const Point> points, const std::function<void(Point)>& set) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    const Point from = points[i - 1];
    const Point to = points[i];
    const std::int64_t dx = to.x - from.x;
    const std::int64_t dy = to.y - from.y;
    if (dx == 0 && dy == 0) continue;
    const std::int64_t steps = std::max(std::llabs(dx), std::llabs(dy));
    // floor(v + 1/2) of v = start + step·delta ÷ steps, exactly.
    const auto rounded = [&](std::int64_t start, std::int64_t delta, std::int64_t step) {
      const std::int64_t doubled = 2 * step * delta + steps;
      const std::int64_t whole = doubled >= 0 ? doubled / (2 * steps) : -((-doubled + 2 * steps - 1) / (2 * steps));
      return static_cast<int>(start + whole);
    };
    for (std::int64_t step = 0; step <= steps; ++step) {
      set({rounded(from.x, dx, step), rounded(from.y, dy, step)});
    }
  }
}

}  // namespace av::test
