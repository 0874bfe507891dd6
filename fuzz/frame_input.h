#pragma once

#include "fuzz/input.h"
#include "gfx/geometry.h"
#include "gfx/text_measure.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace av::fuzz {

/// GDI's coordinates end there, and so do the pictures.
inline constexpr int longestSidePx = 32767;

/// A side of a control in pixels: small, of a usual screen, or any that there can be.
inline int anySide(Input& input) {
  switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: return input.ConsumeIntegralInRange<int>(0, 40);
    case 1: return input.ConsumeIntegralInRange<int>(0, longestSidePx);
    default: return input.ConsumeIntegralInRange<int>(20, 2000);
  }
}

/// A font of usual or of any metrics; one that cannot measure answers 0 for everything.
class AnyFont final : public TextMeasure {
 public:
  explicit AnyFont(Input& input) {
    m_lineHeightPx = input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(0, 64) : std::max(anyLong(input), 0);
    m_widthPerMille = input.ConsumeBool() ? 600 : input.ConsumeIntegralInRange<int>(0, 4000);
    m_measures = input.ConsumeIntegralInRange<int>(0, 15) != 0;
  }

  int lineHeightPx() const { return m_lineHeightPx; }

  Size measure(std::string_view text) const override {
    if (!m_measures) return {};
    const auto length = static_cast<std::int64_t>(text.size());
    const std::int64_t width = std::int64_t{m_lineHeightPx} * m_widthPerMille / 1000 * length;
    return {static_cast<int>(std::min<std::int64_t>(width, largestTextPx)), std::min(m_lineHeightPx, largestTextPx)};
  }

 private:
  int m_lineHeightPx;
  int m_widthPerMille;
  bool m_measures;
};

inline bool isInside(const Rect& inner, const Rect& outer) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

/// Whether a point lies in a rectangle or on its right or lower edge, where curves end.
inline bool isOn(const Point& point, const Rect& rect) {
  return point.x >= rect.left && point.x <= rect.right && point.y >= rect.top && point.y <= rect.bottom;
}

}  // namespace av::fuzz
