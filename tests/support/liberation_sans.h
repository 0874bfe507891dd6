#pragma once

#include "gfx/text_measure.h"

#include <cmath>
#include <string_view>

namespace av::test {

/// Liberation Sans as the view's scale font. Figures in font units (2,048 an em) from its tables hhea, OS/2 and hmtx
/// (version 2.1, Debian's fonts-liberation); Arial has the same advance widths.
/// Texts are as wide as their advances and a third of an em, which GDI+ adds to what it measures.
class LiberationSans final : public TextMeasure {
 public:
  enum class Advances {
    wholePixels,  ///< rounded at the whole size: as Wine measures
    exact         ///< as a renderer without hinting measures
  };

  /// The font object of `points` points on a display of `dpi`.
  explicit LiberationSans(int points, int dpi = 96, Advances advances = Advances::wholePixels)
      // Its LOGFONT has `points` in the display's pixels, which the view takes for points on a surface of 96 DPI.
      : m_emPx(std::round(points * dpi / 72.0) * 96 / 72), m_advances(advances) {}

  /// What the layout takes for the text height: the line spacing, rounded to nearest.
  int textHeightPx() const { return static_cast<int>(m_emPx * (ascent + descent + lineGap) / unitsPerEm + 0.5); }

  Size measure(std::string_view text) const override {
    double width = m_emPx / 3;
    for (const char c : text) width += inPixels(advanceOf(c));
    const double height = m_advances == Advances::exact ? m_emPx * (ascent + descent + lineGap) / unitsPerEm
                                                        : inPixels(ascent) + inPixels(descent);
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(height))};
  }

 private:
  static constexpr int unitsPerEm = 2048;
  static constexpr int ascent = 1854;
  static constexpr int descent = 434;
  static constexpr int lineGap = 67;

  /// Of the characters that scales are written with.
  static int advanceOf(char c) {
    switch (c) {
      case ' ': return 569;
      case '-': return 682;
      case 'B': return 1366;
      case 'H': return 1479;
      case 'l': return 455;
      case 'm': return 1706;
      case 's':
      case 'z': return 1024;
      default: return 1139;  // digits, d, p
    }
  }

  double inPixels(int units) const {
    if (m_advances == Advances::exact) return m_emPx * units / unitsPerEm;
    return std::floor(std::round(m_emPx) * units / unitsPerEm + 0.5);
  }

  double m_emPx;
  Advances m_advances;
};

}  // namespace av::test
