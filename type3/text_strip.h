#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace av::type3 {

/// Places the texts of one strip so that none touches another or leaves the strip.
class TextStrip {
 public:
  /// `gapPx`: what stays free between two texts.
  TextStrip(std::vector<TextRun>& texts, const Rect& strip, int gapPx, const TextMeasure& measure)
      : m_texts(texts), m_strip(strip), m_gapPx(gapPx), m_measure(measure) {}

  /// Appends a text that is drawn centred in `rect`, unless it would leave the strip or come too close to another.
  /// A text without a size, as one measures when the system fails, is left out too: any number of them would fit.
  bool add(std::string text, const Rect& rect) {
    const Rect ink = inkOf(text, rect);
    if (ink.isEmpty()) return false;
    if (ink.left < m_strip.left || ink.right > m_strip.right || ink.top < m_strip.top || ink.bottom > m_strip.bottom)
      return false;
    for (const Rect& other : m_inks)
      if (isNear(ink, other)) return false;
    m_inks.push_back(ink);
    m_texts.push_back({std::move(text), rect, opaqueBlack});
    return true;
  }

  /// How many texts have been added.
  std::size_t count() const noexcept { return m_inks.size(); }

  int gapPx() const noexcept { return m_gapPx; }
  int widthOf(const std::string& text) const { return m_measure.measure(text).widthPx; }

 private:
  Rect inkOf(const std::string& text, const Rect& rect) const {
    const auto [width, height] = m_measure.measure(text);
    const int left = rect.left + (rect.width() - width) / 2;
    const int top = rect.top + (rect.height() - height) / 2;
    return {left, top, left + width, top + height};
  }

  bool isNear(const Rect& a, const Rect& b) const noexcept {
    return a.left < b.right + m_gapPx && b.left < a.right + m_gapPx && a.top < b.bottom && b.top < a.bottom;
  }

  std::vector<TextRun>& m_texts;
  std::vector<Rect> m_inks;
  Rect m_strip;
  int m_gapPx;
  const TextMeasure& m_measure;
};

}  // namespace av::type3
