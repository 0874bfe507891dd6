#pragma once

#include "gfx/geometry.h"
#include "support/line_oracle.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av::test {

/// A picture in memory; colours are 0xRRGGBB. What lies outside is cut off.
class Canvas {
 public:
  Canvas(int width, int height, std::uint32_t colour)
      : m_width(width), m_height(height), m_pixels(static_cast<std::size_t>(width * height), colour) {}

  void set(int x, int y, std::uint32_t colour) {
    if (x < 0 || y < 0 || x >= m_width || y >= m_height) return;
    m_pixels[static_cast<std::size_t>(y * m_width + x)] = colour;
  }
  void fill(int left, int top, int width, int height, std::uint32_t colour) {
    for (int y = top; y < top + height; ++y)
      for (int x = left; x < left + width; ++x) set(x, y, colour);
  }
  void lines(const std::vector<Point>& points, std::uint32_t colour) {
    forEachLinePixel(points, [&](Point point) { set(point.x, point.y, colour); });
  }
  int width() const { return m_width; }
  int height() const { return m_height; }
  const std::vector<std::uint32_t>& pixels() const { return m_pixels; }

 private:
  int m_width;
  int m_height;
  std::vector<std::uint32_t> m_pixels;
};

}  // namespace av::test
