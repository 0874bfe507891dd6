#pragma once

#include "common/line_list.h"
#include "gfx/argb.h"
#include "type2/settings.h"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

// The bars of the level meter drawn the slow way, pixel by pixel: two images of one line, copied to every line's place.

namespace av::test {

/// Rows of pixels; what is drawn outside is lost.
class PixelGrid {
 public:
  PixelGrid(int width, int height, Argb colour)
      : m_width(width), m_height(height), m_pixels(static_cast<std::size_t>(width * height), colour) {}

  int width() const { return m_width; }
  int height() const { return m_height; }
  Argb at(int x, int y) const { return m_pixels.at(static_cast<std::size_t>(y * m_width + x)); }
  void set(int x, int y, Argb colour) {
    if (x >= 0 && x < m_width && y >= 0 && y < m_height) m_pixels[static_cast<std::size_t>(y * m_width + x)] = colour;
  }
  void fill(int left, int top, int width, int height, Argb colour) {
    for (int y = top; y < top + height; ++y) {
      for (int x = left; x < left + width; ++x) set(x, y, colour);
    }
  }
  /// Rows `fromRow` to `toRow` − 1 of an image, to the same rows of the place (left, top).
  void copy(const PixelGrid& image, int fromRow, int toRow, int left, int top) {
    for (int y = fromRow; y < toRow; ++y) {
      for (int x = 0; x < image.width(); ++x) set(left + x, top + y, image.at(x, y));
    }
  }
  friend bool operator==(const PixelGrid&, const PixelGrid&) = default;

 private:
  int m_width;
  int m_height;
  std::vector<Argb> m_pixels;
};

/// The colour at `part` of `whole` on the straight way from one to another.
inline Argb between(Argb from, Argb to, int part, int whole) {
  const auto channel = [&](int shift) {
    const double a = from >> shift & 0xFF;
    const double b = to >> shift & 0xFF;
    return static_cast<Argb>(std::floor(a + (b - a) * part / whole + 0.5)) << shift;
  };
  return 0xFF000000 | channel(16) | channel(8) | channel(0);
}

/// The image of one line; `mode` as the settings combine it (0 to 3, 8 to 11).
inline PixelGrid segmentImage(const type2::MeterSettings& s, int mode, int w, int h, Argb low, Argb mid, Argb high) {
  PixelGrid image(w, h, s.backColor);
  const int pitch = s.spotHeightPx + s.spotIntervalPx == 0 ? 1 : s.spotHeightPx + s.spotIntervalPx;
  const bool mirrored = mode >= 8;
  int y = mirrored ? ((h - s.spotIntervalPx) / (2 * pitch) + 1) * pitch - s.spotIntervalPx : h;
  const auto segment = [&](auto colourOfRow) {
    for (int row = y - s.spotHeightPx; row < y; ++row) {
      image.fill(0, row, w, 1, colourOfRow(row));
      if (mirrored) image.fill(0, h - 1 - row, w, 1, colourOfRow(row));
    }
    y -= pitch;
  };
  const auto solid = [](Argb colour) { return [colour](int) { return colour; }; };
  const auto gradient = [](int y1, Argb c1, int y2, Argb c2) {
    return [=](int row) {
      if (row <= y2) return c2;
      if (row >= y1) return c1;
      return between(c1, c2, y1 - row, y1 - y2);
    };
  };
  const int M = s.midPointPercent;
  const int H = s.highPointPercent;
  if (mode % 2 == 0) {
    while (y > (100 - M) * h / 100) segment(solid(low));
    while (y > (100 - H) * h / 100) segment(solid(mid));
    while (y > 0) segment(solid(high));
  } else {
    const int b1 = (100 - M / 3) * h / 100;
    const int b2 = (100 - M - (H - M) / 3) * h / 100;
    const int b3 = (100 - M - 2 * (H - M) / 3) * h / 100;
    const int b4 = (100 - H - 2 * (100 - H) / 3) * h / 100;
    while (y > b1) segment(solid(low));
    while (y > b2) segment(gradient(b1 + 1, low, b2 - 1, mid));
    while (y > b3) segment(solid(mid));
    while (y > b4) segment(gradient(b3 + 1, mid, b4, high));
    while (y > 0) segment(solid(high));
  }
  return image;
}

/// The picture of the bars and dots in a control of `width` × `height`, without border.
inline PixelGrid meterBars(const type2::MeterSettings& s, std::span<const LineInfo> lines, int width, int height) {
  PixelGrid picture(width, height, s.backColor);
  const int mode = s.alignmentX * 8 | s.lineType;
  const auto count = static_cast<int>(lines.size());
  const int SI = s.spotIntervalPx;
  const int LI = s.lineInterval;
  const int pitch = s.spotHeightPx + SI == 0 ? 1 : s.spotHeightPx + SI;
  const int Hb = height - 2 * s.borderWidthPx - 2;
  const int w = (width - 2 * s.borderWidthPx - 2 - (count - 1) * LI) / count;
  const int h = (Hb + SI) / pitch * pitch - SI;
  if (w <= 0 || h <= 0) return picture;

  int x0 = s.borderWidthPx + 1;
  int y0 = s.borderWidthPx + 1;
  if (!s.autoSize && s.lineType < 4) {
    x0 = (width + LI - count * (w + LI)) / 2;
    y0 = s.borderWidthPx + 1 + (Hb - h) / 2;
  }
  const PixelGrid unlit = segmentImage(s, mode, w, h, s.backLineLowColor, s.backLineMidColor, s.backLineHighColor);
  const PixelGrid lit = segmentImage(s, mode, w, h, s.lineLowColor, s.lineMidColor, s.lineHighColor);
  const bool mirrored = mode >= 8;
  const bool dots = (mode & 2) != 0;
  // The part of the image that the scale spans: all of it, or the upper half with the segment in the centre.
  const int lowest = mirrored ? ((h - SI) / (2 * pitch) + 1) * pitch - SI : h;
  const double scale = mirrored ? lowest : Hb;
  for (int i = 0; i < count; ++i) {
    const int x = x0 + i * (w + LI);
    picture.copy(unlit, 0, h, x, y0);
    const auto snapped = [&](double level) {
      if (std::isnan(level) || level <= -91) return lowest;
      const double y = scale - (level + 91) * scale / 91;
      const int row = (static_cast<int>(y) + SI) / pitch * pitch;
      return row < 0 ? 0 : row;
    };
    const auto segment = [&](int row) {
      if (row >= lowest) return;
      picture.copy(lit, row, row + s.spotHeightPx, x, y0);
      if (mirrored) picture.copy(lit, h - row - s.spotHeightPx, h - row, x, y0);
    };
    const int row = snapped(lines[static_cast<std::size_t>(i)].value);
    if (dots) {
      segment(row);
    } else if (row < lowest) {
      picture.copy(lit, row, mirrored ? h - row : h, x, y0);
    }
    if (s.tickVisible) segment(snapped(lines[static_cast<std::size_t>(i)].peak));
  }
  return picture;
}

}  // namespace av::test
