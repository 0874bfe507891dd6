#pragma once

#include "gfx/text_measure.h"

namespace av::test {

/// A made-up font: every character, blanks included, as wide as in a typical sans-serif face, with side bearings.
class MonospaceMeasure : public TextMeasure {
 public:
  explicit MonospaceMeasure(int textHeightPx) : m_textHeightPx(textHeightPx) {}

  Size measure(std::string_view text) const override {
    const int glyphsPx = (static_cast<int>(text.size()) * m_textHeightPx * 11 + 19) / 20;
    return {glyphsPx + m_textHeightPx / 3, m_textHeightPx};
  }

 private:
  int m_textHeightPx;
};

}  // namespace av::test
