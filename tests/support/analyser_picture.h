#pragma once

#include "common/line_list.h"
#include "support/line_oracle.h"
#include "type3/settings.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The spectrum analyser drawn the slow way: two bitmaps painted call by call, and copied column by column with the
// clipping that bitmaps have. Colours are GDI colour values (0x00BBGGRR).

namespace av::test {

class Bitmap {
 public:
  using Colour = std::uint32_t;

  Bitmap(int width, int height, Colour colour = 0) : m_width(width < 0 ? 0 : width), m_height(height < 0 ? 0 : height) {
    m_pixels.assign(static_cast<std::size_t>(m_width * m_height), colour);
  }

  int width() const { return m_width; }
  int height() const { return m_height; }
  bool has(int x, int y) const { return x >= 0 && x < m_width && y >= 0 && y < m_height; }
  Colour at(int x, int y) const { return m_pixels.at(static_cast<std::size_t>(y * m_width + x)); }
  void set(int x, int y, Colour colour) {
    if (has(x, y)) m_pixels[static_cast<std::size_t>(y * m_width + x)] = colour;
  }

  /// Fills what lies inside; nothing where right or bottom come before left or top.
  void fill(int left, int top, int right, int bottom, Colour colour) {
    for (int y = top < 0 ? 0 : top; y < bottom && y < m_height; ++y)
      for (int x = left < 0 ? 0 : left; x < right && x < m_width; ++x) set(x, y, colour);
  }

  /// A vertical rectangle gradient with channels of 16 bits.
  void gradient(int left, int top, int right, int bottom, Colour from, Colour to) {
    for (int y = top; y < bottom; ++y) {
      Colour colour = 0;
      for (int shift = 0; shift < 24; shift += 8) {
        const double a = (from >> shift & 0xFF) * 256.0;
        const double b = (to >> shift & 0xFF) * 256.0;
        const double exact = a + (b - a) * (y - top) / (bottom - top);
        colour |= static_cast<Colour>(std::floor(exact / 256 + 1e-9)) << shift;
      }
      fill(left, y, right, y + 1, colour);
    }
  }

  /// Copies a rectangle; pixels outside the source are not copied.
  void blit(const Bitmap& from, int fromX, int fromY, int width, int height, int toX, int toY) {
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        if (from.has(fromX + x, fromY + y)) set(toX + x, toY + y, from.at(fromX + x, fromY + y));
  }
  /// The same upside down: the lowest row first.
  void blitFlipped(const Bitmap& from, int fromX, int fromY, int width, int height, int toX, int toY) {
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        if (from.has(fromX + x, fromY + height - 1 - y))
          set(toX + x, toY + y, from.at(fromX + x, fromY + height - 1 - y));
  }

  friend bool operator==(const Bitmap&, const Bitmap&) = default;

 private:
  int m_width;
  int m_height;
  std::vector<Colour> m_pixels;
};

inline void solidZones(Bitmap& image, const type3::AnalyserSettings& s, std::uint32_t c0, std::uint32_t c1,
                       std::uint32_t c2, bool mirrored) {
  const int w = image.width();
  const int h = image.height();
  const int hh = mirrored ? h / 2 : h;
  const int Hp = s.highPointPercent;
  const int Mp = s.midPointPercent;
  const int y1 = static_cast<int>(std::trunc((1.0 - Hp / 100.0) * hh));
  const int y2 = y1 + static_cast<int>(std::trunc((1.0 - (Mp - Hp + 100) / 100.0) * hh));
  image.fill(0, 0, w, y1, c0);
  image.fill(0, y1, w, y2, c1);
  image.fill(0, y2, w, hh, c2);
  if (!mirrored) return;
  const int y3 = h / 2 + static_cast<int>(std::trunc(Mp / 100.0 * hh));
  const int y4 = h / 2 + static_cast<int>(std::trunc(Hp / 100.0 * hh));
  image.fill(0, h / 2, w, y3, c2);
  image.fill(0, y3, w, y4, c1);
  image.fill(0, y4, w, h, c0);
}

inline void gradientZones(Bitmap& image, const type3::AnalyserSettings& s, std::uint32_t c0, std::uint32_t c1,
                          std::uint32_t c2, bool mirrored) {
  const int w = image.width();
  const int h = image.height();
  const int hh = mirrored ? h / 2 : h;
  const int Hp = s.highPointPercent;
  const int Mp = s.midPointPercent;
  const int ya = ((2 * Hp - 200) / 3 - Hp + 100) * hh / 100;
  const int yb = ((Mp - Hp) * 2 / 3 - Mp + 100) * hh / 100;
  const int yc = (100 - (Hp - Mp) / 3 - Mp) * hh / 100;
  const int yd = (100 - Mp / 3) * hh / 100;
  image.fill(0, 0, w, ya, c0);
  image.gradient(0, ya, w, yb, c0, c1);
  image.fill(0, yb, w, yc, c1);
  image.gradient(0, yc, w, yd, c1, c2);
  image.fill(0, yd, w, hh, c2);
  if (!mirrored) return;
  const int hb = h / 2;
  const auto e = [hb](int p) { return hb + p * hb / 100; };
  image.fill(0, hb, w, e(Mp / 3), c2);
  image.gradient(0, e(Mp / 3), w, e((Hp - Mp) / 3 + Mp), c2, c1);
  image.fill(0, e((Hp - Mp) / 3 + Mp), w, e((Hp - Mp) * 2 / 3 + Mp), c1);
  image.gradient(0, e((Hp - Mp) * 2 / 3 + Mp), w, e((100 - Hp) * 2 / 3 + Hp), c1, c0);
  image.fill(0, e((100 - Hp) * 2 / 3 + Hp), w, h, c0);
}

inline void segmentGaps(Bitmap& image, const type3::AnalyserSettings& s, bool mirrored) {
  const int S = s.spotHeightPx;
  const int G = s.spotIntervalPx;
  const int w = image.width();
  const int h = image.height();
  int count = h / (S + G);
  if (mirrored) count /= 2;
  int y = mirrored ? h / 2 : h;
  while (count-- > 0) {
    y = y - S;
    if (y < 0) return;
    const int bottom = y;
    y = y - G > 0 ? y - G : 0;
    image.fill(0, y, w, bottom, s.backColor);
    if (mirrored) image.fill(0, h - bottom, w, h - y, s.backColor);
  }
  if (y > 0 && y - S >= 0) image.fill(0, y - S - G > 0 ? y - S - G : 0, w, y - S, s.backColor);
}

/// The picture of a control of `width` × `height` whose strips are `xStrip` high and `yStrip` wide, without its texts.
inline Bitmap analyserPicture(const type3::AnalyserSettings& s, std::span<const LineInfo> lines, int width, int height,
                              int xStrip, int yStrip) {
  const int L = s.lineCount;
  const int areaW = width - yStrip;
  const int areaH = height - xStrip;
  const int colW = areaW / L;
  const int cw = colW - s.lineIntervalPx;
  const int bw = colW * L - s.lineIntervalPx;
  const int x0 = (areaW - colW * L + s.lineIntervalPx) / 2;
  const bool mirrored = s.alignmentY == 1;
  const int S = s.spotHeightPx;

  Bitmap unlit(bw, areaH);
  Bitmap lit(bw / L > 1 ? bw / L : 1, mirrored ? areaH / 2 : areaH);
  if (s.viewType == 0 || s.viewType == 2) {
    solidZones(lit, s, s.lineHighColor, s.lineMidColor, s.lineLowColor, false);
    solidZones(unlit, s, s.backLineHighColor, s.backLineMidColor, s.backLineLowColor, mirrored);
  } else {
    gradientZones(lit, s, s.lineHighColor, s.lineMidColor, s.lineLowColor, false);
    gradientZones(unlit, s, s.backLineHighColor, s.backLineMidColor, s.backLineLowColor, mirrored);
  }
  if (s.lineIntervalPx != 0) {
    const int p = (bw + s.lineIntervalPx) / L;
    for (int k = 1; k <= L - 1; ++k) unlit.fill(k * p - s.lineIntervalPx, 0, k * p, unlit.height(), s.backColor);
  }
  if (s.spotIntervalPx != 0) {
    segmentGaps(unlit, s, mirrored);
    if (s.viewType == 0 || s.viewType == 1) segmentGaps(lit, s, false);
  }

  Bitmap picture(width, height, s.backColor);
  if (s.scaleXVisible == -1) picture.fill(0, height - xStrip, width, height, s.scaleColor);
  if (s.scaleYVisible == -1) picture.fill(width - yStrip, 0, width, height, s.scaleColor);
  picture.blit(unlit, 0, 0, bw, areaH, x0, 0);

  const int r = width - 1;
  const int b = height - 1;
  const auto line = [&](std::uint32_t colour, std::vector<Point> points) {
    forEachLinePixel(points, [&](Point point) { picture.set(point.x, point.y, colour); });
  };
  if (s.borderType == 1) line(s.borderColor, {{r, 0}, {r, b}, {0, b}, {0, 0}, {r, 0}});
  if (s.borderType == 2 || s.borderType == 3) {
    const std::uint32_t first = s.borderType == 2 ? 0x14 : 0x10;  // of 0x80000014 and 0x80000010, taken as they are
    line(first, {{r, 0}, {r, b}, {0, b}});
    line(first == 0x14 ? 0x10 : 0x14, {{0, b}, {0, 0}, {r, 0}});
  }

  for (int i = 0; i < L; ++i) {
    const int h = static_cast<int>(lines[static_cast<std::size_t>(i)].value);
    const int x = x0 + i * colW;
    if (h <= 0) continue;
    if (!mirrored) {
      if (s.viewType < 2) {
        picture.blit(lit, 0, areaH - h, cw, h, x, areaH - h);
      } else {
        picture.blit(lit, 0, areaH - h, cw, S, x, areaH - h);
      }
      continue;
    }
    const int half = areaH / 2;
    const int yt = areaH - h - half;
    if (s.viewType < 2) {
      picture.blit(lit, 0, yt, cw, h, x, yt);
      picture.blitFlipped(lit, 0, areaH - half - h, cw, h, x, half);
    } else {
      picture.blit(lit, 0, yt, cw, S, x, yt);
      picture.blitFlipped(lit, 0, yt, cw, S, x, 2 * half - S - yt);
    }
  }
  for (int i = 0; i < L && s.tickVisible == -1; ++i) {
    const int p = static_cast<int>(lines[static_cast<std::size_t>(i)].peak);
    const int x = x0 + i * colW;
    if (p <= 0) continue;
    if (!mirrored) {
      int bottom = areaH - p;
      if (bottom < 0) bottom = 0;
      if (bottom > areaH) bottom = areaH;
      picture.fill(x, bottom - S, x + cw, bottom, s.tickColor);
      continue;
    }
    const int upper = areaH / 2 - p > 0 ? areaH / 2 - p : 0;
    picture.fill(x, upper - S, x + cw, upper, s.tickColor);
    const int bottom = p + areaH / 2 + S < areaH ? p + areaH / 2 + S : areaH;
    int top = p + areaH / 2;
    if (top > bottom) top = bottom;
    picture.fill(x, top, x + cw, bottom, s.tickColor);
  }
  return picture;
}

}  // namespace av::test
