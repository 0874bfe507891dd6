#pragma once

#include "gfx/text_measure.h"

namespace av::test {

/// A made-up font, wider than the usual sans-serif faces: digits and letters half as wide as the text is high, blanks
/// and signs less, and side bearings as GDI+ adds them.
class MadeUpFont final : public TextMeasure {
 public:
  /// `spread` percent of the usual width.
  explicit MadeUpFont(int textHeightPx, int spread = 100) : m_textHeightPx(textHeightPx), m_spread(spread) {}

  Size measure(std::string_view text) const override {
    int tenths = 3;  // of the text height
    for (const char c : text) tenths += c == ' ' || c == '-' ? 3 : 5;
    return {(tenths * m_textHeightPx * m_spread + 999) / 1000, m_textHeightPx};
  }

 private:
  int m_textHeightPx;
  int m_spread;
};

}  // namespace av::test
