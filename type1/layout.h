#pragma once

#include "gfx/geometry.h"
#include "type1/settings.h"

#include <cstdint>

namespace av::type1 {

/// How the view divides its client rectangle: the plot at the top left, the scale strips below and right of it.
struct ViewLayout {
  Rect client;
  int textHeightPx = 0;    ///< height of the scale font, at most largestTextPx; 0 when there is no font
  int yScaleWidthPx = 0;   ///< 0: hidden, or no room for it
  int xScaleHeightPx = 0;  ///< 0: hidden, or no room for it
  int plotLeft = 0;
  int plotTop = 0;
  int plotWidth = 0;
  int plotHeight = 0;
  int xLabelCount = 0;     ///< divisions of the horizontal scale: 0, 1, 2, 5, 10 or 20
  int yDivisionCount = 0;  ///< divisions of the vertical scale: 0 to 100

  friend bool operator==(const ViewLayout&, const ViewLayout&) = default;
};

/// Divides `client` (any origin; at least 2 × 2 pixels, below that everything but `client` is 0).
/// `textHeightPx` is the height of the scale font in pixels, 0 without a font. Valid for all settings: scale limits and
/// dynamic ranges beyond reason saturate.
ViewLayout computeLayout(const ViewSettings& settings, std::uint32_t sampleRateHz, const Rect& client,
                         int textHeightPx);

}  // namespace av::type1
